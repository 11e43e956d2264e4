#pragma once
// MCColorSpace: the colour space of a raster image. Named spaces are shared instances, so that
// identity tells sameness where the library tests it; a space may also carry ICC profile bytes.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class MCColorSpace {
 public:
  enum class Model { Gray, RGB, CMYK };

  static std::shared_ptr<const MCColorSpace> sRGB();
  static std::shared_ptr<const MCColorSpace> linearSRGB();
  static std::shared_ptr<const MCColorSpace> genericGrayGamma2_2();
  static std::shared_ptr<const MCColorSpace> linearGray();
  /// A space described by an ICC profile; none when the bytes are empty.
  static std::shared_ptr<const MCColorSpace> createWithICCData(std::vector<uint8_t> icc, Model model);

  MCColorSpace(std::string name, Model model, std::vector<uint8_t> icc = {})
      : name_(std::move(name)), model_(model), icc_(std::move(icc)) {}

  const std::string& name() const { return name_; }
  Model model() const { return model_; }
  /// Colour components per pixel without alpha: 1, 3 or 4.
  int numberOfComponents() const { return model_ == Model::Gray ? 1 : model_ == Model::RGB ? 3 : 4; }
  const std::vector<uint8_t>& iccData() const { return icc_; }

 private:
  std::string name_;
  Model model_;
  std::vector<uint8_t> icc_;
};
