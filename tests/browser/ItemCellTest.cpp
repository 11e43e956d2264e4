// The card and the plain cell: their geometry at several scales and proportions, hit tests, badge
// places, text limits and the drag image.
#include <vesperon/browser/MCBrowserViewItemCardCell.h>
#include <vesperon/browser/MCBrowserViewItemPlainCell.h>
#include <vesperon/drawing/MCBadge.h>
#include <vesperon/platform/MCGraphicsContext.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double kUnbounded = std::numeric_limits<double>::max();

class FixedBadge : public MCBadge {
 public:
  explicit FixedBadge(MCSize size) : size_(size) {}
  MCSize contentSize() const override { return size_; }

 private:
  MCSize size_;
};

/// Writes down each rectangle it is drawn in, and paints it.
class RecordingBadge : public MCBadge {
 public:
  RecordingBadge(MCSize size, MCColor colour) : size_(size), colour_(colour) {}
  MCSize contentSize() const override { return size_; }
  void drawInRect(const MCRect& rect) override {
    drawn.push_back(rect);
    if (MCGraphicsContext* context = MCGraphicsContext::currentContext()) {
      colour_.setFill(*context);
      context->fillRect(rect);
    }
  }
  std::vector<MCRect> drawn;

 private:
  MCSize size_;
  MCColor colour_;
};

/// A plain cell that draws its own flags, state and source badges.
class CustomBadgesCell : public MCBrowserViewItemPlainCell {
 public:
  std::vector<std::pair<std::string, MCRect>> calls;
  void drawBadgeFlagsInRect(const MCRect& rect) override { calls.emplace_back("flags", rect); }
  void drawBadgeStateInRect(const MCRect& rect) override { calls.emplace_back("state", rect); }
  void drawBadgeMediaSourceInRect(const MCRect& rect) override { calls.emplace_back("source", rect); }
};

/// Red, green, blue and alpha (premultiplied) at a point of an image of scale 1.
std::array<int, 4> pixelAt(const MCImage& image, MCPoint point) {
  const uint8_t* p = image.CGImage()->row(std::size_t(point.y)) + std::size_t(point.x) * 4;
  return {p[2], p[1], p[0], p[3]};
}

double textBand(const MCBrowserViewItemCardCell& cell) {
  return cell.titleInsets.top + MCBrowserViewItemCardCell::defaultTitleHeight() + cell.titleInsets.bottom +
         cell.subtitleInsets.top + MCBrowserViewItemCardCell::defaultSubtitleHeight() + cell.subtitleInsets.bottom;
}

}  // namespace

TEST(CardCell, SizeForScaleAndBounds) {
  MCBrowserViewItemCardCell cell;
  const MCRect open = MCMakeRect(0, 0, kUnbounded, kUnbounded);
  EXPECT_EQ(cell.cellSizeForBounds(open, 1.0).width, 380);  // 360 + 6 + 14
  EXPECT_EQ(cell.cellSizeForBounds(open, 0.5).width, 200);
  EXPECT_EQ(cell.cellSizeForBounds(open, 1.0).height, std::trunc(380 + textBand(cell)));
  // The scaled image is rounded up before the fit: 0.3 × 360 = 108 exactly, 0.301 × 360 = 108.36 → 109.
  EXPECT_EQ(cell.cellSizeForBounds(open, 0.301).width, 129);
  // Narrow bounds bind the width; narrower than the padding gives a negative size, as the formula does.
  EXPECT_EQ(cell.cellSizeForBounds(MCMakeRect(0, 0, 120, kUnbounded), 1.0).width, 120);
  // Bounds of 10 leave -10 for the image: the image's height goes negative with it.
  const MCSize squeezed = cell.cellSizeForBounds(MCMakeRect(0, 0, 10, kUnbounded), 1.0);
  EXPECT_EQ(squeezed.width, 10);
  EXPECT_EQ(squeezed.height, std::trunc(20 + textBand(cell) - 10));
  cell.shouldShowTitle = cell.shouldShowSubtitle = false;
  EXPECT_EQ(cell.cellSizeForBounds(open, 1.0), MCMakeSize(380, 380));
}

