#include "TIFFStructure.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>

namespace mc_detail {

namespace {

constexpr std::size_t kPrefix = 6;           // "Exif\0\0"
constexpr std::size_t kLargestBlock = 0xfffe;  // what libexif reads of a block, its header included
constexpr std::size_t kMostEntries = 1024;

enum : uint16_t {
  kStripOffsets = 273,
  kStripByteCounts = 279,
  kTileOffsets = 324,
  kTileByteCounts = 325,
  kSubIFDs = 330,
  kXMP = 700,
  kIPTC = 33723,
  kPhotoshop = 34377,
  kICCProfile = 34675,
  kImageSourceData = 37724,
  kJPEGInterchangeFormat = 0x0201,
  kJPEGInterchangeFormatLength = 0x0202,
  kExifIFD = 0x8769,
  kGPSIFD = 0x8825,
  kInteroperabilityIFD = 0xA005,
};

std::size_t typeSize(uint16_t type) {
  switch (type) {
    case 1: case 2: case 6: case 7: return 1;     // BYTE, ASCII, SBYTE, UNDEFINED
    case 3: case 8: return 2;                     // SHORT, SSHORT
    case 4: case 9: case 11: case 13: return 4;   // LONG, SLONG, FLOAT, IFD
    case 5: case 10: case 12: return 8;           // RATIONAL, SRATIONAL, DOUBLE
    default: return 0;
  }
}

// Tags the Exif road has no use for, whose values are often large: left out from the start.
bool isBulk(uint16_t tag) {
  switch (tag) {
    case kStripOffsets: case kStripByteCounts: case kTileOffsets: case kTileByteCounts: case kSubIFDs:
    case kXMP: case kPhotoshop: case kICCProfile: case kImageSourceData:
      return true;
    default:
      return false;
  }
}

struct Entry {
  uint16_t tag = 0, type = 0;
  uint32_t count = 0;
  std::array<uint8_t, 4> inline_{};  // the value when it fits in four bytes
  std::vector<uint8_t> value;        // else the value's bytes
};

// Which directory an entry's pointer leads to.
enum class Kind { IFD0, IFD1, Exif, GPS, Interoperability };

struct Directory {
  Kind kind;
  std::vector<Entry> entries;
  std::vector<uint8_t> thumbnail;  // IFD 1's JPEG
};

class Reader {
 public:
  explicit Reader(const SourceBytes& bytes, bool little) : bytes_(bytes), little_(little) {}

  uint16_t u16(const uint8_t* p) const { return uint16_t(little_ ? p[0] | p[1] << 8 : p[0] << 8 | p[1]); }
  uint32_t u32(const uint8_t* p) const {
    return little_ ? uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24
                   : uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
  }

  bool read(std::size_t offset, std::size_t count, std::vector<uint8_t>& into) {
    if (offset >= bytes_.size() || count > bytes_.size() - offset || count > kLargestBlock) return false;
    into.resize(count);
    read_ += count;
    return bytes_.readAt(offset, into.data(), count) == count;
  }

  // The directory at `offset`, and the offset of the next one (0 for none).
  bool directory(uint32_t offset, Kind kind, Directory& out, uint32_t& next) {
    std::vector<uint8_t> raw;
    if (offset < 8 || !read(offset, 2, raw)) return false;
    const std::size_t count = std::min<std::size_t>(u16(raw.data()), kMostEntries);
    if (!read(offset + 2, count * 12 + 4, raw)) return false;
    out.kind = kind;
    for (std::size_t i = 0; i < count; ++i) {
      const uint8_t* e = raw.data() + i * 12;
      Entry entry;
      entry.tag = u16(e);
      entry.type = u16(e + 2);
      entry.count = u32(e + 4);
      const std::size_t length = typeSize(entry.type) * std::size_t(entry.count);
      if (isBulk(entry.tag) || length == 0) continue;
      if (length <= 4) std::memcpy(entry.inline_.data(), e + 8, 4);
      else if (!read(u32(e + 8), length, entry.value)) continue;
      out.entries.push_back(std::move(entry));
    }
    next = u32(raw.data() + count * 12);
    return true;
  }

