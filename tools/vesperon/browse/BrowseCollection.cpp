#include "BrowseCollection.h"

#include "../MediaFiles.h"

#include <vesperon/catalogue/MCSearchableProperties.h>
#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/pixels/MCImageTypes.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

#include <libexif/exif-data.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
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

// How many bytes from the start of the file hold its Exif block: for a JPEG, up to the end of its
// Exif APP1 segment, found by walking the segments before it (0 when it has none); for other
// files, a window that holds the block of any camera's file. `head` holds the first bytes read.
std::size_t exifExtent(int fd, std::vector<uint8_t>& head, bool& isJPEG) {
  isJPEG = head.size() >= 4 && head[0] == 0xFF && head[1] == 0xD8;
  if (!isJPEG) return kExifWindow;
  std::size_t pos = 2;
  while (true) {
    if (pos + 10 > head.size()) {
      // The segments before the Exif block went past what was read: read on, within the window.
      if (pos + 10 > kExifWindow) return 0;
      const std::size_t had = head.size();
      head.resize(std::min(kExifWindow, pos + 4096));
      const ssize_t got = ::pread(fd, head.data() + had, head.size() - had, off_t(had));
      head.resize(had + std::size_t(std::max<ssize_t>(got, 0)));
      if (pos + 10 > head.size()) return 0;
    }
    if (head[pos] != 0xFF) return 0;
    const uint8_t marker = head[pos + 1];
    if (marker == 0xDA || marker == 0xD9) return 0;  // the image data: no Exif block before it
    const std::size_t length = (std::size_t(head[pos + 2]) << 8) | head[pos + 3];
    if (length < 2) return 0;
    if (marker == 0xE1 && std::memcmp(head.data() + pos + 4, "Exif\0\0", 6) == 0) return pos + 2 + length;
    pos += 2 + length;
  }
}

