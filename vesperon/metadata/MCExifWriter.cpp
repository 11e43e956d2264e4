#include <vesperon/metadata/MCExifWriter.h>

#include <vesperon/metadata/MCExifUtils.h>

namespace {
template <typename T>
std::optional<MCValue> wrap(std::optional<T> converted) {
  if (!converted) return std::nullopt;
  return MCValue(std::move(*converted));
}
}  // namespace

void MCExifWriter::writeEXIFValue(const MCValue& value, uint16_t tag) {
  if (value.isNone()) return;
  std::optional<MCValue> converted;
  switch (tag) {
    case 0x9000:  // ExifVersion
      if (!value.isArray()) return;
      converted = wrap(MCExifUtils::dataWithExifVersionComponents(*value.array()));
      break;
    case 0x9101:  // ComponentsConfiguration
      if (!value.isArray()) return;
      converted = wrap(MCExifUtils::dataWithUnsignedByteArray(*value.array()));
      break;
    case 0x927C:  // MakerNote: never written
      return;
    case 0x9286:  // UserComment
      if (!value.isString()) return;
      converted = MCValue(MCExifComment(*value.string()));
      break;
    case 0xA000:  // FlashPixVersion
      if (!value.isArray()) return;
      converted = wrap(MCExifUtils::dataWithFlashPixVersionComponents(*value.array()));
      break;
    case 0xA300:  // FileSource
      if (value.isArray()) {
        converted = wrap(MCExifUtils::dataWithUnsignedByteArray(*value.array()));
      } else if (value.isNumber()) {
        converted = wrap(MCExifUtils::dataWithUnsignedByte(value));
      } else {
        return;
      }
      break;
    case 0xA301:  // SceneType
      if (!value.isNumber()) return;
      converted = wrap(MCExifUtils::dataWithUnsignedByte(value));
      break;
    case 0xA462:  // SourceExposureTimesOfCompositeImage
      if (!value.isString()) return;
      converted = MCValue(MCExifUtils::dataWithUTF8String(*value.string()));
      break;
    default:
      converted = value;
      break;
  }
  if (!converted) return;
  data_.addEntry(MCExifEntry(tag, std::move(*converted)));
}

void MCExifWriter::writeGPSValue(const MCValue& value, uint16_t tag) {
  if (tag >= 32 || value.isNone()) return;
  std::optional<MCValue> converted;
  switch (tag) {
    case 2:
    case 4:
    case 20:
    case 22:  // latitudes and longitudes
      if (!value.isNumber()) return;
      converted = wrap(MCExifUtils::exifValueFromGPSCoordinateNumber(value));
      break;
    case 7:  // time stamp
      if (!value.isString()) return;
      converted = wrap(MCExifUtils::exifValueFromGPSTimeStampString(*value.string()));
      break;
    case 27:
    case 28:  // processing method, area information
      if (!value.isString()) return;
      converted = MCValue(MCExifComment(*value.string()));
      break;
    default:
      converted = value;
      break;
  }
  if (!converted) return;
  data_.addGPSEntry(MCExifGPSEntry(tag, std::move(*converted)));
}
