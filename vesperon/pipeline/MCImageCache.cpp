#include <vesperon/pipeline/MCImageCache.h>
#include <vesperon/platform/MCApplicationDirectories.h>

#include <charconv>

MCImageCache::MCImageCache()
    : MCImageCache(MCApplicationDirectories::cacheDirectory() / MCApplicationDirectories::applicationIdentifier()) {}

MCImageCache::MCImageCache(std::filesystem::path root)
    : log_(MCLog::sdkImageCache()),
      syncQueue_(std::make_unique<MCDispatchQueue>("com.quillary.image-cache", MCDispatchQueue::Kind::Concurrent)),
      root_(std::move(root)) {
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
  std::shared_ptr<MCImageCacheContainer> container;
  syncQueue_->sync([&] {
    auto it = containers_.find(pixelSize);
    if (it != containers_.end()) container = it->second;
  });
  if (container) return container;
  syncQueue_->barrierSync([&] {
    auto it = containers_.find(pixelSize);
    if (it != containers_.end()) {
      container = it->second;
      return;
    }
    std::error_code ec;
    std::filesystem::create_directories(root_, ec);
    if (ec || !std::filesystem::is_directory(root_, ec)) {
      log_->logError("Couldn't create Caches folder");
      return;
    }
    container = std::make_shared<MCImageCacheContainer>(root_ / directoryNameForPixelSize(pixelSize), log_);
    containers_[pixelSize] = container;
  });
  return container;
}

MCImageCache::Containers MCImageCache::snapshot() {
  Containers copy;
  syncQueue_->sync([&] { copy = containers_; });
  return copy;
}

std::vector<int64_t> MCImageCache::pixelSizes() const {
  std::vector<int64_t> sizes;
  syncQueue_->sync([&] {
    for (const auto& [size, container] : containers_) sizes.push_back(size);
  });
  return sizes;
}

bool MCImageCache::containsImageWithIdentifier(int64_t id, int64_t pixelSize) {
  auto container = containerForPixelSize(pixelSize);
  if (!container) return false;
  bool exists = false;
  container->syncQueue().sync([&] { exists = container->imageExists(container->imageURL(id)); });
  return exists;
}

bool MCImageCache::containsImageWithIdentifier(int64_t id) {
  for (const auto& [size, container] : snapshot()) {
    bool exists = false;
    container->syncQueue().sync([&, c = container] { exists = c->imageExists(c->imageURL(id)); });
    if (exists) return true;
  }
  return false;
}

MCRasterImageRef MCImageCache::imageWithIdentifier(int64_t id, int64_t pixelSize) {
  auto container = containerForPixelSize(pixelSize);
  if (!container) return nullptr;
  MCRasterImageRef image;
  container->syncQueue().sync([&] { image = container->image(container->imageURL(id)); });
  return image;
}

MCRasterImageRef MCImageCache::imageWithIdentifierMinPixelSize(int64_t id, int64_t minPixelSize) {
  for (const auto& [size, container] : snapshot()) {
    if (size < minPixelSize) continue;
    MCRasterImageRef image;
    container->syncQueue().sync([&, c = container] { image = c->image(c->imageURL(id)); });
    if (image) return image;
  }
  return nullptr;
}

void MCImageCache::addImage(const MCRasterImageRef& image, int64_t id, int64_t pixelSize) {
  auto container = containerForPixelSize(pixelSize);
  if (!container) return;
  const auto url = container->imageURL(id);
  container->syncQueue().barrierSync([&] { container->saveImage(image, url, id); });
}

void MCImageCache::removeImageWithIdentifier(int64_t id, int64_t pixelSize) {
  auto container = containerForPixelSize(pixelSize);
  if (!container) return;
  const auto url = container->imageURL(id);
  container->syncQueue().barrierSync([&] { container->removeImage(url, id); });
}

void MCImageCache::removeImageWithIdentifier(int64_t id) {
  for (const auto& [size, container] : snapshot()) {
    const auto url = container->imageURL(id);
    container->syncQueue().barrierSync([&, c = container] { c->removeImage(url, id); });
  }
}

void MCImageCache::clean() {
  for (const auto& [size, container] : snapshot())
    container->syncQueue().barrierSync([c = container] { c->clean(); });
}