std::string exifDay(const fs::path& file, bool& isJPEG) {
  isJPEG = false;
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return "";
  // Tens of thousands of files are read: one buffer per thread, and of a JPEG only its Exif
  // segment rather than a fixed window that is often the whole file.
  thread_local std::vector<uint8_t> bytes;
  bytes.resize(4096);
  ssize_t got = ::pread(fd, bytes.data(), bytes.size(), 0);
  bytes.resize(std::size_t(std::max<ssize_t>(got, 0)));
  const std::size_t extent = exifExtent(fd, bytes, isJPEG);
  if (extent > bytes.size()) {
    const std::size_t had = bytes.size();
    bytes.resize(extent);
    got = ::pread(fd, bytes.data() + had, extent - had, off_t(had));
    bytes.resize(had + std::size_t(std::max<ssize_t>(got, 0)));
  }
  ::close(fd);
  if (extent == 0 || bytes.empty()) return "";
  // Only the one tag is wanted: libexif is asked to load the block as it is, without the fixing
  // up to the standard and the tag table checks that a full reading does, which cost more than
  // the load itself.
  ExifData* data = exif_data_new();
  if (!data) return "";
  exif_data_unset_option(data, EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_unset_option(data, EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
  exif_data_load_data(data, bytes.data(), static_cast<unsigned int>(std::min(bytes.size(), extent)));
  std::string day;
  for (ExifIfd ifd : {EXIF_IFD_EXIF, EXIF_IFD_0}) {
    const ExifEntry* entry = exif_content_get_entry(data->ifd[ifd], EXIF_TAG_DATE_TIME_ORIGINAL);
    if (!entry || !entry->data || entry->format != EXIF_FORMAT_ASCII || entry->size < 10) continue;
    day = dayOfExifDate(std::string(reinterpret_cast<const char*>(entry->data), entry->size));
    if (!day.empty()) break;
  }
  exif_data_unref(data);
  return day;
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
    bool isJPEG = false;
    std::string day = exifDay(file, isJPEG);
    // A JPEG says all it has in its Exif segment; other formats are asked of their plug-in.
    if (day.empty() && !isJPEG) day = plugInDay(file);
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

std::optional<bool> BrowseCollection::folderHolds(const std::vector<FileIdentity>& files, const fs::path& folder,
                                                  std::stop_token stop) {
  std::unordered_map<std::string_view, const FileIdentity*> byPath;
  byPath.reserve(files.size());
  for (const FileIdentity& file : files) byPath.emplace(file.path, &file);
  // The walk findMediaFiles makes, a stat per file, and a stop between any two entries.
  std::size_t found = 0;
  std::error_code ec;
  fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    if (stop.stop_requested()) return std::nullopt;
    std::error_code typeError;
    if (!it->is_regular_file(typeError)) continue;
    const auto known = byPath.find(std::string_view(it->path().native()));
    if (known == byPath.end()) {
      if (MCIsMediaFileName(it->path())) return false;  // a photo the facts do not hold
      continue;
    }
    ++found;
    struct stat now {};
    if (::stat(it->path().c_str(), &now) != 0) return false;
    if (uint64_t(now.st_size) != known->second->size || std::time_t(now.st_mtim.tv_sec) != known->second->modified)
      return false;
  }
  if (stop.stop_requested()) return std::nullopt;
  return found == byPath.size();
}

const BrowseFileFacts* BrowseCollection::factsOfFile(const fs::path& file) const {
  const auto it = contents_->indexes.find(file.native());
  return it == contents_->indexes.end() ? nullptr : &contents_->facts[it->second];
}

BrowseCollection BrowseCollection::withFacts(std::vector<BrowseFileFacts> facts, BrowseSortOrder order) {
  BrowseCollection collection;
  Contents& contents = *collection.contents_;
  contents.facts = std::move(facts);
  collection.order_ = order;
  contents.indexes.reserve(contents.facts.size());
  for (std::size_t i = 0; i < contents.facts.size(); ++i) contents.indexes.emplace(contents.facts[i].file.native(), i);
  collection.arrange();
  return collection;
}

BrowseCollection::Contents& BrowseCollection::own() {
  if (contents_.use_count() > 1) contents_ = std::make_shared<Contents>(*contents_);
  return *contents_;
}

void BrowseCollection::arrange() {
  Contents& contents = own();
  contents.groups.clear();
  for (auto& group : BrowseArrange(contents.facts, order_)) {
    BrowseGroup shown{std::move(group.title), {}};
    shown.files.reserve(group.members.size());
    for (std::size_t i : group.members) shown.files.push_back(contents.facts[i].file);
    contents.groups.push_back(std::move(shown));
  }
}

bool BrowseCollection::setCaptureDays(const std::vector<std::pair<fs::path, std::string>>& days) {
  bool changed = false;
  for (const auto& [file, day] : days) {
    const auto it = contents_->indexes.find(file.native());
    if (it == contents_->indexes.end()) continue;
    const BrowseFileFacts& known = contents_->facts[it->second];
    if (!known.dayPending && known.captureDay == day) continue;
    BrowseFileFacts& about = own().facts[it->second];
    about.captureDay = day;
    about.dayPending = false;
    changed = true;
  }
  if (changed && order_.key == BrowseSortKey::Date) arrange();
  return changed && order_.key == BrowseSortKey::Date;
}

std::vector<fs::path> BrowseCollection::filesWithPendingDays() const {
  std::vector<fs::path> files;
  for (const auto& about : contents_->facts)
    if (about.dayPending) files.push_back(about.file);
  return files;
}

BrowseCollection BrowseCollection::sorted(const BrowseSortOrder& order) const {
  if (contents_->facts.empty() && !contents_->groups.empty()) return *this;  // made-up items know no facts
  return withFacts(contents_->facts, order);
}

uint64_t BrowseCollection::sizeOfFile(const fs::path& file) const {
  const BrowseFileFacts* about = factsOfFile(file);
  return about ? about->size : 0;
}

BrowseCollection BrowseCollection::synthetic(const std::vector<std::size_t>& groupSizes) {
  BrowseCollection collection;
  std::size_t n = 0;
  for (std::size_t g = 0; g < groupSizes.size(); ++g) {
    BrowseGroup group{"group " + std::to_string(g), {}};
    group.files.reserve(groupSizes[g]);
    for (std::size_t i = 0; i < groupSizes[g]; ++i) group.files.push_back("/synthetic/" + std::to_string(n++) + ".jpg");
    collection.contents_->groups.push_back(std::move(group));
  }
  return collection;
}

std::size_t BrowseCollection::numberOfFiles() const {
  std::size_t n = 0;
  for (const auto& group : contents_->groups) n += group.files.size();
  return n;
}

BrowseCollection BrowseCollection::filtered(const std::function<bool(const std::filesystem::path&)>& keep) const {
  if (contents_->facts.empty()) {
    BrowseCollection out;
    for (const BrowseGroup& group : contents_->groups) {
      BrowseGroup kept{group.day, {}};
      for (const auto& file : group.files)
        if (keep(file)) kept.files.push_back(file);
      if (!kept.files.empty()) out.contents_->groups.push_back(std::move(kept));
    }
    return out;
  }
  std::vector<BrowseFileFacts> kept;
  for (const auto& about : contents_->facts)
    if (keep(about.file)) kept.push_back(about);
  return withFacts(std::move(kept), order_);
}