  uint32_t pointer(const Entry& entry) const { return u32(entry.inline_.data()); }
  std::size_t bytesRead() const { return read_; }

 private:
  const SourceBytes& bytes_;
  bool little_;
  std::size_t read_ = 0;
};

class Writer {
 public:
  explicit Writer(bool little) : little_(little) {}
  void put16(std::vector<uint8_t>& b, std::size_t at, uint16_t v) const {
    b[at] = uint8_t(little_ ? v : v >> 8);
    b[at + 1] = uint8_t(little_ ? v >> 8 : v);
  }
  void put32(std::vector<uint8_t>& b, std::size_t at, uint32_t v) const {
    for (int i = 0; i < 4; ++i) b[at + std::size_t(i)] = uint8_t(v >> (little_ ? 8 * i : 24 - 8 * i));
  }

 private:
  bool little_;
};

}  // namespace

std::unique_ptr<TIFFStructure> TIFFStructure::read(const SourceBytes& bytes) {
  uint8_t header[8];
  if (bytes.readAt(0, header, sizeof header) != sizeof header) return nullptr;
  const bool little = header[0] == 'I' && header[1] == 'I';
  if (!little && !(header[0] == 'M' && header[1] == 'M')) return nullptr;
  Reader reader(bytes, little);
  if (reader.u16(header + 2) != 42) return nullptr;

  // The directories, each read once (a pointer back to one read already is left out).
  std::vector<Directory> directories;
  std::set<uint32_t> seen;
  uint32_t next = 0;
  auto add = [&](uint32_t offset, Kind kind, uint32_t* nextOut) {
    if (!seen.insert(offset).second) return false;
    Directory directory;
    uint32_t following = 0;
    if (!reader.directory(offset, kind, directory, following)) return false;
    directories.push_back(std::move(directory));
    if (nextOut) *nextOut = following;
    return true;
  };
  if (!add(reader.u32(header + 4), Kind::IFD0, &next)) return nullptr;
  for (std::size_t i = 0; i < directories.size(); ++i) {
    for (const Entry& entry : directories[i].entries) {
      if (entry.type != 4 && entry.type != 13) continue;
      if (entry.tag == kExifIFD && directories[i].kind == Kind::IFD0) add(reader.pointer(entry), Kind::Exif, nullptr);
      if (entry.tag == kGPSIFD && directories[i].kind == Kind::IFD0) add(reader.pointer(entry), Kind::GPS, nullptr);
      if (entry.tag == kInteroperabilityIFD && directories[i].kind == Kind::Exif)
        add(reader.pointer(entry), Kind::Interoperability, nullptr);
    }
  }
  if (next && add(next, Kind::IFD1, nullptr)) {
    Directory& ifd1 = directories.back();
    uint32_t at = 0, length = 0;
    for (const Entry& entry : ifd1.entries) {
      if (entry.tag == kJPEGInterchangeFormat) at = reader.pointer(entry);
      if (entry.tag == kJPEGInterchangeFormatLength) length = reader.pointer(entry);
    }
    if (at && length) reader.read(at, length, ifd1.thumbnail);
  }

  // Laid out again: header, the directories in the order read, then the values and the
  // thumbnail. Values that would pass the block's end are left out, the largest first.
  for (;;) {
    std::size_t size = kPrefix + 8;
    for (const Directory& d : directories) {
      size += 2 + d.entries.size() * 12 + 4;
      for (const Entry& e : d.entries) size += (e.value.size() + 1) & ~std::size_t(1);
      size += d.thumbnail.size();
    }
    if (size <= kLargestBlock) break;
    // The largest thumbnail or value goes.
    std::vector<uint8_t>* largest = nullptr;
    Directory* owner = nullptr;
    std::size_t index = 0;
    for (Directory& d : directories) {
      if (!largest || d.thumbnail.size() > largest->size()) largest = &d.thumbnail, owner = &d, index = SIZE_MAX;
      for (std::size_t i = 0; i < d.entries.size(); ++i)
        if (d.entries[i].value.size() > largest->size()) largest = &d.entries[i].value, owner = &d, index = i;
    }
    if (!largest || largest->empty()) return nullptr;
    if (index == SIZE_MAX) owner->thumbnail.clear();
    else owner->entries.erase(owner->entries.begin() + std::ptrdiff_t(index));
  }

  const Writer writer(little);
  std::unique_ptr<TIFFStructure> structure(new TIFFStructure());
  std::vector<uint8_t>& block = structure->block_;
  block.assign(kPrefix, 0);
  std::memcpy(block.data(), "Exif\0\0", kPrefix);
  block.insert(block.end(), header, header + 4);
  block.resize(kPrefix + 8);
  // Offsets count from the TIFF header, after the prefix.
  std::vector<uint32_t> where(directories.size());
  std::size_t at = 8;
  for (std::size_t i = 0; i < directories.size(); ++i) {
    where[i] = uint32_t(at);
    at += 2 + directories[i].entries.size() * 12 + 4;
  }
  writer.put32(block, kPrefix + 4, where[0]);
  block.resize(kPrefix + at);
  auto offsetOf = [&](Kind kind) -> uint32_t {
    for (std::size_t i = 0; i < directories.size(); ++i)
      if (directories[i].kind == kind) return where[i];
    return 0;
  };
  for (std::size_t i = 0; i < directories.size(); ++i) {
    const Directory& d = directories[i];
    std::size_t e = kPrefix + where[i];
    writer.put16(block, e, uint16_t(d.entries.size()));
    e += 2;
    uint32_t thumbnailAt = 0;
    if (!d.thumbnail.empty()) {
      thumbnailAt = uint32_t(block.size() - kPrefix);
      block.insert(block.end(), d.thumbnail.begin(), d.thumbnail.end());
    }
    for (const Entry& entry : d.entries) {
      writer.put16(block, e, entry.tag);
      writer.put16(block, e + 2, entry.type);
      writer.put32(block, e + 4, entry.count);
      if (!entry.value.empty()) {
        const uint32_t valueAt = uint32_t(block.size() - kPrefix);
        block.insert(block.end(), entry.value.begin(), entry.value.end());
        if (block.size() % 2) block.push_back(0);  // values start on a word boundary
        writer.put32(block, e + 8, valueAt);
      } else {
        std::memcpy(block.data() + e + 8, entry.inline_.data(), 4);
        // Pointers lead to where their directory now lies; one not kept leads nowhere.
        if (entry.tag == kExifIFD && d.kind == Kind::IFD0) writer.put32(block, e + 8, offsetOf(Kind::Exif));
        if (entry.tag == kGPSIFD && d.kind == Kind::IFD0) writer.put32(block, e + 8, offsetOf(Kind::GPS));
        if (entry.tag == kInteroperabilityIFD && d.kind == Kind::Exif)
          writer.put32(block, e + 8, offsetOf(Kind::Interoperability));
        if (entry.tag == kJPEGInterchangeFormat && d.kind == Kind::IFD1) writer.put32(block, e + 8, thumbnailAt);
        if (entry.tag == kJPEGInterchangeFormatLength && d.kind == Kind::IFD1)
          writer.put32(block, e + 8, uint32_t(d.thumbnail.size()));
      }
      e += 12;
    }
    writer.put32(block, e, d.kind == Kind::IFD0 ? offsetOf(Kind::IFD1) : 0);
  }
  structure->read_ = reader.bytesRead() + sizeof header;
  return structure;
}

}  // namespace mc_detail
