#include <vesperon/files/MCBookmarkData.h>


#include <cstring>
#include <system_error>

namespace {

constexpr char kMagic[8] = {'V', 'S', 'P', 'B', 'M', 'K', '0', '1'};
constexpr std::size_t kMaxText = 1 << 16;  // longer than any path Linux accepts

void put(MCData& out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void putText(MCData& out, const std::string& text) {
  put(out, text.size(), 4);
  out.insert(out.end(), text.begin(), text.end());
}

struct Reader {
  const MCData& data;
  std::size_t at = 0;
  bool failed = false;

  uint64_t take(int bytes) {
    if (failed || data.size() - at < static_cast<std::size_t>(bytes)) {
      failed = true;
      return 0;
    }
    uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) value |= static_cast<uint64_t>(data[at + i]) << (8 * i);
    at += bytes;
    return value;
  }
  std::string text() {
    const uint64_t size = take(4);
    if (failed || size > kMaxText || data.size() - at < size) {
      failed = true;
      return {};
    }
    std::string out(reinterpret_cast<const char*>(data.data() + at), size);
    at += size;
    return out;
  }
};

}  // namespace

std::optional<MCBookmarkData> MCBookmarkData::ofItemAtPath(const std::filesystem::path& path, std::string* error,
                                                           MCDocumentPortal* portal) {
  std::error_code ec;
  const std::filesystem::path absolute = std::filesystem::absolute(path, ec).lexically_normal();
  auto identity = ec ? std::nullopt : MCFileIdentity::ofItemAtPath(absolute);
  if (!identity) {
    if (error) *error = "cannot read \"" + path.string() + "\": " + std::strerror(errno);
    return std::nullopt;
  }
  MCBookmarkData bookmark;
  bookmark.path = absolute;
  bookmark.identity = *identity;
  if (portal) {
    auto document = portal->addDocument(absolute, error);
    if (!document) return std::nullopt;
    bookmark.documentIdentifier = *document;
  }
  return bookmark;
}

MCData MCBookmarkData::encoded() const {
  MCData out(kMagic, kMagic + sizeof kMagic);
  put(out, identity.device, 8);
  put(out, identity.inode, 8);
  put(out, static_cast<uint64_t>(identity.birthTime), 8);
  put(out, identity.generation, 8);
  putText(out, path.string());
  putText(out, documentIdentifier);
  return out;
}

std::optional<MCBookmarkData> MCBookmarkData::decode(const MCData& data) {
  if (data.size() < sizeof kMagic || std::memcmp(data.data(), kMagic, sizeof kMagic) != 0) return std::nullopt;
  Reader reader{data, sizeof kMagic};
  MCBookmarkData bookmark;
  bookmark.identity.device = reader.take(8);
  bookmark.identity.inode = reader.take(8);
  bookmark.identity.birthTime = static_cast<int64_t>(reader.take(8));
  bookmark.identity.generation = reader.take(8);
  bookmark.path = reader.text();
  bookmark.documentIdentifier = reader.text();
  if (reader.failed || reader.at != data.size() || bookmark.path.empty() || !bookmark.path.is_absolute())
    return std::nullopt;
  return bookmark;
}

std::optional<std::filesystem::path> MCBookmarkData::resolve(std::string* error, MCDocumentPortal* portal) const {
  if (!documentIdentifier.empty()) {
    if (!portal) {
      if (error) *error = "the bookmark was made inside a sandbox and needs the document portal";
      return std::nullopt;
    }
    return portal->pathOfDocument(documentIdentifier, error);
  }
  if (auto now = MCFileIdentity::ofItemAtPath(path); now && now->isSameFileAs(identity)) return path;
  // Renamed in place: the same item under another name in the same folder.
  std::error_code ec;
  for (std::filesystem::directory_iterator it(path.parent_path(), ec), end; !ec && it != end; it.increment(ec)) {
    auto candidate = MCFileIdentity::ofItemAtPath(it->path());
    if (candidate && candidate->isSameFileAs(identity)) return it->path();
  }
  if (error) {
    *error = std::filesystem::exists(path, ec)
                 ? "\"" + path.string() + "\" is another item than the one bookmarked (replaced)"
                 : "\"" + path.string() + "\" no longer exists (moved or deleted)";
  }
  return std::nullopt;
}
