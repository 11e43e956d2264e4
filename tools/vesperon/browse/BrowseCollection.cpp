#include "BrowseCollection.h"

#include "../MediaFiles.h"

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCExif.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/metadata/MCExifReader.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <map>

namespace fs = std::filesystem;

namespace {

// The Exif block of a JPEG sits in its first segments; this much holds it in any camera's file.
constexpr std::size_t kExifWindow = 128 * 1024;

// "YYYY:MM:DD HH:MM:SS": the day is the first ten characters with dashes.
std::string dayOfExifDate(const std::string& text) {
  if (text.size() < 10 || text[4] != ':' || text[7] != ':') return "";
  std::string day = text.substr(0, 10);
  day[4] = day[7] = '-';
  if (day == "0000-00-00") return "";
  return day;
}

std::string exifDay(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return "";
  std::vector<uint8_t> bytes(kExifWindow);
  in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
  bytes.resize(std::size_t(in.gcount()));
  auto reader = MCExifReader::create(bytes);
  if (!reader) return "";
  auto exif = reader->parseExif();
  if (!exif) return "";
  const auto text = exif->dateTimeOriginal();
  return text ? dayOfExifDate(*text) : "";
}

// A file without an Exif block of its own at its start (a HEIC, a WebP, a clip …): what its
// codec plug-in reads.
std::string plugInDay(const fs::path& file) {
  const auto properties = MCImageReader::metadataFromImageAtURL(file, std::nullopt);
  const MCDictionary* exif = properties ? MCDictionaryGetDictionary(*properties, kCGImagePropertyExifDictionary) : nullptr;
  const MCValue* date = exif ? MCDictionaryGet(*exif, kCGImagePropertyExifDateTimeOriginal) : nullptr;
  return date && date->string() ? dayOfExifDate(*date->string()) : "";
}

std::string modificationDay(const fs::path& file) {
  std::error_code ec;
  const auto time = fs::last_write_time(file, ec);
  if (ec) return "";
  const auto system = std::chrono::time_point_cast<std::chrono::system_clock::duration>(
      time - fs::file_time_type::clock::now() + std::chrono::system_clock::now());
  const std::time_t seconds = std::chrono::system_clock::to_time_t(system);
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

}  // namespace

std::string BrowseCollection::captureDay(const fs::path& file, bool readExif) {
  if (readExif) {
    std::string day = exifDay(file);
    if (day.empty()) day = plugInDay(file);
    if (!day.empty()) return day;
  }
  return modificationDay(file);
}

namespace {

// The size and modification time of a file, as the facts keep them.
void readAttributes(BrowseFileFacts& about) {
  std::error_code ec;
  about.size = fs::file_size(about.file, ec);
  if (ec) about.size = 0;
  if (const auto time = fs::last_write_time(about.file, ec); !ec)
    about.modified = std::chrono::system_clock::to_time_t(std::chrono::file_clock::to_sys(time));
}

}  // namespace

BrowseCollection BrowseCollection::scan(const fs::path& folder, BrowseSortOrder order, std::size_t exifLimit) {
  return BrowseCollection::withFacts({}, order).rescanned(folder, exifLimit);
}

BrowseCollection BrowseCollection::rescanned(const fs::path& folder, std::size_t exifLimit) const {
  const std::vector<fs::path> files = findMediaFiles(folder);
  const bool readExif = files.size() <= exifLimit;
  std::vector<BrowseFileFacts> facts;
  facts.reserve(files.size());
  for (const auto& file : files) {
    BrowseFileFacts about{file, "", 0, 0, false};
    readAttributes(about);
    if (const BrowseFileFacts* known = factsOfFile(file); known && known->size == about.size && known->modified == about.modified) {
      facts.push_back(*known);
      continue;
    }
    if (readExif) about.captureDay = captureDay(file, true);
    else about.dayPending = true;
    facts.push_back(std::move(about));
  }
  return withFacts(std::move(facts), order_);
}

const BrowseFileFacts* BrowseCollection::factsOfFile(const fs::path& file) const {
  const auto it = indexes_.find(file.native());
  return it == indexes_.end() ? nullptr : &facts_[it->second];
}

BrowseCollection BrowseCollection::withFacts(std::vector<BrowseFileFacts> facts, BrowseSortOrder order) {
  BrowseCollection collection;
  collection.facts_ = std::move(facts);
  collection.order_ = order;
  collection.sizes_.reserve(collection.facts_.size());
  collection.indexes_.reserve(collection.facts_.size());
  for (std::size_t i = 0; i < collection.facts_.size(); ++i) {
    collection.sizes_.emplace(collection.facts_[i].file.native(), collection.facts_[i].size);
    collection.indexes_.emplace(collection.facts_[i].file.native(), i);
  }
  collection.arrange();
  return collection;
}

void BrowseCollection::arrange() {
  groups_.clear();
  for (auto& group : BrowseArrange(facts_, order_)) {
    BrowseGroup shown{std::move(group.title), {}};
    shown.files.reserve(group.members.size());
    for (std::size_t i : group.members) shown.files.push_back(facts_[i].file);
    groups_.push_back(std::move(shown));
  }
}

bool BrowseCollection::setCaptureDays(const std::vector<std::pair<fs::path, std::string>>& days) {
  bool changed = false;
  for (const auto& [file, day] : days) {
    const auto it = indexes_.find(file.native());
    if (it == indexes_.end()) continue;
    BrowseFileFacts& about = facts_[it->second];
    if (!about.dayPending && about.captureDay == day) continue;
    about.captureDay = day;
    about.dayPending = false;
    changed = true;
  }
  if (changed && order_.key == BrowseSortKey::Date) arrange();
  return changed && order_.key == BrowseSortKey::Date;
}

std::vector<fs::path> BrowseCollection::filesWithPendingDays() const {
  std::vector<fs::path> files;
  for (const auto& about : facts_)
    if (about.dayPending) files.push_back(about.file);
  return files;
}

BrowseCollection BrowseCollection::sorted(const BrowseSortOrder& order) const {
  if (facts_.empty() && !groups_.empty()) return *this;  // made-up items know no facts
  return withFacts(facts_, order);
}

uint64_t BrowseCollection::sizeOfFile(const fs::path& file) const {
  const auto it = sizes_.find(file.native());
  return it == sizes_.end() ? 0 : it->second;
}

BrowseCollection BrowseCollection::synthetic(const std::vector<std::size_t>& groupSizes) {
  BrowseCollection collection;
  std::size_t n = 0;
  for (std::size_t g = 0; g < groupSizes.size(); ++g) {
    BrowseGroup group{"group " + std::to_string(g), {}};
    group.files.reserve(groupSizes[g]);
    for (std::size_t i = 0; i < groupSizes[g]; ++i) group.files.push_back("/synthetic/" + std::to_string(n++) + ".jpg");
    collection.groups_.push_back(std::move(group));
  }
  return collection;
}

std::size_t BrowseCollection::numberOfFiles() const {
  std::size_t n = 0;
  for (const auto& group : groups_) n += group.files.size();
  return n;
}

BrowseCollection BrowseCollection::filtered(const std::function<bool(const std::filesystem::path&)>& keep) const {
  if (facts_.empty()) {
    BrowseCollection out;
    for (const BrowseGroup& group : groups_) {
      BrowseGroup kept{group.day, {}};
      for (const auto& file : group.files)
        if (keep(file)) kept.files.push_back(file);
      if (!kept.files.empty()) out.groups_.push_back(std::move(kept));
    }
    return out;
  }
  std::vector<BrowseFileFacts> kept;
  for (const auto& about : facts_)
    if (keep(about.file)) kept.push_back(about);
  return withFacts(std::move(kept), order_);
}
