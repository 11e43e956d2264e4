#include <vesperon/pixels/MCImageSourceRotation.h>

#include <vesperon/pixels/MCPNGChunks.h>

#include <algorithm>
#include <array>
#include <string>
#include <cstring>
#include <vector>

namespace {

constexpr uint16_t kOrientationTag = 0x0112;
constexpr uint16_t kShortType = 3;

// Reads and writes integers of a TIFF block in its byte order.
struct Tiff {
  uint8_t* data;
  std::size_t length;
  bool bigEndian;

  bool has(std::size_t offset, std::size_t count) const { return offset <= length && count <= length - offset; }
  uint16_t u16(std::size_t at) const {
    return bigEndian ? uint16_t(data[at] << 8 | data[at + 1]) : uint16_t(data[at + 1] << 8 | data[at]);
  }
  uint32_t u32(std::size_t at) const {
    return bigEndian ? uint32_t(data[at]) << 24 | uint32_t(data[at + 1]) << 16 | uint32_t(data[at + 2]) << 8 | data[at + 3]
                     : uint32_t(data[at + 3]) << 24 | uint32_t(data[at + 2]) << 16 | uint32_t(data[at + 1]) << 8 | data[at];
  }
};

void put16(std::vector<uint8_t>& out, bool bigEndian, uint16_t v) {
  if (bigEndian) { out.push_back(uint8_t(v >> 8)); out.push_back(uint8_t(v)); }
  else { out.push_back(uint8_t(v)); out.push_back(uint8_t(v >> 8)); }
}
void put32(std::vector<uint8_t>& out, bool bigEndian, uint32_t v) {
  if (bigEndian) { put16(out, true, uint16_t(v >> 16)); put16(out, true, uint16_t(v)); }
  else { put16(out, false, uint16_t(v)); put16(out, false, uint16_t(v >> 16)); }
}
void set16(uint8_t* at, bool bigEndian, uint16_t v) {
  if (bigEndian) { at[0] = uint8_t(v >> 8); at[1] = uint8_t(v); }
  else { at[0] = uint8_t(v); at[1] = uint8_t(v >> 8); }
}
void set32(uint8_t* at, bool bigEndian, uint32_t v) {
  if (bigEndian) { set16(at, true, uint16_t(v >> 16)); set16(at + 2, true, uint16_t(v)); }
  else { set16(at, false, uint16_t(v)); set16(at + 2, false, uint16_t(v >> 16)); }
}

std::vector<uint8_t> orientationEntry(bool bigEndian, int orientation) {
  std::vector<uint8_t> entry;
  put16(entry, bigEndian, kOrientationTag);
  put16(entry, bigEndian, kShortType);
  put32(entry, bigEndian, 1);
  put16(entry, bigEndian, uint16_t(orientation));
  put16(entry, bigEndian, 0);
  return entry;
}

// The TIFF block with the orientation set, or none when it is malformed.
std::optional<std::vector<uint8_t>> rotatedTiff(std::vector<uint8_t> block, int orientation) {
  if (block.size() < 8) return std::nullopt;
  Tiff tiff{block.data(), block.size(), false};
  if (block[0] == 'M' && block[1] == 'M') tiff.bigEndian = true;
  else if (!(block[0] == 'I' && block[1] == 'I')) return std::nullopt;
  if (tiff.u16(2) != 42) return std::nullopt;
  const uint32_t ifd = tiff.u32(4);
  if (!tiff.has(ifd, 2)) return std::nullopt;
  const uint16_t count = tiff.u16(ifd);
  if (!tiff.has(ifd + 2, std::size_t(count) * 12 + 4)) return std::nullopt;
  std::size_t insertAt = count;  // the entries are sorted by tag
  for (uint16_t i = 0; i < count; ++i) {
    const std::size_t entry = ifd + 2 + std::size_t(i) * 12;
    const uint16_t tag = tiff.u16(entry);
    if (tag == kOrientationTag) {
      set16(block.data() + entry + 2, tiff.bigEndian, kShortType);
      set32(block.data() + entry + 4, tiff.bigEndian, 1);
      set16(block.data() + entry + 8, tiff.bigEndian, uint16_t(orientation));
      set16(block.data() + entry + 10, tiff.bigEndian, 0);
      return block;
    }
    if (tag > kOrientationTag && insertAt == count) insertAt = i;
  }
  // Append a copy of IFD0 with the entry, word-aligned, and point the header at it.
  const uint32_t nextIFD = tiff.u32(ifd + 2 + std::size_t(count) * 12);
  std::vector<uint8_t> copy(block.begin() + std::ptrdiff_t(ifd + 2),
                            block.begin() + std::ptrdiff_t(ifd + 2 + std::size_t(count) * 12));
  const auto entry = orientationEntry(tiff.bigEndian, orientation);
  copy.insert(copy.begin() + std::ptrdiff_t(insertAt * 12), entry.begin(), entry.end());
  if (block.size() % 2) block.push_back(0);
  const auto newIFD = uint32_t(block.size());
  put16(block, tiff.bigEndian, uint16_t(count + 1));
  block.insert(block.end(), copy.begin(), copy.end());
  put32(block, tiff.bigEndian, nextIFD);
  set32(block.data() + 4, tiff.bigEndian, newIFD);
  return block;
}

// A big-endian TIFF block holding only IFD0 with the orientation.
std::vector<uint8_t> minimalTiff(int orientation) {
  std::vector<uint8_t> tiff = {'M', 'M', 0, 42, 0, 0, 0, 8};
  put16(tiff, true, 1);
  const auto entry = orientationEntry(true, orientation);
  tiff.insert(tiff.end(), entry.begin(), entry.end());
  put32(tiff, true, 0);
  return tiff;
}

// A PNG's orientation lives in its eXIf chunk (a TIFF block, as in JPEG's APP1 without the
// "Exif" header): rewritten when there is one, otherwise a new chunk goes before the image data.
// Every other chunk is copied as it is.
std::optional<MCData> rotatedPNG(const MCData& source, int orientation) {
  auto chunks = mc_detail::MCPNGChunks(source.data(), source.size());
  if (!chunks || chunks->front().type != "IHDR") return std::nullopt;
  auto exif = std::find_if(chunks->begin(), chunks->end(), [](const auto& c) { return c.type == "eXIf"; });
  std::vector<uint8_t> tiff;
  if (exif != chunks->end()) {
    auto rotated = rotatedTiff(std::vector<uint8_t>(exif->data, exif->data + exif->length), orientation);
    if (!rotated) return std::nullopt;
    tiff = std::move(*rotated);
  } else {
    tiff = minimalTiff(orientation);
  }
  MCData result(source.begin(), source.begin() + 8);
  result.reserve(source.size() + tiff.size() + 12);
  bool written = false;
  for (const auto& chunk : *chunks) {
    if (chunk.type == "eXIf" || (!written && (chunk.type == "IDAT" || chunk.type == "IEND"))) {
      if (!written) mc_detail::MCAppendPNGChunk(result, "eXIf", tiff.data(), tiff.size());
      written = true;
      if (chunk.type == "eXIf") continue;
    }
    result.insert(result.end(), source.begin() + std::ptrdiff_t(chunk.offset),
                  source.begin() + std::ptrdiff_t(chunk.offset + chunk.wholeSize()));
  }
  return result;
}

}  // namespace

