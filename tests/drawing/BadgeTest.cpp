// Badges: sizes and insets, the shadow's margins, tinting, the cached plate, and the catalogue.
#include <vesperon/drawing/MCBadgeFactory.h>
#include <vesperon/drawing/MCSymbolIcons.h>

#include <gtest/gtest.h>

namespace {

/// Colour of the most opaque pixel, and how many pixels are not transparent.
struct Ink {
  MCColor colour;
  int opaque = 0;
};
Ink inkOf(const MCImage& image) {
  const MCRasterImage& bitmap = *image.CGImage();
  Ink ink;
  int best = -1;
  for (std::size_t y = 0; y < bitmap.height(); ++y)
    for (std::size_t x = 0; x < bitmap.width(); ++x) {
      const uint8_t* p = bitmap.row(y) + x * 4;  // B G R A, premultiplied
      if (p[3] > 0) ++ink.opaque;
      if (p[3] > best) {
        best = p[3];
        ink.colour = MCColor(p[2] / double(p[3] ? p[3] : 1), p[1] / double(p[3] ? p[3] : 1), p[0] / double(p[3] ? p[3] : 1),
                             p[3] / 255.0);
      }
    }
  return ink;
}

class FixedBadge : public MCBadge {
 public:
  explicit FixedBadge(MCSize size) : size_(size) {}
  MCSize contentSize() const override { return size_; }
  int draws = 0;
  void drawInRect(const MCRect&) override { ++draws; }

 private:
  MCSize size_;
};

}  // namespace

TEST(Badges, SizesInsetsMinimumsAndStacks) {
  FixedBadge badge({10, 6});
  badge.setContentInsets({1, 2, 3, 4});
  EXPECT_EQ(badge.size(), MCMakeSize(16, 10));
  badge.setMinimumSize({20, 8});
  EXPECT_EQ(badge.size(), MCMakeSize(20, 10));

  MCStackBadge empty;
  EXPECT_EQ(empty.contentSize(), MCMakeSize(0, 0));
  auto a = std::make_shared<FixedBadge>(MCSize{10, 6}), b = std::make_shared<FixedBadge>(MCSize{5, 12});
  MCStackBadge one({a});
  one.setSpacing(7);
  EXPECT_EQ(one.contentSize(), MCMakeSize(10, 6));  // no spacing with one child
  MCStackBadge two({a, b});
  two.setSpacing(7);
  EXPECT_EQ(two.contentSize(), MCMakeSize(22, 12));
  EXPECT_EQ(MCBadgeFactory::badgeStack({}, {}, 2, {}), nullptr);

  // A shadow of offset (0, -1) and blur 2 adds 2 × ceil(0 + 2) across and 2 × ceil(1 + 2) up and down.
  auto decorated = std::make_shared<MCDecoratedBadge>(std::make_shared<FixedBadge>(MCSize{10, 10}));
  decorated->setShadow(MCBadgeFactory::defaultShadow());
  EXPECT_EQ(decorated->size(), MCMakeSize(14, 16));
}

TEST(Badges, ThePlateIsComposedOnceAndTheInnerBadgeCentred) {
  auto inner = std::make_shared<FixedBadge>(MCSize{10, 10});
  MCDecoratedBadge badge(inner);
  badge.setBackgroundColor(MCColor::redColor());
  badge.setCornerRadius(3);
  badge.setContentInsets({2, 2, 2, 2});
  const MCImageRef first = badge.cachedImage();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(inner->draws, 1);
  auto context = MCGraphicsContext::create(40, 40, 8, 0, MCColorSpace::sRGB(), MCImageAlphaPremultipliedFirst);
  MCGraphicsContext::setCurrentContext(context.get());
  badge.drawInRect(MCMakeRect(0, 0, 14, 14));
  badge.drawInRect(MCMakeRect(10, 10, 14, 14));
  MCGraphicsContext::setCurrentContext(nullptr);
  EXPECT_EQ(inner->draws, 1);
  EXPECT_EQ(badge.cachedImage(), first);
  // The plate is red where the background is, and its corners are rounded away.
  const Ink ink = inkOf(*first);
  EXPECT_NEAR(ink.colour.redComponent(), 1.0, 0.02);
  EXPECT_NEAR(ink.colour.greenComponent(), 0.0, 0.02);
  const uint8_t* corner = first->CGImage()->row(0);
  EXPECT_LT(corner[3], 128);
  badge.setCachedImage(nullptr);
  badge.cachedImage();
  EXPECT_EQ(inner->draws, 2);
}

