#include "PipelineTestFiles.h"

#include <vesperon/pipeline/MCImage.h>
#include <vesperon/pipeline/MCResourceLoader.h>
#include <vesperon/platform/MCMainQueue.h>

#include <regex>

namespace {

struct ImageAnswer {
  std::shared_ptr<const MCImage> image;
  std::optional<MCDictionary> metadata;
  std::string uuid;
};

class Receiver : public MCImageReceiver, public MCThumbnailReceiver {
 public:
  void receiveImage(std::shared_ptr<const MCImage> image, std::optional<MCDictionary> metadata,
                    const std::string& uuid) override {
    EXPECT_TRUE(MCMainQueue::isMainThread());
    images.push_back({std::move(image), std::move(metadata), uuid});
  }
  void receiveThumbnail(MCRasterImageRef image, const std::string& uuid) override {
    thumbnails.emplace_back(std::move(image), uuid);
  }
  std::vector<ImageAnswer> images;
  std::vector<std::pair<MCRasterImageRef, std::string>> thumbnails;
};

}  // namespace

TEST(LoaderRequests, ImagesAndThumbnailsReachTheirReceivers) {
  PipelineTestFolder folder("requests");
  auto file = folder.jpeg("photo.jpg", 80, 60, kBlue);
  MCResourceLoader loader;
  auto receiver = std::make_shared<Receiver>();

  auto withOptions = std::make_shared<MCImageDescriptor>(file);
  withOptions->readingOptions = MCImageReadingOptions{};
  withOptions->readingOptions->scaleFactor = 0.5;
  auto withoutOptions = std::make_shared<MCImageDescriptor>(file);

  const std::string first = loader.requestImage(withOptions, receiver);
  const std::string second = loader.requestImage(withoutOptions, receiver);
  const std::string third = loader.requestThumbnail(withOptions, 20, receiver);
  EXPECT_NE(first, second);
  const std::regex uuidForm("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
  EXPECT_TRUE(std::regex_match(first, uuidForm)) << first;
  EXPECT_TRUE(receiver->images.empty());

  MCRasterImageRef completed;
  bool completionRan = false;
  loader.requestThumbnail(withOptions, 40, [&](MCRasterImageRef image) {
    completed = std::move(image);
    completionRan = true;
  });
  ASSERT_TRUE(MCMainQueue::runUntil(
      [&] { return receiver->images.size() == 2 && receiver->thumbnails.size() == 1 && completionRan; }));

  for (const auto& answer : receiver->images) {
    if (answer.uuid == first) {
      ASSERT_TRUE(answer.image);
      EXPECT_EQ(answer.image->size().width, 40);  // half scale through DCT scaling
      ASSERT_TRUE(answer.metadata);
      EXPECT_TRUE(MCDictionaryGet(*answer.metadata, "PixelWidth"));
    } else {
      EXPECT_EQ(answer.uuid, second);
      EXPECT_FALSE(answer.image);  // no reading options: the reader refuses
      EXPECT_FALSE(answer.metadata);
    }
  }
  EXPECT_EQ(receiver->thumbnails[0].second, third);
  ASSERT_TRUE(receiver->thumbnails[0].first);
  EXPECT_EQ(receiver->thumbnails[0].first->width(), 20u);
  ASSERT_TRUE(completed);
  EXPECT_EQ(completed->width(), 40u);
}