TEST(CardCell, RectanglesForProportionsAndBadges) {
  MCBrowserViewItemCardCell cell;
  const MCRect frame = MCMakeRect(0, 0, 200, 200 + textBand(cell));
  const MCRect content = cell.contentRectForBounds(frame);
  EXPECT_EQ(content, MCMakeRect(3, 3, 194, frame.size.height - 6));
  const MCRect part = cell.imagePartRectForContentRect(content);
  EXPECT_EQ(part, MCMakeRect(10, 10, 180, 180));
  // No proportions: the whole part. Landscape 3:2 is centred vertically; portrait horizontally.
  EXPECT_EQ(cell.imageRectForImagePartRect(part), part);
  cell.imageSize = {3000, 2000};
  EXPECT_EQ(cell.imageRectForImagePartRect(part), MCMakeRect(10, 40, 180, 120));
  cell.imageSize = {1000, 2000};
  EXPECT_EQ(cell.imageRectForImagePartRect(part), MCMakeRect(55, 10, 90, 180));
  EXPECT_EQ(cell.previewSourceRectForCellFrame(frame), MCMakeRect(55, 10, 90, 180));
  EXPECT_EQ(cell.imageSizeForBoundsSize({180, 180 + textBand(cell)}), MCMakeSize(90, 180));

  // Badges in their corners of the image and of the content.
  cell.flagsBadge = std::make_shared<FixedBadge>(MCSize{20, 10});
  cell.stateBadge = std::make_shared<FixedBadge>(MCSize{16, 16});
  cell.lockedBadge = std::make_shared<FixedBadge>(MCSize{12, 12});
  const MCRect image = MCMakeRect(55, 10, 90, 180);
  EXPECT_EQ(cell.badgeFlagsRectForImageRect(image), MCMakeRect(121, 14, 20, 10));
  EXPECT_EQ(cell.badgeStateRectForImageRect(image), MCMakeRect(59, 170, 16, 16));
  EXPECT_EQ(cell.badgeLockedRectForContentRect(content), MCMakeRect(183, MCMaxY(content) - 14, 12, 12));
  EXPECT_EQ(cell.badgeMarkedRectForContentRect(content).size, MCMakeSize(0, 0));  // none set

  // Without text the image part takes the whole content less the image insets.
  cell.shouldShowTitle = cell.shouldShowSubtitle = false;
  EXPECT_EQ(cell.imagePartRectForContentRect(content), MCMakeRect(10, 10, 180, content.size.height - 14));
  EXPECT_EQ(cell.titlePartRectForContentRect(content), MCRect{});
}

TEST(CardCell, SubtitleIsCentredCutAtItsLimitsAndMovedLeftOfACornerBadge) {
  MCBrowserViewItemCardCell cell;
  cell.subtitleAttributes = {MCFont::systemFontOfSize(11), {}, {}, {}, {}};
  const MCRect part = MCMakeRect(0, 100, 200, 40);
  cell.subtitle = "short";
  const MCRect centred = cell.subtitleRectForTitlePartRect(part);
  EXPECT_NEAR(MCMidX(centred), 100, 1);
  cell.subtitle = std::string(300, 'w');  // far wider than the cell
  EXPECT_EQ(cell.subtitleRectForTitlePartRect(part).origin.x, 4);
  EXPECT_EQ(MCMaxX(cell.subtitleRectForTitlePartRect(part)), 196);
  cell.subtitle = "short";
  cell.shouldShowBadgeLocked = true;
  cell.lockedBadge = std::make_shared<FixedBadge>(MCSize{120, 12});
  // The badge starts at x 78: the right limit becomes 74, and the text moves left of it.
  const MCRect moved = cell.subtitleRectForTitlePartRect(part);
  EXPECT_LE(MCMaxX(moved), 74);
  EXPECT_NEAR(moved.size.width, centred.size.width, 1);
  cell.shouldShowSubtitle = false;
  EXPECT_EQ(cell.subtitleRectForTitlePartRect(part), MCRect{});
}

