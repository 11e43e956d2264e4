#include <vesperon/pipeline/MCImageLoadStrategy.h>

#include <vesperon/codecs/MCImageReader.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/pipeline/MCImageResource.h>

std::shared_ptr<MCResource> MCImageLoadStrategy::loadResourceForDescriptor(
    const std::shared_ptr<const MCResourceDescriptor>& descriptor, const std::shared_ptr<const MCResourceLoadOptions>&) {
  auto image = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor);
  if (!image) return nullptr;
  std::optional<MCDictionary> metadata;
  auto raster = MCImageReader::newImageWithURL(image->fileURL, image->typeIdentifier, image->readingOptions, &metadata);
  if (!raster) return nullptr;
  return std::make_shared<MCImageResource>(MCImage::create(raster, 1.0), std::move(metadata));
}
