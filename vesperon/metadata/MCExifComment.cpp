#include <vesperon/metadata/MCExifComment.h>

#include <vesperon/metadata/MCExifUtils.h>

#include <algorithm>

std::vector<uint8_t> MCExifComment::dataWithByteOrder(uint16_t) const {
  static const uint8_t asciiMarker[8] = {'A', 'S', 'C', 'I', 'I', 0, 0, 0};
  static const uint8_t unicodeMarker[8] = {'U', 'N', 'I', 'C', 'O', 'D', 'E', 0};
  std::vector<uint8_t> out;
  bool isASCII = std::all_of(stringValue_.begin(), stringValue_.end(),
                             [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (isASCII) {
    if (!stringValue_.empty()) {
      out.insert(out.end(), asciiMarker, asciiMarker + 8);
      out.insert(out.end(), stringValue_.begin(), stringValue_.end());
    }
  } else if (auto utf16 = mc_detail::utf16BigEndianFromUTF8(stringValue_); utf16 && !utf16->empty()) {
    out.insert(out.end(), unicodeMarker, unicodeMarker + 8);
    out.insert(out.end(), utf16->begin(), utf16->end());
  }
  out.insert(out.end(), 8, 0);
  return out;
}