std::optional<MCData> MCCopyImageSourceWithRotation(const MCData& source, int orientation) {
  if (orientation < 1 || orientation > 8) return std::nullopt;
  if (source.size() >= 8 && source[0] == 0x89 && source[1] == 'P') return rotatedPNG(source, orientation);
  if (source.size() < 4 || source[0] != 0xFF || source[1] != 0xD8) return std::nullopt;
  static const uint8_t kExifHeader[6] = {'E', 'x', 'i', 'f', 0, 0};

  // Walk the segments up to the start of the scan.
  std::size_t at = 2, insertAt = 2;
  std::optional<std::pair<std::size_t, std::size_t>> exif;  // offset and length of the APP1 segment
  while (true) {
    if (at + 4 > source.size() || source[at] != 0xFF) return std::nullopt;
    const uint8_t marker = source[at + 1];
    if (marker == 0xDA || marker == 0xD9) break;
    const std::size_t length = std::size_t(source[at + 2]) << 8 | source[at + 3];
    if (length < 2 || at + 2 + length > source.size()) return std::nullopt;
    if (marker == 0xE1 && !exif && length >= 2 + 6 + 8 && std::memcmp(&source[at + 4], kExifHeader, 6) == 0)
      exif = std::make_pair(at, length);
    if (marker == 0xE0 && insertAt == at && at == 2) insertAt = at + 2 + length;
    at += 2 + length;
  }

  std::vector<uint8_t> tiff;
  std::size_t replaceFrom = insertAt, replaceLength = 0;
  if (exif) {
    const std::size_t blockStart = exif->first + 4 + 6;
    tiff.assign(source.begin() + std::ptrdiff_t(blockStart), source.begin() + std::ptrdiff_t(exif->first + 2 + exif->second));
    auto rotated = rotatedTiff(std::move(tiff), orientation);
    if (!rotated) return std::nullopt;
    tiff = std::move(*rotated);
    replaceFrom = exif->first;
    replaceLength = 2 + exif->second;
  } else {
    tiff = minimalTiff(orientation);
  }
  const std::size_t segmentLength = 2 + 6 + tiff.size();
  if (segmentLength > 0xFFFF) return std::nullopt;

  MCData result;
  result.reserve(source.size() + segmentLength + 2);
  result.insert(result.end(), source.begin(), source.begin() + std::ptrdiff_t(replaceFrom));
  result.push_back(0xFF);
  result.push_back(0xE1);
  result.push_back(uint8_t(segmentLength >> 8));
  result.push_back(uint8_t(segmentLength));
  result.insert(result.end(), kExifHeader, kExifHeader + 6);
  result.insert(result.end(), tiff.begin(), tiff.end());
  result.insert(result.end(), source.begin() + std::ptrdiff_t(replaceFrom + replaceLength), source.end());
  return result;
}
