// The image and thumbnail requests of MCResourceLoader: fresh load options, a random UUID as the
// request identifier, and the answer handed to a receiver or a completion on the main queue.

#include <vesperon/pipeline/MCImageLoadOptions.h>
#include <vesperon/pipeline/MCImageResource.h>
#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pipeline/MCThumbnailResource.h>

#include <glib.h>

namespace {

std::string newUUID() {
  gchar* text = g_uuid_string_random();
  std::string uuid = text;
  g_free(text);
  return uuid;
}

MCRasterImageRef thumbnailImage(const std::shared_ptr<MCResource>& resource) {
  auto thumbnail = std::dynamic_pointer_cast<MCThumbnailResource>(resource);
  return thumbnail ? thumbnail->thumbnail().image() : nullptr;
}

}  // namespace

std::string MCResourceLoader::requestImage(std::shared_ptr<const MCImageDescriptor> descriptor,
                                           std::shared_ptr<MCImageReceiver> receiver) {
  std::string uuid = newUUID();
  requestResourceForIdentifier(uuid, std::move(descriptor), std::make_shared<MCImageLoadOptions>(),
                               [receiver = std::move(receiver), uuid](std::shared_ptr<MCResource> resource) {
                                 auto image = std::dynamic_pointer_cast<MCImageResource>(resource);
                                 if (!receiver) return;
                                 if (image)
                                   receiver->receiveImage(image->image(), image->metadata(), uuid);
                                 else
                                   receiver->receiveImage(nullptr, std::nullopt, uuid);
                               });
  return uuid;
}

std::string MCResourceLoader::requestThumbnail(std::shared_ptr<const MCImageDescriptor> descriptor, int64_t maxPixelSize,
                                               std::shared_ptr<MCThumbnailReceiver> receiver) {
  std::string uuid = newUUID();
  auto options = std::make_shared<MCThumbnailLoadOptions>();
  options->setThumbnailMaxPixelSize(maxPixelSize > 0 ? uint64_t(maxPixelSize) : 0);
  requestResourceForIdentifier(uuid, std::move(descriptor), std::move(options),
                               [receiver = std::move(receiver), uuid](std::shared_ptr<MCResource> resource) {
                                 if (receiver) receiver->receiveThumbnail(thumbnailImage(resource), uuid);
                               });
  return uuid;
}

void MCResourceLoader::requestThumbnail(std::shared_ptr<const MCImageDescriptor> descriptor, int64_t maxPixelSize,
                                        std::function<void(MCRasterImageRef)> completion) {
  auto options = std::make_shared<MCThumbnailLoadOptions>();
  options->setThumbnailMaxPixelSize(maxPixelSize > 0 ? uint64_t(maxPixelSize) : 0);
  requestResourceForIdentifier(newUUID(), std::move(descriptor), std::move(options),
                               [completion = std::move(completion)](std::shared_ptr<MCResource> resource) {
                                 if (completion) completion(thumbnailImage(resource));
                               });
}
