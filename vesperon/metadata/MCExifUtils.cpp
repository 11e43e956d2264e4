#include <vesperon/metadata/MCExifUtils.h>

#include <vesperon/core/MCLog.h>

#include <cmath>
#include <cstdio>
#include <numeric>
#include <string_view>

namespace {

void logError(const std::string& message) { MCLog::sdkGraphics()->logError(message); }

// The bytes as a NUL-terminated C string, so that a scan can never run past the data's end.
std::string terminated(const uint8_t* bytes, std::size_t length) {
  std::string text(reinterpret_cast<const char*>(bytes), length);
  return std::string(text.c_str());
}

std::optional<uint64_t> unsignedComponent(const MCValue& value) {
  if (!value.isNumber()) return std::nullopt;
  return static_cast<uint64_t>(*value.integerValue());
}

void appendUTF8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// Decodes one UTF-8 sequence at `i`; none when ill-formed (overlong, surrogate, beyond U+10FFFF).
std::optional<uint32_t> decodeUTF8(const uint8_t* s, std::size_t length, std::size_t& i) {
  uint8_t b = s[i];
  int extra;
  uint32_t cp, minimum;
  if (b < 0x80) {
    ++i;
    return b;
  } else if ((b & 0xE0) == 0xC0) {
    extra = 1, cp = b & 0x1F, minimum = 0x80;
  } else if ((b & 0xF0) == 0xE0) {
    extra = 2, cp = b & 0x0F, minimum = 0x800;
  } else if ((b & 0xF8) == 0xF0) {
    extra = 3, cp = b & 0x07, minimum = 0x10000;
  } else {
    return std::nullopt;
  }
  if (length - i <= static_cast<std::size_t>(extra)) return std::nullopt;
  for (int k = 1; k <= extra; ++k) {
    uint8_t c = s[i + k];
    if ((c & 0xC0) != 0x80) return std::nullopt;
    cp = (cp << 6) | (c & 0x3F);
  }
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return std::nullopt;
  i += extra + 1;
  return cp;
}

}  // namespace

namespace mc_detail {

bool isValidUTF8(const uint8_t* bytes, std::size_t length) {
  std::size_t i = 0;
  while (i < length) {
    // Almost every Exif text is plain ASCII: step over it without decoding.
    if (bytes[i] < 0x80) {
      ++i;
    } else if (!decodeUTF8(bytes, length, i)) {
      return false;
    }
  }
  return true;
}

std::string stringFromExifASCII(const uint8_t* bytes, std::size_t length) {
  if (isValidUTF8(bytes, length)) return std::string(reinterpret_cast<const char*>(bytes), length);
  std::string out;
  out.reserve(length + length / 2);
  for (std::size_t i = 0; i < length; ++i) appendUTF8(out, bytes[i]);
  return out;
}

std::optional<MCData> utf16BigEndianFromUTF8(const std::string& text) {
  const auto* s = reinterpret_cast<const uint8_t*>(text.data());
  MCData out;
  out.reserve(text.size() * 2);
  auto put = [&](uint32_t unit) {
    out.push_back(static_cast<uint8_t>(unit >> 8));
    out.push_back(static_cast<uint8_t>(unit));
  };
  std::size_t i = 0;
  while (i < text.size()) {
    auto cp = decodeUTF8(s, text.size(), i);
    if (!cp) return std::nullopt;
    if (*cp >= 0x10000) {
      uint32_t v = *cp - 0x10000;
      put(0xD800 | (v >> 10));
      put(0xDC00 | (v & 0x3FF));
    } else {
      put(*cp);
    }
  }
  return out;
}

std::string utf8FromUTF16BigEndian(const uint8_t* bytes, std::size_t unitCount) {
  std::string out;
  out.reserve(unitCount);
  for (std::size_t i = 0; i < unitCount; ++i) {
    uint32_t unit = (uint32_t(bytes[2 * i]) << 8) | bytes[2 * i + 1];
    if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < unitCount) {
      uint32_t low = (uint32_t(bytes[2 * i + 2]) << 8) | bytes[2 * i + 3];
      if (low >= 0xDC00 && low <= 0xDFFF) {
        appendUTF8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
        ++i;
        continue;
      }
    }
    appendUTF8(out, (unit >= 0xD800 && unit <= 0xDFFF) ? 0xFFFD : unit);
  }
  return out;
}

}  // namespace mc_detail

std::optional<MCExifRational> MCExifUtils::exifRationalFromDoubleValue(double value) {
  double magnitude = std::fabs(value);
  int64_t denominator;
  if (std::isnan(value)) return std::nullopt;
  if (magnitude <= 2147) {
    denominator = 1000000;
  } else if (magnitude <= 214748) {
    denominator = 10000;
  } else if (magnitude <= 21474836) {
    denominator = 100;
  } else if (magnitude <= 2147483647) {
    denominator = 1;
  } else {
    return std::nullopt;
  }
  auto numerator = static_cast<int64_t>(std::round(value * static_cast<double>(denominator)));
  int64_t divisor = std::gcd(numerator < 0 ? -numerator : numerator, denominator);
  if (divisor > 1) {
    numerator /= divisor;
    denominator /= divisor;
  }
  return MCExifRational::create(static_cast<int32_t>(numerator), static_cast<int32_t>(denominator));
}

