#pragma once
// Small image files whose headers claim far more pixels than they hold, made by the tests that
// need them instead of being checked in: a PNG of 100000 × 100000 pixels in about 58 KB, a JPEG
// whose frame header is rewritten to claim another size, and a WebP animation whose canvas is.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace claimed_size {

inline uint32_t crc32(const uint8_t* data, std::size_t size, uint32_t crc = 0) {
  crc = ~crc;
  for (std::size_t i = 0; i < size; ++i) {
    crc ^= data[i];
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

inline void put32(std::vector<uint8_t>& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(uint8_t(v >> shift));
}

inline void chunk(std::vector<uint8_t>& png, const char type[4], const std::vector<uint8_t>& data) {
  put32(png, uint32_t(data.size()));
  std::vector<uint8_t> typed(type, type + 4);
  typed.insert(typed.end(), data.begin(), data.end());
  png.insert(png.end(), typed.begin(), typed.end());
  put32(png, crc32(typed.data(), typed.size()));
}

/// A well-formed RGB PNG header claiming width × height, with one IDAT of `dataBytes` zero
/// bytes in a stored zlib stream: the start of the rows, never their end.
inline void writePNG(const std::filesystem::path& path, uint32_t width, uint32_t height, std::size_t dataBytes = 58000) {
  std::vector<uint8_t> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  std::vector<uint8_t> header;
  put32(header, width);
  put32(header, height);
  header.insert(header.end(), {8, 2, 0, 0, 0});  // 8-bit RGB, deflate, no filter method, no interlace
  chunk(png, "IHDR", header);
  std::vector<uint8_t> zlib = {0x78, 0x01, 0x01};  // one final stored block
  const uint16_t length = uint16_t(dataBytes), inverse = uint16_t(~length);
  zlib.insert(zlib.end(), {uint8_t(length), uint8_t(length >> 8), uint8_t(inverse), uint8_t(inverse >> 8)});
  zlib.insert(zlib.end(), length, 0);
  put32(zlib, (uint32_t(length) << 16) | 1u);  // Adler-32 of zero bytes: a = 1, b = n
  chunk(png, "IDAT", zlib);
  chunk(png, "IEND", {});
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
}

inline std::vector<uint8_t> readBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

inline void writeBytes(const std::filesystem::path& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

/// A copy of the JPEG `source` whose baseline or progressive frame header claims width × height;
/// the scan data stays that of the source, so it ends long before such an image would.
inline bool writeJPEGClaiming(const std::filesystem::path& source, const std::filesystem::path& path, uint16_t width,
                              uint16_t height) {
  std::vector<uint8_t> bytes = readBytes(source);
  for (std::size_t i = 2; i + 9 < bytes.size();) {
    if (bytes[i] != 0xFF) return false;
    const uint8_t marker = bytes[i + 1];
    const std::size_t length = std::size_t(bytes[i + 2]) << 8 | bytes[i + 3];
    if (marker == 0xC0 || marker == 0xC1 || marker == 0xC2) {
      bytes[i + 5] = uint8_t(height >> 8), bytes[i + 6] = uint8_t(height);
      bytes[i + 7] = uint8_t(width >> 8), bytes[i + 8] = uint8_t(width);
      writeBytes(path, bytes);
      return true;
    }
    i += 2 + length;
  }
  return false;
}

/// A copy of the extended-format WebP `source` (an animation, say) whose VP8X header claims a
/// canvas of width × height (each at most 16384); its frames stay as they were, at their offsets.
inline bool writeWebPClaimingCanvas(const std::filesystem::path& source, const std::filesystem::path& path, uint32_t width,
                                    uint32_t height) {
  std::vector<uint8_t> bytes = readBytes(source);
  if (bytes.size() < 30 || std::string(bytes.begin() + 12, bytes.begin() + 16) != "VP8X") return false;
  for (int i = 0; i < 3; ++i) {
    bytes[24 + i] = uint8_t((width - 1) >> (8 * i));
    bytes[27 + i] = uint8_t((height - 1) >> (8 * i));
  }
  writeBytes(path, bytes);
  return true;
}

/// Where the entropy-coded data of the JPEG's first scan begins (just after its SOS segment), or 0.
inline std::size_t firstScanDataOffset(const std::vector<uint8_t>& bytes) {
  for (std::size_t i = 2; i + 3 < bytes.size();) {
    if (bytes[i] != 0xFF) return 0;
    const std::size_t length = std::size_t(bytes[i + 2]) << 8 | bytes[i + 3];
    if (bytes[i + 1] == 0xDA) return i + 2 + length;
    i += 2 + length;
  }
  return 0;
}

}  // namespace claimed_size
