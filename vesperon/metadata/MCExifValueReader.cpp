#include <vesperon/metadata/MCExifValueReader.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/metadata/MCExifUtils.h>

#include <fmt/format.h>

#include <cstdio>
#include <cstring>

namespace {

template <typename T>
T load(const uint8_t* p, bool bigEndian) {
  T value;
  if (!bigEndian) {
    std::memcpy(&value, p, sizeof(T));
    return value;
  }
  uint8_t swapped[sizeof(T)];
  for (std::size_t i = 0; i < sizeof(T); ++i) swapped[i] = p[sizeof(T) - 1 - i];
  std::memcpy(&value, swapped, sizeof(T));
  return value;
}

}  // namespace

void MCExifValueReader::logNotAllowed(const char* what) const {
  MCLog::sdkGraphics()->logError(fmt::format("Mapping tag 0x{:X} (type: {}) to {} is not allowed.", tag_, type_, what));
}

// Raw reads ----------------------------------------------------------------------------------

uint8_t MCExifValueReader::unsignedInt8AtIndex(int32_t index) const { return ptr_[index]; }
int8_t MCExifValueReader::signedInt8AtIndex(int32_t index) const { return static_cast<int8_t>(ptr_[index]); }
uint16_t MCExifValueReader::unsignedInt16AtIndex(int32_t index) const {
  return load<uint16_t>(ptr_ + 2 * std::size_t(index), order_ == 0x4D4D);
}
int16_t MCExifValueReader::signedInt16AtIndex(int32_t index) const {
  return load<int16_t>(ptr_ + 2 * std::size_t(index), order_ == 0x4D4D);
}
uint32_t MCExifValueReader::unsignedInt32AtIndex(int32_t index) const {
  return load<uint32_t>(ptr_ + 4 * std::size_t(index), order_ == 0x4D4D);
}
int32_t MCExifValueReader::signedInt32AtIndex(int32_t index) const {
  return load<int32_t>(ptr_ + 4 * std::size_t(index), order_ == 0x4D4D);
}
exif_rational MCExifValueReader::unsignedRationalAtIndex(int32_t index) const {
  const uint8_t* p = ptr_ + 8 * std::size_t(index);
  exif_rational r;
  r.u.numerator = load<uint32_t>(p, order_ == 0x4D4D);
  r.u.denominator = load<uint32_t>(p + 4, order_ == 0x4D4D);
  return r;
}
exif_rational MCExifValueReader::signedRationalAtIndex(int32_t index) const {
  const uint8_t* p = ptr_ + 8 * std::size_t(index);
  exif_rational r;
  r.s.numerator = load<int32_t>(p, order_ == 0x4D4D);
  r.s.denominator = load<int32_t>(p + 4, order_ == 0x4D4D);
  return r;
}
float MCExifValueReader::floatAtIndex(int32_t index) const {
  return load<float>(ptr_ + 4 * std::size_t(index), order_ == 0x4D4D);
}
double MCExifValueReader::doubleAtIndex(int32_t index) const {
  return load<double>(ptr_ + 8 * std::size_t(index), order_ == 0x4D4D);
}

// Numbers ------------------------------------------------------------------------------------

