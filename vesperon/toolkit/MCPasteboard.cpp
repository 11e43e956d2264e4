#include <vesperon/toolkit/MCPasteboard.h>

#include <cstdio>
#include <set>

namespace {

class MemoryBackend : public MCPasteboardBackend {
 public:
  void writeItems(std::vector<MCPasteboardItem> items) override { items_ = std::move(items); }
  std::vector<MCPasteboardItem> readItems() override { return items_; }

 private:
  std::vector<MCPasteboardItem> items_;
};

bool isUnreserved(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_' || c == '~' || c == '/';
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

bool MCPasteboardTypeConforms(const std::string& type, const std::string& wanted) {
  if (type == wanted) return true;
  if (wanted == MCPasteboardTypeURL) return type == MCPasteboardTypeFileURL;
  if (wanted == "public.text" || wanted == "public.plain-text") return type == MCPasteboardTypeString;
  if (wanted == "public.image") return type == MCPasteboardTypePNG || type == MCPasteboardTypeTIFF;
  if (wanted == "public.data" || wanted == "public.item") return true;
  return false;
}

std::string MCFileURLStringFromPath(const std::filesystem::path& path) {
  std::string url = "file://";
  const std::string absolute = path.is_absolute() ? path.string() : std::filesystem::absolute(path).string();
  for (unsigned char c : absolute) {
    if (isUnreserved(c)) {
      url.push_back(char(c));
    } else {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", c);
      url += escaped;
    }
  }
  return url;
}

std::optional<std::filesystem::path> MCPathFromFileURLString(const std::string& url) {
  std::string rest;
  if (url.rfind("file:///", 0) == 0) rest = url.substr(7);
  else if (url.rfind("file://localhost/", 0) == 0) rest = url.substr(16);
  else return std::nullopt;
  std::string path;
  for (std::size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] == '%') {
      if (i + 2 >= rest.size()) return std::nullopt;
      const int high = hexValue(rest[i + 1]), low = hexValue(rest[i + 2]);
      if (high < 0 || low < 0) return std::nullopt;
      path.push_back(char(high * 16 + low));
      i += 2;
    } else {
      path.push_back(rest[i]);
    }
  }
  return std::filesystem::path(path);
}

// MARK: MCPasteboardItem

void MCPasteboardItem::setData(const std::string& type, MCPasteboardData data) {
  if (!data_.count(type)) types_.push_back(type);
  data_[type] = std::move(data);
}

void MCPasteboardItem::setString(const std::string& type, const std::string& string) {
  setData(type, MCPasteboardData(string.begin(), string.end()));
}

std::optional<MCPasteboardData> MCPasteboardItem::dataForType(const std::string& type) const {
  auto it = data_.find(type);
  if (it == data_.end()) return std::nullopt;
  return it->second;
}

std::optional<std::string> MCPasteboardItem::stringForType(const std::string& type) const {
  auto data = dataForType(type);
  if (!data) return std::nullopt;
  return std::string(data->begin(), data->end());
}

std::optional<std::string> MCPasteboardItem::availableTypeFromArray(const std::vector<std::string>& types) const {
  for (const std::string& wanted : types)
    for (const std::string& held : types_)
      if (MCPasteboardTypeConforms(held, wanted)) return held;
  return std::nullopt;
}

std::shared_ptr<MCPasteboardItem> MCPasteboardItem::itemWithFileURL(const std::filesystem::path& path) {
  auto item = std::make_shared<MCPasteboardItem>();
  item->setString(MCPasteboardTypeFileURL, MCFileURLStringFromPath(path));
  return item;
}

std::optional<std::filesystem::path> MCPasteboardItem::fileURL() const {
  auto url = stringForType(MCPasteboardTypeFileURL);
  return url ? MCPathFromFileURLString(*url) : std::nullopt;
}

std::optional<MCPasteboardData> MCPasteboardItem::pasteboardDataForType(const std::string& type) const {
  return dataForType(type);
}

