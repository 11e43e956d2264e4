#include "PipelineTestFiles.h"

#include <vesperon/pipeline/MCThumbnailLoadOptions.h>
#include <vesperon/pipeline/MCThumbnailLoadStrategy.h>
#include <vesperon/pipeline/MCThumbnailResource.h>

namespace {

MCThumbnailDescriptor candidate(const std::filesystem::path& file, uint64_t estimate, uint64_t orientation = 0) {
  MCThumbnailDescriptor d;
  d.fileURL = file;
  d.typeIdentifier = "public.jpeg";
  d.estimatedPixelSize = estimate;
  d.orientation = orientation;
  return d;
}

std::shared_ptr<MCThumbnailLoadOptions> makeOptions(uint64_t max) {
  auto options = std::make_shared<MCThumbnailLoadOptions>();
  options->setThumbnailMaxPixelSize(max);
  return options;
}

}  // namespace

TEST(ThumbnailLoadStrategy, WantedSizeComesFromEstimateAndMaximum) {
  PipelineTestFolder folder("strategy-wanted");
  MCImageDescriptor image(folder.jpeg("image.jpg", 400, 300, kGray));
  MCThumbnailLoadStrategy strategy;

  image.estimatedPixelSize = 400;  // a maximum below the estimate wins
  auto bounded = strategy.newThumbnailForImageDescriptor(image, *makeOptions(100));
  ASSERT_TRUE(bounded);
  EXPECT_EQ(bounded->width(), 100u);
  EXPECT_EQ(bounded->height(), 75u);

  image.estimatedPixelSize = 160;  // an estimate below the maximum wins
  auto estimated = strategy.newThumbnailForImageDescriptor(image, *makeOptions(300));
  ASSERT_TRUE(estimated);
  EXPECT_EQ(estimated->width(), 160u);
}

TEST(ThumbnailLoadStrategy, StageOneTakesTheSmallestSufficientCandidate) {
  PipelineTestFolder folder("strategy-one");
  MCImageDescriptor image(folder.jpeg("image.jpg", 800, 600, kGray));
  auto large = folder.jpeg("large.jpg", 400, 300, kRed);
  auto unknown = folder.jpeg("unknown.jpg", 250, 180, kGreen);
  auto small = folder.jpeg("small.jpg", 100, 75, kBlue);
  MCThumbnailLoadStrategy strategy;

  // The candidate without an estimate passes the filter and, sorted first, serves.
  image.thumbnailDescriptors = {candidate(large, 400), candidate(small, 100), candidate(unknown, 0)};
  auto first = strategy.newThumbnailForImageDescriptor(image, *makeOptions(200));
  EXPECT_TRUE(centreIs(first, kGreen));
  EXPECT_EQ(first->width(), 200u);

  // Among estimates, the smallest that reaches the size; the small one is filtered out.
  image.thumbnailDescriptors = {candidate(large, 400), candidate(small, 100)};
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(image, *makeOptions(200)), kRed));

  // A candidate whose estimate promised more than its file holds falls to the image file.
  image.thumbnailDescriptors = {candidate(small, 300)};
  auto fromImage = strategy.newThumbnailForImageDescriptor(image, *makeOptions(200));
  EXPECT_TRUE(centreIs(fromImage, kGray));
  EXPECT_EQ(fromImage->width(), 200u);

  // Candidates are read with their own orientation.
  image.thumbnailDescriptors = {candidate(large, 400, 6)};
  auto turned = strategy.newThumbnailForImageDescriptor(image, *makeOptions(200));
  ASSERT_TRUE(turned);
  EXPECT_EQ(turned->width(), 150u);
  EXPECT_EQ(turned->height(), 200u);
}

TEST(ThumbnailLoadStrategy, WantedZeroEndsAtStageOne) {
  PipelineTestFolder folder("strategy-zero");
  MCImageDescriptor image(folder.jpeg("image.jpg", 64, 48, kGray));
  MCThumbnailLoadStrategy strategy;
  // No candidates: the image file is asked with maximum 0 and gives its full size.
  auto full = strategy.newThumbnailForImageDescriptor(image, *makeOptions(0));
  ASSERT_TRUE(full);
  EXPECT_EQ(full->width(), 64u);

  // One candidate that gives nothing: every size reaches 0, so the search ends with none.
  image.thumbnailDescriptors = {candidate(folder.path() / "missing.jpg", 0)};
  EXPECT_FALSE(strategy.newThumbnailForImageDescriptor(image, *makeOptions(0)));
}

TEST(ThumbnailLoadStrategy, LaterStagesReplaceOnlyWhenBothSidesAreLarger) {
  PipelineTestFolder folder("strategy-later");
  auto candidateFile = folder.jpeg("candidate.jpg", 100, 80, kRed);
  MCImageDescriptor image(folder.jpeg("image.jpg", 120, 80, kGray));
  image.thumbnailDescriptors = {candidate(candidateFile, 0)};
  MCThumbnailLoadStrategy strategy;
  // Stage one gives 100×80 for 200; the file gives 120×80, whose height is not greater.
  auto kept = strategy.newThumbnailForImageDescriptor(image, *makeOptions(200));
  EXPECT_TRUE(centreIs(kept, kRed));
  EXPECT_EQ(kept->width(), 100u);

  // 130×90 beats it on both sides.
  image.fileURL = folder.jpeg("larger.jpg", 130, 90, kBlue);
  EXPECT_TRUE(centreIs(strategy.newThumbnailForImageDescriptor(image, *makeOptions(200)), kBlue));

  // Stage three: no candidate reaches 200 and the file is gone; the largest candidate wins even
  // when a smaller one is tried after it.
  auto tiny = folder.jpeg("tiny.jpg", 50, 40, kGreen);
  image.fileURL = folder.path() / "gone.jpg";
  image.thumbnailDescriptors = {candidate(tiny, 50), candidate(candidateFile, 100)};
  auto any = strategy.newThumbnailForImageDescriptor(image, *makeOptions(200));
  EXPECT_TRUE(centreIs(any, kRed));
}

TEST(ThumbnailLoadStrategy, ResourceAlwaysComesBackWithTheRequestedSize) {
  PipelineTestFolder folder("strategy-resource");
  auto strategy = std::make_shared<MCThumbnailLoadStrategy>();
  auto options = std::make_shared<MCThumbnailLoadOptions>(strategy);
  options->setThumbnailMaxPixelSize(32);

  auto good = std::make_shared<MCImageDescriptor>(folder.jpeg("good.jpg", 64, 48, kGray));
  auto resource = std::dynamic_pointer_cast<MCThumbnailResource>(strategy->loadResourceForDescriptor(good, options));
  ASSERT_TRUE(resource);
  EXPECT_EQ(resource->requestedPixelSize(), 32);
  ASSERT_TRUE(resource->thumbnail().image());
  EXPECT_EQ(resource->thumbnail().image()->width(), 32u);
  EXPECT_FALSE(resource->error());

  auto bad = std::make_shared<MCImageDescriptor>(folder.path() / "nothing.jpg");
  auto failed = std::dynamic_pointer_cast<MCThumbnailResource>(strategy->loadResourceForDescriptor(bad, options));
  ASSERT_TRUE(failed);
  EXPECT_FALSE(failed->thumbnail().image());
  EXPECT_EQ(failed->resourceType(), 1);
}
