#pragma once
// MCThumbnailLoadStrategy: decides which of an image's candidate files gives its thumbnail, and
// when a thumbnail is made from the full image.
//
// "Wanted" is a larger side in pixels; an image reaches it when its width or its height is at
// least that. First, when the options read the desktop's shared thumbnail cache, a valid entry
// there that reaches wanted is the answer, and a valid failure entry of this library answers none.
// Then the search has three stages:
//   1. the thumbnail descriptors whose estimate is 0 or at least wanted, smallest first, until one
//      reaches wanted (with wanted 0, this stage always ends the search);
//   2. the image file itself, asked with `createThumbnailFromImageIfAbsent` — only here can a full
//      decode happen — replacing the best so far only when both sides are strictly larger;
//   3. all thumbnail descriptors, largest first, under the same rule.
// The best image found is the answer, possibly none. Stateless; safe on several threads at once.

#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCResource.h>
#include <vesperon/platform/MCRasterImage.h>

#include <vector>

class MCThumbnailLoadOptions;

class MCThumbnailLoadStrategy : public MCResourceLoadStrategy {
 public:
  /// Always an MCThumbnailResource, with no image when none could be made, and the options'
  /// `thumbnailMaxPixelSize` as its requested size. None only for a descriptor or options of
  /// another kind.
  std::shared_ptr<MCResource> loadResourceForDescriptor(const std::shared_ptr<const MCResourceDescriptor>& descriptor,
                                                        const std::shared_ptr<const MCResourceLoadOptions>& options) override;

  /// The three stages above.
  MCRasterImageRef newThumbnailForImageDescriptor(const MCImageDescriptor& descriptor,
                                                  const MCThumbnailLoadOptions& options) const;
  /// The image file itself, with `createThumbnailFromImageIfAbsent` and a minimum of the smaller of
  /// the estimate and `maxPixelSize`.
  /// `maxDecodePixelCount` is the reads' decode budget (0: the default).
  MCRasterImageRef newThumbnailForImageDescriptor(const MCImageDescriptor& descriptor, uint64_t maxPixelSize,
                                                  bool createFromImageAlways, uint64_t maxDecodePixelCount = 0) const;
  /// The candidates in the order given, each read from its full image with its own orientation,
  /// until the best so far reaches `maxPixelSize`.
  MCRasterImageRef newThumbnailForThumbnailDescriptors(const std::vector<MCThumbnailDescriptor>& descriptors,
                                                       uint64_t maxPixelSize, uint64_t maxDecodePixelCount = 0) const;
};
