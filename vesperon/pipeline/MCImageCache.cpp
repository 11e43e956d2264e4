#include <vesperon/pipeline/MCImageCache.h>
#include <vesperon/platform/MCApplicationDirectories.h>

#include <charconv>
#include <mutex>

MCImageCache::MCImageCache()
    : MCImageCache(MCApplicationDirectories::cacheDirectory() / MCApplicationDirectories::applicationIdentifier()) {}

MCImageCache::MCImageCache(std::filesystem::path root)
    : log_(MCLog::sdkImageCache()), root_(std::move(root)) {
  loadContainers();
}

const std::shared_ptr<MCImageCache>& MCImageCache::thumbnailsCache() {
  static const std::shared_ptr<MCImageCache> cache = std::make_shared<MCImageCache>();
  return cache;
}

std::string MCImageCache::directoryNameForPixelSize(int64_t pixelSize) {
  return pixelSize == 128 ? "Thumbnails" : "Thumbnails." + std::to_string(pixelSize);
}

void MCImageCache::loadContainers() {
  MCImageCacheContainer::removeStaleTemporaries(root_);  // left by writers killed mid-save
  std::error_code ec;
  std::filesystem::directory_iterator entries(root_, ec);
  if (ec) return;  // the normal first start: no root yet
  for (const auto& entry : entries) {
    const std::string name = entry.path().filename().string();
    if (name.empty() || name[0] == '.') continue;
    int64_t size = 0;
    if (name == "Thumbnails") {
      size = 128;
    } else {
      const std::string extension = entry.path().extension().string();
      if (extension.size() < 2) continue;
      const char* first = extension.data() + 1;
      const char* last = extension.data() + extension.size();
      auto [end, error] = std::from_chars(first, last, size);
      if (error != std::errc() || end != last) continue;
    }
    if (!containers_.count(size))
      containers_[size] = std::make_shared<MCImageCacheContainer>(root_ / directoryNameForPixelSize(size), log_);
  }
}

std::shared_ptr<MCImageCacheContainer> MCImageCache::containerForPixelSize(int64_t pixelSize) {
  {
    std::shared_lock lock(syncLock_);
    if (auto it = containers_.find(pixelSize); it != containers_.end()) return it->second;
  }
  std::unique_lock lock(syncLock_);
  if (auto it = containers_.find(pixelSize); it != containers_.end()) return it->second;
  std::error_code ec;
  std::filesystem::create_directories(root_, ec);
  if (ec || !std::filesystem::is_directory(root_, ec)) {
    log_->logError("Couldn't create Caches folder");
    return nullptr;
  }
  auto container = std::make_shared<MCImageCacheContainer>(root_ / directoryNameForPixelSize(pixelSize), log_);
  containers_[pixelSize] = container;
  return container;
}

MCImageCache::Containers MCImageCache::snapshot() {
  std::shared_lock lock(syncLock_);
  return containers_;
}

std::vector<int64_t> MCImageCache::pixelSizes() const {
  std::shared_lock lock(syncLock_);
  std::vector<int64_t> sizes;
  for (const auto& [size, container] : containers_) sizes.push_back(size);
  return sizes;
}

bool MCImageCache::containsImageWithIdentifier(int64_t id, int64_t pixelSize) {
  auto container = containerForPixelSize(pixelSize);
  return container && container->imageExists(container->imageURL(id));
}

bool MCImageCache::containsImageWithIdentifier(int64_t id) {
  for (const auto& [size, container] : snapshot())
    if (container->imageExists(container->imageURL(id))) return true;
  return false;
}

MCRasterImageRef MCImageCache::imageWithIdentifier(int64_t id, int64_t pixelSize) {
  auto container = containerForPixelSize(pixelSize);
  return container ? container->image(container->imageURL(id)) : nullptr;
}

MCRasterImageRef MCImageCache::imageWithIdentifierMinPixelSize(int64_t id, int64_t minPixelSize) {
  for (const auto& [size, container] : snapshot()) {
    if (size < minPixelSize) continue;
    if (auto image = container->image(container->imageURL(id))) return image;
  }
  return nullptr;
}

void MCImageCache::addImage(const MCRasterImageRef& image, int64_t id, int64_t pixelSize) {
  if (auto container = containerForPixelSize(pixelSize)) container->saveImage(image, container->imageURL(id), id);
}

void MCImageCache::removeImageWithIdentifier(int64_t id, int64_t pixelSize) {
  if (auto container = containerForPixelSize(pixelSize)) container->removeImage(container->imageURL(id), id);
}

void MCImageCache::removeImageWithIdentifier(int64_t id) {
  for (const auto& [size, container] : snapshot()) container->removeImage(container->imageURL(id), id);
}

void MCImageCache::clean() {
  for (const auto& [size, container] : snapshot()) container->clean();
  MCImageCacheContainer::removeStaleTemporaries(root_);
}
