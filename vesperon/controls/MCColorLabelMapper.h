#pragma once
// MCColorLabelMapper: the library's colour labels (1 red, 2 orange, 3 yellow, 4 green, 5 blue,
// 6 purple, 7 gray; 0 none) against the numbers of a file's own label resource, which number the
// same colours differently (1 gray, 2 green, 3 purple, 4 blue, 5 yellow, 6 red, 7 orange).
//
// On Linux a file's label lives where photo programs look for it: the `xmp:Label` property of the
// XMP sidecar beside the file (IMG_1.JPG → IMG_1.xmp), holding the colour's English name
// ("Red" … "Gray"), as darktable and digiKam write it. `labelOfFile` and `setLabelOfFile` read and
// write it through Exempi, keeping the sidecar's other properties.

#include <filesystem>
#include <optional>
#include <string>

class MCColorLabelMapper {
 public:
  MCColorLabelMapper() = delete;
  /// 0 for any number outside 0 to 7.
  static long colorLabelFromURLResource(long resourceLabel);
  /// The file manager's label number of a colour label.
  static long urlResourceLabelFromColorLabel(long colorLabel);

  /// "Red" … "Gray" for 1 … 7; none otherwise.
  static std::optional<std::string> nameOfColorLabel(long label);
  /// The label of a name, in any case; 0 for an unknown name.
  static long colorLabelOfName(const std::string& name);

  /// The label in the file's sidecar; 0 without a sidecar or a label there.
  static long labelOfFile(const std::filesystem::path& file);
  /// Writes (or, for 0, removes) the label in the sidecar, creating it when needed; false when
  /// the sidecar cannot be read or written.
  static bool setLabelOfFile(const std::filesystem::path& file, long label);
  /// The XMP sidecar beside `file`.
  static std::filesystem::path sidecarOfFile(const std::filesystem::path& file);
};
