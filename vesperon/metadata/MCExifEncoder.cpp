#include <vesperon/metadata/MCExifEncoder.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCValueJSON.h>
#include <vesperon/metadata/MCExifUtils.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace {

void logError(const std::string& message) { MCLog::sdkGraphics()->logError(message); }

// The name of a value's kind, for messages.
const char* className(const MCValue& value) {
  if (value.isNumber()) return "number";
  if (value.isString()) return "string";
  if (value.isData()) return "data";
  if (value.isArray()) return "array";
  if (value.isDictionary()) return "dictionary";
  if (value.isRational()) return "MCExifRational";
  if (value.isComment()) return "MCExifComment";
  return "none";
}

std::string describe(const MCValue& value) { return MCValueToJSON(value).dump(); }

template <typename T>
void append(MCData& out, T value, bool bigEndian) {
  uint8_t raw[sizeof(T)];
  std::memcpy(raw, &value, sizeof(T));
  if (bigEndian) std::reverse(raw, raw + sizeof(T));
  out.insert(out.end(), raw, raw + sizeof(T));
}

int64_t integer(const MCValue& number) { return number.integerValue().value_or(0); }
double real(const MCValue& number) { return number.doubleValue().value_or(0); }

}  // namespace

std::optional<MCData> MCExifEncoder::encodeValue(const MCValue& value, uint16_t type, uint16_t byteOrder) {
  if (const MCArray* array = value.array()) return encodeArray(*array, type, byteOrder);
  if (const MCData* data = value.data()) return encodeData(*data, type, byteOrder);
  if (value.isNumber()) return encodeNumber(value, type, byteOrder);
  if (const std::string* string = value.string()) return encodeString(*string, type, byteOrder);
  if (const MCExifComment* comment = value.comment()) return encodeComment(*comment, type, byteOrder);
  if (const MCExifRational* rational = value.rational()) return encodeRational(*rational, type, byteOrder);
  return std::nullopt;
}

std::optional<MCData> MCExifEncoder::encodeArray(const MCArray& array, uint16_t type, uint16_t byteOrder) {
  bool rationalType = type == 5 || type == 10;
  auto usable = [&](const MCValue& e) { return e.isNumber() || (e.isRational() && rationalType); };
  for (const MCValue& element : array)
    if (!usable(element)) logError(fmt::format("Unexpected element type in array: {}", className(element)));
  if (type < 1 || type > 12) return std::nullopt;
  if (type == 2 || type == 7) {
    logError(fmt::format("Cannot encode {} to EXIF data type: {}", describe(MCValue(array)), type));
    return std::nullopt;
  }
  bool big = byteOrder == 0x4D4D;
  MCData out;
  for (const MCValue& element : array) {
    if (!usable(element)) continue;  // reported above; it cannot give a number
    switch (type) {
      case 1:
      case 6: out.push_back(static_cast<uint8_t>(integer(element))); break;
      case 3:
      case 8: append(out, static_cast<uint16_t>(integer(element)), big); break;
      case 4:
      case 9: append(out, static_cast<uint32_t>(integer(element)), big); break;
      case 5:
      case 10: {
        std::optional<MCExifRational> rational =
            element.isRational() ? std::optional(*element.rational()) : MCExifUtils::exifRationalFromDoubleValue(real(element));
        if (!rational) break;
        MCData bytes = rational->dataWithByteOrder(byteOrder);
        out.insert(out.end(), bytes.begin(), bytes.end());
        break;
      }
      case 11: append(out, static_cast<float>(real(element)), big); break;
      case 12: append(out, real(element), big); break;
    }
  }
  return out;
}

std::optional<MCData> MCExifEncoder::encodeData(const MCData& data, uint16_t type, uint16_t) {
  if (type == 7) return data;
  logError(fmt::format("Cannot encode {} to EXIF data type: {}", describe(MCValue(data)), type));
  return std::nullopt;
}