std::optional<MCValue> MCExifValueReader::numberWithUnsignedInt8AtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(unsignedInt8AtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithSignedInt8AtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(signedInt8AtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithUnsignedInt16AtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(unsignedInt16AtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithSignedInt16AtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(signedInt16AtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithUnsignedInt32AtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(unsignedInt32AtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithSignedInt32AtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(signedInt32AtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithUnsignedRationalAtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  exif_rational r = unsignedRationalAtIndex(index);
  if (r.u.denominator == 0) return std::nullopt;
  return MCValue(double(r.u.numerator) / double(r.u.denominator));
}
std::optional<MCValue> MCExifValueReader::numberWithSignedRationalAtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  exif_rational r = signedRationalAtIndex(index);
  if (r.s.denominator == 0) return std::nullopt;
  return MCValue(double(r.s.numerator) / double(r.s.denominator));
}
std::optional<MCValue> MCExifValueReader::numberWithFloatAtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(floatAtIndex(index));
}
std::optional<MCValue> MCExifValueReader::numberWithDoubleAtIndex(int32_t index) const {
  if (!inRange(index)) return std::nullopt;
  return MCValue(doubleAtIndex(index));
}

std::optional<MCValue> MCExifValueReader::numberAtIndex(int32_t index) const {
  switch (type_) {
    case 1: return numberWithUnsignedInt8AtIndex(index);
    case 3: return numberWithUnsignedInt16AtIndex(index);
    case 4: return numberWithUnsignedInt32AtIndex(index);
    case 5: return numberWithUnsignedRationalAtIndex(index);
    case 6:
    case 7: return numberWithSignedInt8AtIndex(index);
    case 8: return numberWithSignedInt16AtIndex(index);
    case 9: return numberWithSignedInt32AtIndex(index);
    case 10: return numberWithSignedRationalAtIndex(index);
    case 11: return numberWithFloatAtIndex(index);
    case 12: return numberWithDoubleAtIndex(index);
    default:
      logNotAllowed("number");
      return std::nullopt;
  }
}

std::optional<MCArray> MCExifValueReader::arrayValue() const {
  MCArray out;
  if (count_ > 0) out.reserve(static_cast<std::size_t>(count_));
  for (int32_t i = 0; i < count_; ++i) {
    auto number = numberAtIndex(i);
    if (!number) {
      // A refused type refuses every component: one message is enough.
      if (type_ == 2 || type_ == 0 || type_ > 12) break;
      continue;
    }
    out.push_back(std::move(*number));
  }
  if (out.empty()) return std::nullopt;  // nothing read is no value, not an empty one
  return out;
}

// Text ---------------------------------------------------------------------------------------

std::optional<std::string> MCExifValueReader::stringWithEncoding(Encoding encoding) const {
  if (!ptr_ || count_ <= 0) return std::nullopt;
  const void* nul = std::memchr(ptr_, 0, static_cast<std::size_t>(count_));
  std::size_t length = nul ? static_cast<std::size_t>(static_cast<const uint8_t*>(nul) - ptr_) : std::size_t(count_);
  if (length == 0) return std::nullopt;
  if (encoding == Encoding::ASCII) return mc_detail::stringFromExifASCII(ptr_, length);
  if (!mc_detail::isValidUTF8(ptr_, length)) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(ptr_), length);
}

std::optional<std::string> MCExifValueReader::stringValue() const {
  switch (type_) {
    case 1:
    case 6:
    case 7: return stringWithEncoding(Encoding::UTF8);
    case 2: return stringWithEncoding(Encoding::ASCII);
    default:
      logNotAllowed("string");
      return std::nullopt;
  }
}

std::optional<std::string> MCExifValueReader::stringFromUserCommentData() const {
  if (!ptr_ || count_ <= 0) return std::nullopt;
  return MCExifUtils::stringWithUserCommentData(ptr_, static_cast<std::size_t>(count_));
}

std::optional<MCArray> MCExifValueReader::exifVersionValue() const {
  if (!ptr_ || count_ <= 0) return std::nullopt;
  return MCExifUtils::arrayFromExifVersionData(ptr_, static_cast<std::size_t>(count_));
}

std::optional<MCArray> MCExifValueReader::flashPixVersionValue() const {
  if (!ptr_ || count_ <= 0) return std::nullopt;
  return MCExifUtils::arrayFromFlashPixVersionData(ptr_, static_cast<std::size_t>(count_));
}

// GPS ----------------------------------------------------------------------------------------

double MCExifValueReader::numberWithGPSCoordinate() const {
  double sum = 0;
  double scale = 1;
  for (int32_t i = 0; i < count_; ++i, scale *= 60) {
    exif_rational r = unsignedRationalAtIndex(i);
    if (r.u.denominator == 0) continue;
    sum += double(r.u.numerator) / (scale * double(r.u.denominator));
  }
  return sum;
}

std::optional<MCValue> MCExifValueReader::GPSLatitudeValue() const {
  if (type_ != 5) {
    logNotAllowed("GPS latitude");
    return std::nullopt;
  }
  return MCValue(numberWithGPSCoordinate());
}

std::optional<MCValue> MCExifValueReader::GPSLongitudeValue() const {
  if (type_ != 5) {
    logNotAllowed("GPS longitude");
    return std::nullopt;
  }
  return MCValue(numberWithGPSCoordinate());
}

std::optional<std::string> MCExifValueReader::GPSTimeStampValue() const {
  if (type_ != 5) {
    logNotAllowed("GPS time stamp");
    return std::nullopt;
  }
  float parts[3];
  for (int32_t i = 0; i < 3; ++i) {
    exif_rational r{};
    if (inRange(i)) r = unsignedRationalAtIndex(i);
    if (r.u.denominator == 0) {
      MCLog::sdkGraphics()->logError(
          fmt::format("Mapping tag 0x{:X} (type: {}) to GPS time stamp failed. Invalid value.", tag_, type_));
      return std::nullopt;
    }
    parts[i] = static_cast<float>(r.u.numerator) / static_cast<float>(r.u.denominator);
  }
  char text[64];
  std::snprintf(text, sizeof text, "%02.0f:%02.0f:%02.0f", double(parts[0]), double(parts[1]), double(parts[2]));
  return std::string(text);
}
