#pragma once
// MCColorSpace: the colour space of a raster image or a drawing context, backed by a Little CMS
// profile.
//
// The four named spaces are shared instances made on first use, so that the library can tell
// "the very same space" by comparing pointers, as it does where it tests identity. A space made
// from ICC data is a new object each time, even for the same bytes: two such spaces are equal in
// content but not identical.
//
// Named spaces and their profiles:
//   sRGB                 the sRGB primaries (D65) with the sRGB tone curve
//   linearSRGB           the sRGB primaries with a linear curve (gamma 1.0)
//   genericGrayGamma2_2  gray, D50 white, a pure power curve of 2.2
//   linearGray           gray, D50 white, a linear curve
//
// Every operation may be called from any thread: a space never changes after construction.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class MCColorSpace {
 public:
  /// The colour model.
  enum class Model { Gray, RGB, CMYK };

  /// @name Shared spaces
  //@{
  /// The shared spaces, one object each, compared by identity.
  static std::shared_ptr<const MCColorSpace> sRGB();
  static std::shared_ptr<const MCColorSpace> linearSRGB();
  static std::shared_ptr<const MCColorSpace> genericGrayGamma2_2();
  static std::shared_ptr<const MCColorSpace> linearGray();
  //@}

  /// A space described by an ICC profile, its model read from the profile; none when the bytes
  /// are empty, are not a profile Little CMS can open, or describe neither gray, RGB nor CMYK.
  static std::shared_ptr<const MCColorSpace> createWithICCData(std::vector<uint8_t> icc);
  /// As above; none as well when the profile's model is not `model`.
  static std::shared_ptr<const MCColorSpace> createWithICCData(std::vector<uint8_t> icc, Model model);

  /// A space with a name and model. With ICC bytes that open as a profile of that model the space
  /// uses that profile; otherwise it stands for the default space of the model (sRGB, gray 2.2,
  /// or a generic CMYK profile without real characterisation).
  MCColorSpace(std::string name, Model model, std::vector<uint8_t> icc = {});
  ~MCColorSpace();
  MCColorSpace(const MCColorSpace&) = delete;
  MCColorSpace& operator=(const MCColorSpace&) = delete;

  /// The space's name.
  const std::string& name() const { return name_; }
  /// The colour model.
  Model model() const { return model_; }
  /// Colour components per pixel without alpha: 1, 3 or 4.
  int numberOfComponents() const { return model_ == Model::Gray ? 1 : model_ == Model::RGB ? 3 : 4; }
  /// The ICC profile bytes: those given at construction, or the serialised profile of a named space.
  const std::vector<uint8_t>& iccData() const { return icc_; }

  /// The Little CMS profile (a cmsHPROFILE), owned by the space and valid for its lifetime.
  void* profile() const { return profile_; }

  /// Whether two spaces describe the same colours: identical objects, or the same ICC bytes.
  bool isEquivalent(const MCColorSpace& other) const;

 private:
  MCColorSpace(std::string name, Model model, void* profile);

  std::string name_;
  Model model_;
  std::vector<uint8_t> icc_;
  void* profile_ = nullptr;
};

using MCColorSpaceRef = std::shared_ptr<const MCColorSpace>;
