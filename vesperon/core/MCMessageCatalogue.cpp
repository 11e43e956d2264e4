#include <vesperon/core/MCMessageCatalogue.h>

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kMagic = 0x950412de;
constexpr std::uint32_t kMagicSwapped = 0xde120495;

std::uint32_t swapped(std::uint32_t v) {
  return (v >> 24) | ((v >> 8) & 0xff00) | ((v << 8) & 0xff0000) | (v << 24);
}

}  // namespace

std::optional<MCMessageCatalogue> MCMessageCatalogue::catalogueWithData(std::string_view bytes) {
  auto word = [&](std::size_t offset, bool swap, std::uint32_t& out) {
    if (offset > bytes.size() || bytes.size() - offset < 4) return false;
    std::uint32_t v;
    std::memcpy(&v, bytes.data() + offset, 4);
    out = swap ? swapped(v) : v;
    return true;
  };
  std::uint32_t magic = 0;
  if (!word(0, false, magic) || (magic != kMagic && magic != kMagicSwapped)) return std::nullopt;
  const bool swap = magic == kMagicSwapped;
  std::uint32_t count = 0, originals = 0, translations = 0;
  if (!word(8, swap, count) || !word(12, swap, originals) || !word(16, swap, translations)) return std::nullopt;
  // Each entry is a length and an offset, 8 bytes; a count beyond the file is a broken file.
  if (count > bytes.size() / 8) return std::nullopt;
  auto string = [&](std::uint32_t table, std::uint32_t index, std::string_view& out) {
    std::uint32_t length = 0, offset = 0;
    if (!word(std::size_t(table) + std::size_t(index) * 8, swap, length) ||
        !word(std::size_t(table) + std::size_t(index) * 8 + 4, swap, offset))
      return false;
    if (offset > bytes.size() || bytes.size() - offset < length) return false;
    out = bytes.substr(offset, length);
    return true;
  };
  MCMessageCatalogue catalogue;
  catalogue.messages_.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    std::string_view key, value;
    if (!string(originals, i, key) || !string(translations, i, value)) return std::nullopt;
    if (key.empty()) continue;  // the header entry
    catalogue.messages_.emplace(std::string(key), std::string(value));
  }
  return catalogue;
}

std::optional<MCMessageCatalogue> MCMessageCatalogue::catalogueWithContentsOfFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  return catalogueWithData(bytes);
}

fs::path MCMessageCatalogue::localeDirectory() {
  if (const char* folder = std::getenv("VESPERON_LOCALEDIR"); folder && *folder) return folder;
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&MCMessageCatalogue::localeDirectory), &info) == 0 || !info.dli_fname) return {};
  std::error_code ec;
  fs::path library = fs::canonical(info.dli_fname, ec);
  if (ec) library = info.dli_fname;
  return (library.parent_path() / VESPERON_LOCALE_FROM_LIBDIR).lexically_normal();
}

const MCMessageCatalogue& MCMessageCatalogue::english() {
  static const MCMessageCatalogue catalogue =
      catalogueWithContentsOfFile(localeDirectory() / "en" / "LC_MESSAGES" / "vesperon.mo").value_or(MCMessageCatalogue{});
  return catalogue;
}

std::optional<std::string_view> MCMessageCatalogue::translationForKey(std::string_view key) const {
  auto it = messages_.find(std::string(key));
  if (it == messages_.end()) return std::nullopt;
  return std::string_view(it->second);
}
