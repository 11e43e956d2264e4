#pragma once
// MCExifComment: the text of an Exif user comment, a value the Exif encoder understands.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class MCExifComment {
 public:
  MCExifComment() = default;
  /// A comment of `text`.
  explicit MCExifComment(std::string text) : stringValue_(std::move(text)) {}

  /// The text.
  const std::string& stringValue() const { return stringValue_; }
  /// Replaces the text.
  void setStringValue(std::string text) { stringValue_ = std::move(text); }

  /// The user comment bytes: "ASCII" padded to 8 bytes and the text when it is plain ASCII;
  /// otherwise "UNICODE" and one NUL, and the text in UTF-16 big-endian (whatever `order` says);
  /// then, always, 8 NUL bytes. So "Hi" takes 18 bytes, and an empty or unconvertible text 8.
  std::vector<uint8_t> dataWithByteOrder(uint16_t order) const;

  friend bool operator==(const MCExifComment&, const MCExifComment&) = default;

 private:
  std::string stringValue_;
};
