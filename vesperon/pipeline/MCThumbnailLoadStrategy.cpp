#include <vesperon/pipeline/MCThumbnailLoadStrategy.h>

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/pipeline/MCFreedesktopThumbnailCache.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pipeline/MCThumbnailResource.h>

#include <algorithm>

namespace {

bool reaches(const MCRasterImageRef& image, uint64_t wanted) {
  const uint64_t width = image ? image->width() : 0;
  const uint64_t height = image ? image->height() : 0;
  return width >= wanted || height >= wanted;
}

bool hasArea(const MCRasterImageRef& image) { return image && image->width() > 0 && image->height() > 0; }

// Whether `candidate` should replace `best`: both sides strictly greater (anything beats none).
bool beats(const MCRasterImageRef& candidate, const MCRasterImageRef& best) {
  if (!hasArea(candidate)) return false;
  if (!best) return true;
  return candidate->width() > best->width() && candidate->height() > best->height();
}

std::optional<std::string> typeOrNone(const std::string& type) {
  if (type.empty()) return std::nullopt;
  return type;
}

}  // namespace

std::shared_ptr<MCResource> MCThumbnailLoadStrategy::loadResourceForDescriptor(
    const std::shared_ptr<const MCResourceDescriptor>& descriptor, const std::shared_ptr<const MCResourceLoadOptions>& options) {
  auto image = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor);
  auto thumbnailOptions = std::dynamic_pointer_cast<const MCThumbnailLoadOptions>(options);
  if (!image || !thumbnailOptions) return nullptr;
  MCRasterImageRef thumbnail = newThumbnailForImageDescriptor(*image, *thumbnailOptions);
  return std::make_shared<MCThumbnailResource>(MCThumbnail(std::move(thumbnail)),
                                               int64_t(thumbnailOptions->thumbnailMaxPixelSize()));
}

MCRasterImageRef MCThumbnailLoadStrategy::newThumbnailForImageDescriptor(const MCImageDescriptor& descriptor,
                                                                         const MCThumbnailLoadOptions& options) const {
  const uint64_t budget = options.maxDecodePixelCount();
  uint64_t wanted = descriptor.estimatedPixelSize;
  if (const uint64_t max = options.thumbnailMaxPixelSize(); max != 0)
    wanted = descriptor.estimatedPixelSize != 0 ? std::min(max, descriptor.estimatedPixelSize) : max;
  // The desktop's shared cache: what another program (or an earlier run) made of this very file.
  if (options.readsSharedThumbnails() && !options.createThumbnailFromImageAlways() && !descriptor.fileURL.empty()) {
    const MCFreedesktopThumbnailCache shared;
    if (auto cached = shared.thumbnailForFile(descriptor.fileURL, wanted); cached && reaches(cached, wanted)) return cached;
    if (shared.hasFailedForFile(descriptor.fileURL)) return nullptr;
  }
  const std::vector<MCThumbnailDescriptor> none;
  const std::vector<MCThumbnailDescriptor>& candidates = descriptor.thumbnailDescriptors ? *descriptor.thumbnailDescriptors : none;

  // Stage one: the candidates that should be large enough, the smallest sufficient first.
  MCRasterImageRef best;
  std::vector<MCThumbnailDescriptor> sufficient;
  for (const auto& candidate : candidates)
    if (candidate.estimatedPixelSize == 0 || candidate.estimatedPixelSize >= wanted) sufficient.push_back(candidate);
  if (!sufficient.empty()) {
    std::stable_sort(sufficient.begin(), sufficient.end(),
                     [](const auto& a, const auto& b) { return a.estimatedPixelSize < b.estimatedPixelSize; });
    best = newThumbnailForThumbnailDescriptors(sufficient, wanted, budget);
    if (!hasArea(best)) best = nullptr;
    if (reaches(best, wanted)) return best;
  }

  // Stage two: the image file itself.
  if (auto fromFile = newThumbnailForImageDescriptor(descriptor, wanted, options.createThumbnailFromImageAlways(), budget)) {
    if (beats(fromFile, best)) best = std::move(fromFile);
    if (reaches(best, wanted)) return best;
  }

  // Stage three: anything at all, the largest first.
  if (!candidates.empty()) {
    std::vector<MCThumbnailDescriptor> all = candidates;
    std::stable_sort(all.begin(), all.end(),
                     [](const auto& a, const auto& b) { return a.estimatedPixelSize > b.estimatedPixelSize; });
    auto any = newThumbnailForThumbnailDescriptors(all, wanted, budget);
    if (beats(any, best)) best = std::move(any);
  }
  return best;
}

MCRasterImageRef MCThumbnailLoadStrategy::newThumbnailForImageDescriptor(const MCImageDescriptor& descriptor,
                                                                         uint64_t maxPixelSize,
                                                                         bool createFromImageAlways,
                                                                         uint64_t maxDecodePixelCount) const {
  MCThumbnailReadingOptions options;
  options.maxDecodePixelCount = maxDecodePixelCount;
  options.createThumbnailFromImageAlways = createFromImageAlways;
  options.createThumbnailFromImageIfAbsent = true;
  options.createThumbnailWithTransform = true;
  options.thumbnailMinPixelSize = std::min(descriptor.estimatedPixelSize, maxPixelSize);
  options.thumbnailMaxPixelSize = maxPixelSize;
  return MCImageReader::newThumbnailWithURL(descriptor.fileURL, descriptor.typeIdentifier, options, nullptr);
}

MCRasterImageRef MCThumbnailLoadStrategy::newThumbnailForThumbnailDescriptors(
    const std::vector<MCThumbnailDescriptor>& descriptors, uint64_t maxPixelSize, uint64_t maxDecodePixelCount) const {
  MCRasterImageRef best;
  for (const auto& descriptor : descriptors) {
    MCThumbnailReadingOptions options;
    options.maxDecodePixelCount = maxDecodePixelCount;
    options.createThumbnailFromImageAlways = true;
    options.createThumbnailFromImageIfAbsent = false;
    options.createThumbnailWithTransform = true;
    options.thumbnailMinPixelSize = 0;
    options.thumbnailMaxPixelSize = maxPixelSize;
    options.orientation = descriptor.orientation;
    auto image = MCImageReader::newThumbnailWithURL(descriptor.fileURL, typeOrNone(descriptor.typeIdentifier), options, nullptr);
    if (beats(image, best)) best = std::move(image);
    if (best && reaches(best, maxPixelSize)) break;
  }
  return best;
}