TEST(Badges, IconsAreTintedKeepingTheirShape) {
  const MCImageRef star = MCBadgeFactory::iconNamed("star.fill", 16);
  if (!MCSymbolIconPath("star.fill")) GTEST_SKIP() << "adwaita-icon-theme is not installed";
  ASSERT_NE(star, nullptr);
  EXPECT_EQ(MCImagePointSize(*star).height, 16);
  MCIconBadge badge(star, MCColor::redColor());
  const MCImageRef tinted = badge.tintedIcon();
  const Ink before = inkOf(*star), after = inkOf(*tinted);
  EXPECT_EQ(before.opaque, after.opaque);  // the alpha is kept
  EXPECT_NEAR(after.colour.redComponent(), 1.0, 0.02);
  EXPECT_NEAR(after.colour.blueComponent(), 0.0, 0.02);
  EXPECT_EQ(MCIconBadge(star, std::nullopt).tintedIcon(), star);
  // A name the table does not know, or one without a close icon, gives none.
  EXPECT_EQ(MCBadgeFactory::iconNamed("no.such.symbol", 16), nullptr);
  EXPECT_EQ(MCBadgeFactory::iconNamed("sparkles", 16), nullptr);
}

TEST(Badges, TheCatalogue) {
  using Maker = std::shared_ptr<MCDecoratedBadge> (*)();
  const Maker named[] = {
      MCBadgeFactory::badgeLock,      MCBadgeFactory::badgeTrash,     MCBadgeFactory::badgeCloud,
      MCBadgeFactory::badgeCloudMissing, MCBadgeFactory::badgeFlagged, MCBadgeFactory::badgeWarning,
      MCBadgeFactory::badgeFavorite,  MCBadgeFactory::badgeHidden,    MCBadgeFactory::badgeReferenced,
      MCBadgeFactory::badgeVirtualCopy, MCBadgeFactory::badgeRejected, MCBadgeFactory::badgeHDR,
      MCBadgeFactory::badgeLive,      MCBadgeFactory::badgePanorama,  MCBadgeFactory::badgePortrait,
      MCBadgeFactory::badgeScreenshot, MCBadgeFactory::badgeSlowMotion, MCBadgeFactory::badgeShared,
      MCBadgeFactory::badgeTimeLapse, MCBadgeFactory::badgeVideo,
  };
  for (Maker make : named) {
    auto badge = make();
    ASSERT_NE(badge, nullptr);
    ASSERT_TRUE(badge->shadow().has_value());
    badge->cachedImage();  // draws, with or without an icon
  }
  if (MCSymbolIconPath("lock.fill")) {
    EXPECT_GT(MCBadgeFactory::badgeLock()->contentSize().width, 10);
  }
  EXPECT_EQ(MCBadgeFactory::badgeHDR()->contentSize(), MCMakeSize(0, 0));

  // Plates: the minimum size holds; the icon is white 0.94.
  auto plate = MCBadgeFactory::badgeLockWithBackgroundColor(MCColor::blueColor());
  EXPECT_GE(plate->size().width, 32);
  EXPECT_EQ(plate->contentInsets().bottom, 1);
  auto icon = std::static_pointer_cast<MCIconBadge>(plate->badge());
  EXPECT_EQ(icon->tintColor(), MCColor::colorWithWhite(0.94, 1));
  EXPECT_EQ(MCBadgeFactory::smallBadgeTrashWithBackgroundColor(MCColor::blueColor())->minimumSize(), MCMakeSize(28, 28));

  // Colour labels 1 to 7; others none. Each circle is its label's colour.
  for (long label = 1; label <= 7; ++label) {
    auto circle = MCBadgeFactory::badgeCircleWithLabelColor(label);
    ASSERT_NE(circle, nullptr) << label;
    auto inner = std::static_pointer_cast<MCIconBadge>(circle->badge());
    const Ink ink = inkOf(*inner->icon());
    EXPECT_NEAR(ink.colour.redComponent(), MCBadgeFactory::labelColor(label)->redComponent(), 0.02) << label;
  }
  EXPECT_EQ(MCBadgeFactory::badgeCircleWithLabelColor(0), nullptr);
  EXPECT_EQ(MCBadgeFactory::badgeCircleWithLabelColor(8), nullptr);

  // Stars and scores.
  auto none = MCBadgeFactory::badgeStarsWithCount(0, false);
  EXPECT_TRUE(std::static_pointer_cast<MCStackBadge>(none->badge())->children().empty());
  auto three = MCBadgeFactory::badgeStarsWithCount(3, false);
  EXPECT_EQ(std::static_pointer_cast<MCStackBadge>(three->badge())->children().size(), 3u);
  auto compact = MCBadgeFactory::badgeStarsWithCount(4, true);
  EXPECT_EQ(std::static_pointer_cast<MCTextBadge>(compact->badge())->attributedString().string().substr(0, 1), "4");
  auto score = MCBadgeFactory::badgeScore(3.14159);
  EXPECT_EQ(std::static_pointer_cast<MCTextBadge>(score->badge())->attributedString().string(), "* 3.14");
  EXPECT_EQ(score->cornerRadius(), 4);
  EXPECT_GT(score->size().width, 20);
}
