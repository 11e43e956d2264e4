#include "BrowseSharedThumbnailStrategy.h"

#include <vesperon/core/MCLog.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pipeline/MCThumbnailResource.h>
#include <vesperon/pixels/MCImageCreation.h>

#include <algorithm>
#include <exception>

namespace {

constexpr uint64_t kNormal = 128;
constexpr uint64_t kStandardSizes[] = {kNormal, 256, 512, 1024};

uint64_t largerSide(const MCRasterImageRef& image) { return image ? std::max(image->width(), image->height()) : 0; }

// Smaller images grow under MCCreateImageWithMaxPixelSize_C4_8; only ever shrink.
MCRasterImageRef fitted(const MCRasterImageRef& image, uint64_t size) {
  return largerSide(image) > size ? MCCreateImageWithMaxPixelSize_C4_8(image, size) : image;
}

}  // namespace

uint64_t BrowseSharedThumbnailStrategy::keptPixelSize(uint64_t wanted) {
  for (uint64_t size : kStandardSizes)
    if (wanted <= size) return size;
  return wanted;
}

std::shared_ptr<MCResource> BrowseSharedThumbnailStrategy::loadResourceForDescriptor(
    const std::shared_ptr<const MCResourceDescriptor>& descriptor, const std::shared_ptr<const MCResourceLoadOptions>& options) {
  auto image = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor);
  auto thumbnailOptions = std::dynamic_pointer_cast<const MCThumbnailLoadOptions>(options);
  if (!image || !thumbnailOptions) return nullptr;
  const uint64_t max = thumbnailOptions->thumbnailMaxPixelSize();
  const uint64_t wanted = image->estimatedPixelSize && max ? std::min(max, image->estimatedPixelSize)
                                                          : std::max(max, image->estimatedPixelSize);
  auto answer = [&](MCRasterImageRef thumbnail) {
    return std::make_shared<MCThumbnailResource>(MCThumbnail(std::move(thumbnail)), int64_t(max));
  };
  const std::filesystem::path& file = image->fileURL;
  if (file.empty() || wanted == 0) return MCThumbnailLoadStrategy::loadResourceForDescriptor(descriptor, options);

  if (auto cached = shared_.thumbnailForFile(file, wanted); largerSide(cached) >= wanted) {
    ++taken_;
    return answer(std::move(cached));
  }
  if (shared_.hasFailedForFile(file)) return answer(nullptr);

  // Read at the kept size, so the entry is what the standard's folder holds, and embedded
  // previews smaller than that do not end up there.
  const uint64_t kept = keptPixelSize(wanted);
  MCImageDescriptor reading = *image;
  reading.estimatedPixelSize = kept;
  MCRasterImageRef made = newThumbnailForImageDescriptor(reading, kept, thumbnailOptions->createThumbnailFromImageAlways(),
                                                         thumbnailOptions->maxDecodePixelCount());
  ++made_;
  // The entries are written after the answer goes out, by the idle writer.
  writer_.submit([this, file, made, kept] {
    bool written = true;
    try {
      if (!made) {
        written = shared_.writeFailureForFile(file);
      } else if (kept <= 1024) {
        written = shared_.writeThumbnailForFile(file, made);
        if (kept > kNormal && largerSide(made) > kNormal)
          written = shared_.writeThumbnailForFile(file, fitted(made, kNormal)) && written;
      }
    } catch (const std::exception&) {
      written = false;  // out of memory for the PNG: the next run makes the entry again
    }
    if (!written && !writeFailureLogged_.exchange(true))
      MCLog::sdkImageCache()->logError("browse: cannot write the shared thumbnail cache under " +
                                       shared_.root().string() + "; thumbnails are made anew each run");
  });
  return answer(fitted(made, wanted));
}

void BrowseSharedThumbnailStrategy::flushWrites() { writer_.flush(); }
