#pragma once
// MCExifComment: the text of an Exif user comment, a value the Exif encoder understands.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class MCExifComment {
 public:
  MCExifComment() = default;
  explicit MCExifComment(std::string text) : stringValue_(std::move(text)) {}

  const std::string& stringValue() const { return stringValue_; }
  void setStringValue(std::string text) { stringValue_ = std::move(text); }

  friend bool operator==(const MCExifComment&, const MCExifComment&) = default;

 private:
  std::string stringValue_;
};