TEST(CardCell, MarkedBadgeOverTheImageAndTheDragImageUnselected) {
  MCBrowserViewItemCardCell cell;
  cell.markedBadge = std::make_shared<FixedBadge>(MCSize{10, 10});
  cell.shouldShowBadgeMarked = true;
  cell.backgroundColor = MCColor::whiteColor();
  cell.selectionColor = MCColor::redColor();
  cell.setSelected(true);
  cell.image = MCImageWithSize({30, 30}, 1.0, [](MCGraphicsContext& context) {
    MCColor::blueColor().setFill(context);
    context.fillRect(MCMakeRect(0, 0, 30, 30));
  });
  const MCSize size = {200, 200 + textBand(cell)};
  MCPoint offset{5, 5};
  auto drag = cell.dragImageWithSize(size, &offset);
  ASSERT_NE(drag, nullptr);
  EXPECT_EQ(offset, MCMakePoint(0, 0));
  EXPECT_TRUE(cell.isSelected());  // the shared cell keeps its state
  // No red selection frame in the drag image: its edge (x 2) is the white background or clear.
  const uint8_t* edge = drag->CGImage()->row(std::size_t(size.height / 2)) + 2 * 4;
  EXPECT_FALSE(edge[2] > 200 && edge[1] < 60 && edge[3] > 200);
  // The image's centre is blue.
  const uint8_t* centre = drag->CGImage()->row(100) + 100 * 4;
  EXPECT_GT(centre[0], 200);
  EXPECT_LT(centre[2], 60);
}

TEST(PlainCell, TheBlockIsCentredAndOnlyTheImageHits) {
  MCBrowserViewItemPlainCell cell;
  cell.titleAttributes = {MCFont::systemFontOfSize(13), {}, {}, {}, {}};
  cell.subtitleAttributes = {MCFont::systemFontOfSize(11), {}, {}, {}, {}};
  const MCSize size = cell.cellSizeForBounds(MCMakeRect(0, 0, kUnbounded, kUnbounded), 0.5);
  EXPECT_EQ(size.width, 186);  // trunc(180) + 6
  // A portrait image in a larger frame: the block is centred; the image is 2:3 inside it.
  cell.imageSize = {2000, 3000};
  const MCRect frame = MCMakeRect(0, 0, 300, 300);
  const MCRect content = cell.contentRectForCellFrame(frame);
  EXPECT_NEAR(MCMidX(content), 150, 0.5);
  EXPECT_NEAR(MCMidY(content), 150, 0.5);
  const MCRect image = cell.imageRectForContentRect(content);
  EXPECT_NEAR(image.size.width / image.size.height, 2.0 / 3.0, 0.02);
  EXPECT_EQ(cell.selectionRectForContentRect(content), MCInsetRect(image, -2.5, -2.5));
  EXPECT_TRUE(cell.containsPoint({MCMidX(image), MCMidY(image)}, frame));
  EXPECT_FALSE(cell.containsPoint({5, 5}, frame));                       // the empty margin
  EXPECT_FALSE(cell.containsPoint({MCMidX(frame), MCMaxY(image) + 10}, frame));  // the title
  EXPECT_FALSE(cell.intersectsRect(MCMakeRect(0, 0, 10, 10), frame));
  // Without text, the image alone is centred in the cell.
  cell.shouldShowTitle = cell.shouldShowSubtitle = false;
  const MCRect alone = cell.imageRectForContentRect(cell.contentRectForCellFrame(frame));
  EXPECT_NEAR(MCMidY(alone), 150, 0.5);
  // Locked and marked take the same corner of the image.
  cell.lockedBadge = std::make_shared<FixedBadge>(MCSize{10, 10});
  cell.markedBadge = std::make_shared<FixedBadge>(MCSize{10, 10});
  EXPECT_EQ(cell.badgeLockedRectForContentRect(alone), cell.badgeMarkedRectForContentRect(alone));
  EXPECT_EQ(cell.badgeLockedRectForContentRect(alone).origin,
            MCMakePoint(MCMaxX(alone) - 14, MCMaxY(alone) - 13));
}

