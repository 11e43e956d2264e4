#include <vesperon/metadata/MCExifRational.h>

#include <cstdio>

std::optional<MCExifRational> MCExifRational::createWithString(const std::string& text) {
  int n = 0, d = 0;
  if (std::sscanf(text.c_str(), "%d/%d", &n, &d) != 2) return std::nullopt;
  return create(n, d);
}

std::vector<uint8_t> MCExifRational::dataWithByteOrder(uint16_t order) const {
  std::vector<uint8_t> out(8);
  auto put = [&](std::size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) {
      int shift = order == 0x4D4D ? 24 - 8 * i : 8 * i;
      out[at + i] = static_cast<uint8_t>(v >> shift);
    }
  };
  put(0, value_.u.numerator);
  put(4, value_.u.denominator);
  return out;
}