// MARK: MCPasteboard

MCPasteboard::MCPasteboard(std::string name) : name_(std::move(name)), backend_(std::make_shared<MemoryBackend>()) {}

std::shared_ptr<MCPasteboard> MCPasteboard::generalPasteboard() { return pasteboardWithName("general"); }

std::shared_ptr<MCPasteboard> MCPasteboard::pasteboardWithName(const std::string& name) {
  // Pasteboards belong to the main thread, as the views that use them.
  static std::map<std::string, std::shared_ptr<MCPasteboard>> named;
  auto& pasteboard = named[name];
  if (!pasteboard) pasteboard = std::make_shared<MCPasteboard>(name);
  return pasteboard;
}

std::shared_ptr<MCPasteboard> MCPasteboard::pasteboardWithUniqueName() {
  static long counter = 0;
  return std::make_shared<MCPasteboard>("unique-" + std::to_string(++counter));
}

long MCPasteboard::clearContents() {
  backend_->writeItems({});
  return ++changeCount_;
}

long MCPasteboard::changeCount() const { return changeCount_ + backend_->externalChangeCount(); }

bool MCPasteboard::writeObjects(const std::vector<std::shared_ptr<MCPasteboardWriting>>& writers) {
  std::vector<MCPasteboardItem> items = backend_->readItems();
  bool complete = true;
  for (const auto& writer : writers) {
    if (!writer) {
      complete = false;
      continue;
    }
    MCPasteboardItem item;
    for (const std::string& type : writer->writableTypes())
      if (auto data = writer->pasteboardDataForType(type)) item.setData(type, std::move(*data));
    if (item.types().empty()) complete = false;
    else items.push_back(std::move(item));
  }
  backend_->writeItems(std::move(items));
  ++changeCount_;
  return complete;
}

std::vector<MCPasteboardItem> MCPasteboard::pasteboardItems() const { return backend_->readItems(); }

std::vector<std::string> MCPasteboard::types() const {
  std::vector<std::string> all;
  std::set<std::string> seen;
  for (const MCPasteboardItem& item : backend_->readItems())
    for (const std::string& type : item.types())
      if (seen.insert(type).second) all.push_back(type);
  return all;
}

bool MCPasteboard::canReadItemWithDataConformingToTypes(const std::vector<std::string>& types) const {
  for (const MCPasteboardItem& item : backend_->readItems())
    if (item.availableTypeFromArray(types)) return true;
  return false;
}

std::optional<MCPasteboardData> MCPasteboard::dataForType(const std::string& type) const {
  const auto items = backend_->readItems();
  if (items.empty()) return std::nullopt;
  return items.front().dataForType(type);
}

std::optional<std::string> MCPasteboard::stringForType(const std::string& type) const {
  const auto items = backend_->readItems();
  if (items.empty()) return std::nullopt;
  return items.front().stringForType(type);
}

bool MCPasteboard::setString(const std::string& string, const std::string& type) {
  std::vector<MCPasteboardItem> items = backend_->readItems();
  if (items.empty()) items.emplace_back();
  items.front().setString(type, string);
  backend_->writeItems(std::move(items));
  ++changeCount_;
  return true;
}

std::vector<std::filesystem::path> MCPasteboard::readFileURLs() const {
  std::vector<std::filesystem::path> paths;
  for (const MCPasteboardItem& item : backend_->readItems())
    if (auto path = item.fileURL()) paths.push_back(*path);
  return paths;
}

bool MCPasteboard::writeFileURLs(const std::vector<std::filesystem::path>& paths) {
  std::vector<std::shared_ptr<MCPasteboardWriting>> writers;
  for (const auto& path : paths) writers.push_back(MCPasteboardItem::itemWithFileURL(path));
  return writeObjects(writers);
}

void MCPasteboard::setBackend(std::shared_ptr<MCPasteboardBackend> backend) {
  backend_ = backend ? std::move(backend) : std::make_shared<MemoryBackend>();
  ++changeCount_;
}