TEST(PlainCell, BadgesDrawThroughOperationsASubclassCanOverride) {
  const MCRect frame = MCMakeRect(0, 0, 300, 300);
  auto setUp = [](MCBrowserViewItemPlainCell& cell) {
    cell.shouldShowTitle = cell.shouldShowSubtitle = false;
    cell.imageSize = {3000, 2000};
    cell.flagsBadge = std::make_shared<RecordingBadge>(MCSize{20, 10}, MCColor::greenColor());
    cell.stateBadge = std::make_shared<RecordingBadge>(MCSize{16, 12}, MCColor::blueColor());
    cell.mediaSourceBadge = MCImageWithSize({14, 14}, 1.0, [](MCGraphicsContext& context) {
      MCColor::redColor().setFill(context);
      context.fillRect(MCMakeRect(0, 0, 14, 14));
    });
  };
  // The subclass is called, in the order of the drawing, with the rectangles placed from the image.
  CustomBadgesCell custom;
  setUp(custom);
  const MCRect image = custom.imageRectForContentRect(custom.contentRectForCellFrame(frame));
  ASSERT_FALSE(MCIsEmptyRect(image));
  auto drawn = [&](MCBrowserViewItemPlainCell& cell) {
    return MCImageWithSize(frame.size, 1.0, [&](MCGraphicsContext&) { cell.drawWithFrame(frame, nullptr); });
  };
  drawn(custom);
  ASSERT_EQ(custom.calls.size(), 3u);
  EXPECT_EQ(custom.calls[0], std::make_pair(std::string("flags"), custom.badgeFlagsRectForImageRect(image)));
  EXPECT_EQ(custom.calls[1], std::make_pair(std::string("state"), custom.badgeStateRectForImageRect(image)));
  EXPECT_EQ(custom.calls[2], std::make_pair(std::string("source"), custom.badgeMediaSourceRectForContentRect(image)));
  EXPECT_EQ(custom.calls[2].second, MCMakeRect(image.origin.x, image.origin.y, 14, 14));
  // The override replaces the drawing: the badges themselves were not drawn.
  EXPECT_TRUE(std::static_pointer_cast<RecordingBadge>(custom.flagsBadge)->drawn.empty());
  EXPECT_TRUE(std::static_pointer_cast<RecordingBadge>(custom.stateBadge)->drawn.empty());
  // Hidden badges are not asked for.
  custom.calls.clear();
  custom.shouldShowBadgeFlags = custom.shouldShowBadgeScore = custom.shouldShowBadgeState = false;
  custom.shouldShowBadgeSource = false;
  drawn(custom);
  EXPECT_TRUE(custom.calls.empty());

  // The plain cell's own operations draw each badge in that same rectangle.
  MCBrowserViewItemPlainCell plain;
  setUp(plain);
  const MCImageRef picture = drawn(plain);
  ASSERT_NE(picture, nullptr);
  const auto& flags = std::static_pointer_cast<RecordingBadge>(plain.flagsBadge)->drawn;
  const auto& state = std::static_pointer_cast<RecordingBadge>(plain.stateBadge)->drawn;
  EXPECT_EQ(flags, std::vector<MCRect>{plain.badgeFlagsRectForImageRect(image)});
  EXPECT_EQ(state, std::vector<MCRect>{plain.badgeStateRectForImageRect(image)});
  const MCRect source = plain.badgeMediaSourceRectForContentRect(image);
  const std::array<int, 4> red = pixelAt(*picture, {MCMidX(source), MCMidY(source)});
  EXPECT_GT(red[0], 200);
  EXPECT_LT(red[1], 60);
  EXPECT_EQ(red[3], 255);
  const MCRect flagsRect = plain.badgeFlagsRectForImageRect(image);
  const std::array<int, 4> green = pixelAt(*picture, {MCMidX(flagsRect), MCMidY(flagsRect)});
  EXPECT_GT(green[1], 100);
  EXPECT_LT(green[0], 60);
}
