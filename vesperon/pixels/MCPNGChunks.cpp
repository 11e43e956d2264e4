#include <vesperon/pixels/MCPNGChunks.h>

#include <array>
#include <cstring>

namespace mc_detail {

namespace {

uint32_t crc32Of(const uint8_t* data, std::size_t length) {
  static const auto table = [] {
    std::array<uint32_t, 256> t{};
    for (uint32_t n = 0; n < 256; ++n) {
      uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[n] = c;
    }
    return t;
  }();
  uint32_t crc = 0xFFFFFFFFu;
  for (std::size_t i = 0; i < length; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
  return ~crc;
}

void put32(MCData& out, uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(uint8_t(v >> shift));
}

}  // namespace

bool MCIsPNG(const uint8_t* bytes, std::size_t size) {
  static const uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  return bytes && size >= 8 && std::memcmp(bytes, kSignature, 8) == 0;
}

std::optional<std::vector<MCPNGChunk>> MCPNGChunks(const uint8_t* bytes, std::size_t size, std::string_view stopAt) {
  if (!MCIsPNG(bytes, size)) return std::nullopt;
  std::vector<MCPNGChunk> chunks;
  std::size_t at = 8;
  while (true) {
    if (size - at < 12) return std::nullopt;
    const std::size_t length = std::size_t(bytes[at]) << 24 | std::size_t(bytes[at + 1]) << 16 |
                               std::size_t(bytes[at + 2]) << 8 | bytes[at + 3];
    if (length > size - at - 12) return std::nullopt;
    MCPNGChunk chunk{at, length, std::string(reinterpret_cast<const char*>(bytes + at + 4), 4), bytes + at + 8};
    chunks.push_back(chunk);
    at += chunk.wholeSize();
    if (chunk.type == "IEND" || chunk.type == stopAt) return chunks;
  }
}

void MCAppendPNGChunk(MCData& out, std::string_view type, const uint8_t* data, std::size_t length) {
  put32(out, uint32_t(length));
  const std::size_t typeAt = out.size();
  out.insert(out.end(), type.begin(), type.end());
  if (length) out.insert(out.end(), data, data + length);
  put32(out, crc32Of(out.data() + typeAt, 4 + length));
}

std::vector<std::pair<std::string, std::string>> MCPNGTextEntries(const std::vector<MCPNGChunk>& chunks) {
  std::vector<std::pair<std::string, std::string>> entries;
  for (const MCPNGChunk& chunk : chunks) {
    if (chunk.type != "tEXt") continue;
    const auto* text = reinterpret_cast<const char*>(chunk.data);
    const void* nul = std::memchr(text, 0, chunk.length);
    if (!nul) continue;
    const std::size_t keyLength = std::size_t(static_cast<const char*>(nul) - text);
    entries.emplace_back(std::string(text, keyLength), std::string(text + keyLength + 1, chunk.length - keyLength - 1));
  }
  return entries;
}

}  // namespace mc_detail