std::optional<MCData> MCExifEncoder::encodeNumber(const MCValue& number, uint16_t type, uint16_t byteOrder) {
  switch (type) {
    case 1:
    case 3:
    case 4:
    case 6:
    case 8:
    case 9: {
      exif_four_bytes_value field = fourBytesValueFromNumber(number, type, byteOrder);
      const auto* raw = reinterpret_cast<const uint8_t*>(&field);
      return MCData(raw, raw + 4);
    }
    case 2:
    case 7:
      logError(fmt::format("Failed to encode {} to EXIF data type: {}", className(number), type));
      return std::nullopt;
    case 5:
    case 10: {
      auto rational = MCExifUtils::exifRationalFromDoubleValue(real(number));
      if (!rational) return std::nullopt;
      return rational->dataWithByteOrder(byteOrder);
    }
    case 11: {
      MCData out;
      append(out, static_cast<float>(real(number)), byteOrder == 0x4D4D);
      return out;
    }
    case 12: {
      MCData out;
      append(out, real(number), byteOrder == 0x4D4D);
      return out;
    }
    default: return std::nullopt;
  }
}

exif_four_bytes_value MCExifEncoder::fourBytesValueFromNumber(const MCValue& number, uint16_t type, uint16_t byteOrder) {
  exif_four_bytes_value field;
  std::memset(&field, 0, sizeof field);
  bool big = byteOrder == 0x4D4D, little = byteOrder == 0x4949;
  switch (type) {
    case 1:
    case 6: field.UByte.value = static_cast<uint8_t>(integer(number)); break;
    case 3:
    case 8: {
      auto v = static_cast<uint16_t>(integer(number));
      if (big) field.UShort.value = static_cast<uint16_t>((v >> 8) | (v << 8));
      else if (little) field.UShort.value = v;
      break;
    }
    case 4:
    case 9: {
      auto v = static_cast<uint32_t>(integer(number));
      if (big) field.ULong = __builtin_bswap32(v);
      else if (little) field.ULong = v;
      break;
    }
    case 11: {
      float f = static_cast<float>(real(number));
      uint32_t bits;
      std::memcpy(&bits, &f, 4);
      if (big) field.ULong = __builtin_bswap32(bits);
      else if (little) field.ULong = bits;
      break;
    }
    default: break;
  }
  return field;
}

std::optional<MCData> MCExifEncoder::encodeString(const std::string& string, uint16_t type, uint16_t) {
  switch (type) {
    case 1:
    case 6:
      if (!mc_detail::isValidUTF8(reinterpret_cast<const uint8_t*>(string.data()), string.size())) return std::nullopt;
      break;
    case 2:
      if (std::any_of(string.begin(), string.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }))
        return std::nullopt;
      break;
    default:
      logError(fmt::format("Failed to encode {} to EXIF data type: {}", className(MCValue(string)), type));
      return std::nullopt;
  }
  MCData out(string.begin(), string.end());
  out.push_back(0);
  return out;
}

std::optional<MCData> MCExifEncoder::encodeRational(const MCExifRational& rational, uint16_t type, uint16_t byteOrder) {
  if (type == 5 || type == 10) return rational.dataWithByteOrder(byteOrder);
  logError(fmt::format("Failed to encode {} to EXIF data type: {}", className(MCValue(rational)), type));
  return std::nullopt;
}

MCData MCExifEncoder::encodeComment(const MCExifComment& comment, uint16_t, uint16_t byteOrder) {
  return comment.dataWithByteOrder(byteOrder);
}

uint64_t MCExifEncoder::numberOfComponentsInValue(const MCValue& value, const std::optional<MCData>& encodedData) {
  if (const MCArray* array = value.array()) return array->size();
  if (value.isData() || value.isString() || value.isComment()) return encodedData ? encodedData->size() : 0;
  if (value.isNumber() || value.isRational()) return 1;
  return 0;
}
