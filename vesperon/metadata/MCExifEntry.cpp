#include <vesperon/metadata/MCExifEntry.h>

#include <vesperon/metadata/MCExifEncoder.h>

mc_detail::MCExifEntryFields::MCExifEntryFields(uint16_t tag, uint16_t type, MCValue value)
    : tag_(tag), type_(type), value_(std::move(value)) {
  encodedData_ = MCExifEncoder::encodeValue(value_, type_, 0x4D4D);
  numberOfComponents_ = MCExifEncoder::numberOfComponentsInValue(value_, encodedData_);
}

uint16_t MCExifEntry::typeForExifTag(uint16_t tag) {
  switch (tag) {
    case 0x02BC: case 0xC6F8: case 0xC6FE:
      return 1;
    case 0x00FF: case 0x0102: case 0x0103: case 0x0106: case 0x0107: case 0x0108: case 0x0109: case 0x010A:
    case 0x0112: case 0x0115: case 0x011C: case 0x0122: case 0x0123: case 0x0128: case 0x0129: case 0x012D:
    case 0x013D: case 0x0140: case 0x0141: case 0x0144: case 0x0145: case 0x4746: case 0x4749: case 0x8822:
    case 0x8827: case 0x8830: case 0x8832: case 0x9207: case 0x9208: case 0x9209: case 0x9214: case 0xA001:
    case 0xA210: case 0xA214: case 0xA217: case 0xA401: case 0xA402: case 0xA403: case 0xA405: case 0xA406:
    case 0xA407: case 0xA408: case 0xA409: case 0xA40A: case 0xA40C: case 0xA460: case 0xA461:
      return 3;
    case 0x00FE: case 0x0100: case 0x0101: case 0x0111: case 0x0116: case 0x0117: case 0x0124: case 0x0125:
    case 0x0142: case 0x0143: case 0x014A: case 0x83BB: case 0x8769: case 0x8825: case 0x8831: case 0x8833:
    case 0x8834: case 0x8835: case 0xA002: case 0xA003:
      return 4;
    case 0x011A: case 0x011B: case 0x011E: case 0x011F: case 0x013E: case 0x013F: case 0x828F: case 0x829A:
    case 0x829D: case 0x9102: case 0x9202: case 0x9205: case 0x920A: case 0xA20B: case 0xA20E: case 0xA20F:
    case 0xA215: case 0xA404: case 0xA432: case 0xA500:
      return 5;
    case 0x8773: case 0x8828: case 0x9000: case 0x9101: case 0x927C: case 0x9286: case 0xA000: case 0xA20C:
    case 0xA20D: case 0xA300: case 0xA301: case 0xA302: case 0xA40B: case 0xA462:
      return 7;
    case 0x882A:
      return 8;
    case 0x9201: case 0x9203: case 0x9204: case 0x9206:
      return 10;
    default:
      return 2;
  }
}

uint16_t MCExifGPSEntry::typeForExifGPSTag(uint16_t tag) {
  // Tags 1 to 31 in order.
  static const uint8_t types[31] = {2, 5, 2, 5, 1, 5, 5, 2, 2, 2, 5, 2, 5, 2, 5, 2, 5, 2, 2, 5, 2, 5, 2, 5, 2, 5, 7, 7, 2, 3, 5};
  return tag >= 1 && tag <= 31 ? types[tag - 1] : 1;
}