std::optional<MCData> MCExifUtils::dataWithUnsignedByteArray(const MCArray& array) {
  MCData out;
  out.reserve(array.size());
  for (const MCValue& element : array) {
    auto v = unsignedComponent(element);
    if (!v) return std::nullopt;
    out.push_back(static_cast<uint8_t>(*v));
  }
  return out;
}

std::optional<MCData> MCExifUtils::dataWithUnsignedByte(const MCValue& number) {
  auto v = unsignedComponent(number);
  if (!v) return std::nullopt;
  return MCData{static_cast<uint8_t>(*v)};
}

std::optional<MCData> MCExifUtils::dataWithExifVersionComponents(const MCArray& components) {
  if (components.size() != 3) return std::nullopt;
  auto major = unsignedComponent(components[0]);
  auto minor = unsignedComponent(components[1]);
  auto micro = unsignedComponent(components[2]);
  if (!major || !minor || !micro || *major > 99 || *minor > 9 || *micro > 9) return std::nullopt;
  char text[8];
  std::snprintf(text, sizeof text, "%02u%01u%01u", unsigned(*major), unsigned(*minor), unsigned(*micro));
  return MCData(text, text + 4);
}

std::optional<MCData> MCExifUtils::dataWithFlashPixVersionComponents(const MCArray& components) {
  if (components.size() != 2) return std::nullopt;
  auto major = unsignedComponent(components[0]);
  auto minor = unsignedComponent(components[1]);
  if (!major || !minor || *major > 99 || *minor > 99) return std::nullopt;
  char text[8];
  std::snprintf(text, sizeof text, "%02u%02u", unsigned(*major), unsigned(*minor));
  return MCData(text, text + 4);
}

MCData MCExifUtils::dataWithUTF8String(const std::string& text) { return MCData(text.begin(), text.end()); }

std::optional<MCArray> MCExifUtils::exifValueFromGPSCoordinateNumber(const MCValue& number) {
  auto value = number.doubleValue();
  if (!value || number.isRational()) return std::nullopt;
  double v = *value;
  double degrees = std::trunc(v);
  double minutes = std::trunc((v - degrees) * 60);
  double seconds = (v - degrees - minutes / 60) * 3600;
  MCArray out;
  for (double component : {degrees, minutes, seconds}) {
    auto rational = exifRationalFromDoubleValue(component);
    if (!rational) return std::nullopt;
    out.emplace_back(*rational);
  }
  return out;
}

std::optional<MCArray> MCExifUtils::exifValueFromGPSTimeStampString(const std::string& text) {
  int hours = 0, minutes = 0, seconds = 0;
  if (std::sscanf(text.c_str(), "%d:%d:%d", &hours, &minutes, &seconds) != 3) {
    logError("Failed to parse GPS Time Stamp from string: " + text);
    return std::nullopt;
  }
  if (!validateHours(hours, minutes, seconds)) {
    logError("Failed to validate GPS Time Stamp parsed from string: " + text);
    return std::nullopt;
  }
  MCArray out;
  for (int component : {hours, minutes, seconds}) out.emplace_back(*exifRationalFromDoubleValue(component));
  return out;
}

std::optional<MCArray> MCExifUtils::arrayFromExifVersionData(const uint8_t* bytes, std::size_t length) {
  std::string text = terminated(bytes, length);
  unsigned major = 0, minor = 0, micro = 0;
  if (std::sscanf(text.c_str(), "%02u%01u%01u", &major, &minor, &micro) != 3) {
    logError("Failed to parse Exif Version from string: " + text);
    return std::nullopt;
  }
  return MCArray{major, minor, micro};
}

std::optional<MCArray> MCExifUtils::arrayFromFlashPixVersionData(const uint8_t* bytes, std::size_t length) {
  std::string text = terminated(bytes, length);
  unsigned major = 0, minor = 0;
  if (std::sscanf(text.c_str(), "%02u%02u", &major, &minor) != 2) {
    logError("Failed to parse FlashPix Version from string: " + text);
    return std::nullopt;
  }
  return MCArray{major, minor};
}

std::optional<std::string> MCExifUtils::stringWithUserCommentData(const uint8_t* bytes, std::size_t length) {
  if (!bytes || length < 8) return std::nullopt;
  std::size_t n = 0;
  while (n < 8 && bytes[n] != 0) ++n;
  // Only the n bytes before the first NUL are compared, so eight NULs count as "ASCII".
  std::string_view code(reinterpret_cast<const char*>(bytes), n);
  auto prefixOf = [&](std::string_view name) { return n <= name.size() && name.substr(0, n) == code; };
  const uint8_t* text = bytes + 8;
  std::size_t available = length - 8;
  if (prefixOf("ASCII")) {
    std::size_t end = 0;
    while (end < available && text[end] != 0) ++end;
    return mc_detail::stringFromExifASCII(text, end);
  }
  if (prefixOf("UNICODE")) {
    std::size_t units = 0;
    while (units < available / 2 && (text[2 * units] | text[2 * units + 1]) != 0) ++units;
    return mc_detail::utf8FromUTF16BigEndian(text, units);
  }
  return std::nullopt;
}

bool MCExifUtils::validateHours(int32_t hours, int32_t minutes, int32_t seconds) {
  return hours >= 0 && hours <= 23 && minutes >= 0 && minutes <= 59 && seconds >= 0 && seconds <= 60;
}
