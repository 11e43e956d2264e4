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
  // A name the table does not know gives none.
  EXPECT_EQ(MCBadgeFactory::iconNamed("no.such.symbol", 16), nullptr);
}

TEST(Badges, EveryNamedBadgeAndTheScoreHaveAnIcon) {
  if (!MCSymbolIconPath("star.fill")) GTEST_SKIP() << "adwaita-icon-theme is not installed";
  using Maker = std::shared_ptr<MCDecoratedBadge> (*)();
  struct Named {
    Maker make;
    const char* symbol;
    double pointSize;
  };
  const Named named[] = {
      {MCBadgeFactory::badgeLock, "lock.fill", 18},
      {MCBadgeFactory::badgeTrash, "trash.fill", 16},
      {MCBadgeFactory::badgeCloud, "icloud.fill", 16},
      {MCBadgeFactory::badgeCloudMissing, "icloud.slash.fill", 16},
      {MCBadgeFactory::badgeFlagged, "flag.fill", 16},
      {MCBadgeFactory::badgeWarning, "exclamationmark.triangle.fill", 16},
      {MCBadgeFactory::badgeFavorite, "heart.fill", 16},
      {MCBadgeFactory::badgeHidden, "eye.slash.fill", 16},
      {MCBadgeFactory::badgeReferenced, "arrowshape.turn.up.right.fill", 16},
      {MCBadgeFactory::badgeVirtualCopy, "document.on.document.fill", 16},
      {MCBadgeFactory::badgeRejected, "flag.slash.fill", 16},
      {MCBadgeFactory::badgeHDR, "square.stack.3d.up.fill", 16},
      {MCBadgeFactory::badgeLive, "livephoto.play", 16},
      {MCBadgeFactory::badgePanorama, "pano.fill", 16},
      {MCBadgeFactory::badgePortrait, "cube.fill", 16},
      {MCBadgeFactory::badgeScreenshot, "iphone", 16},
      {MCBadgeFactory::badgeSlowMotion, "slowmo", 16},
      {MCBadgeFactory::badgeShared, "person.2.fill", 16},
      {MCBadgeFactory::badgeTimeLapse, "timelapse", 16},
      {MCBadgeFactory::badgeVideo, "video.fill", 16},
  };
  for (const Named& entry : named) {
    SCOPED_TRACE(entry.symbol);
    // The symbol is an icon file of the theme, or one of the two the library draws itself.
    const std::string symbol = entry.symbol;
    const auto path = MCSymbolIconPath(symbol);
    if (symbol == "flag.slash.fill") EXPECT_FALSE(path.has_value());
    else ASSERT_TRUE(path.has_value());
    auto badge = entry.make();
    ASSERT_NE(badge, nullptr);
    ASSERT_TRUE(badge->shadow().has_value());
    auto icon = std::static_pointer_cast<MCIconBadge>(badge->badge());
    ASSERT_NE(icon->icon(), nullptr);
    EXPECT_EQ(MCImagePointSize(*icon->icon()).height, entry.pointSize);
    // The badge has no plate: whatever it shows is the icon (and its shadow). A good part of the
    // icon's square is ink, in the badge's white.
    const MCImageRef drawn = badge->cachedImage();
    ASSERT_NE(drawn, nullptr);
    const Ink plate = inkOf(*drawn);
    const Ink glyph = inkOf(*icon->icon());
    const MCRasterImage& iconPixels = *icon->icon()->CGImage();
    const MCRasterImage& platePixels = *drawn->CGImage();
    EXPECT_GT(glyph.opaque, int(iconPixels.width() * iconPixels.height() / 8));
    EXPECT_GT(plate.opaque, int(platePixels.width() * platePixels.height() / 8));
    EXPECT_NEAR(plate.colour.redComponent(), 1.0, 0.02);
    EXPECT_NEAR(plate.colour.blueComponent(), 1.0, 0.02);
  }
  // Each icon is its own: no two named badges share a picture.
  for (std::size_t i = 0; i < std::size(named); ++i)
    for (std::size_t j = i + 1; j < std::size(named); ++j)
      EXPECT_NE(MCSymbolIconPath(named[i].symbol).value_or(named[i].symbol),
                MCSymbolIconPath(named[j].symbol).value_or(named[j].symbol))
          << named[i].symbol << " and " << named[j].symbol;

  // The rejected flag is the flag struck through: it differs from the plain flag along the stroke
  // and keeps the same pixels away from it.
  const MCRasterImage& flag = *MCBadgeFactory::iconNamed("flag.fill", 16)->CGImage();
  const MCRasterImage& rejected = *MCBadgeFactory::iconNamed("flag.slash.fill", 16)->CGImage();
  ASSERT_EQ(flag.width(), rejected.width());
  int changed = 0;
  for (std::size_t y = 0; y < flag.height(); ++y)
    for (std::size_t x = 0; x < flag.width(); ++x)
      if (flag.row(y)[x * 4 + 3] != rejected.row(y)[x * 4 + 3]) ++changed;
  EXPECT_GT(changed, int(flag.width()));

  // The score leads with the sparkles icon, then the score; no text fallback.
  const MCImageRef sparkles = MCBadgeFactory::iconNamed("sparkles", 12);
  ASSERT_NE(sparkles, nullptr);
  EXPECT_GT(inkOf(*sparkles).opaque, 12 * 12);
  auto score = MCBadgeFactory::badgeScore(3.14159);
  const MCAttributedString& text = std::static_pointer_cast<MCTextBadge>(score->badge())->attributedString();
  EXPECT_EQ(text.string().substr(text.string().size() - 4), "3.14");
  EXPECT_EQ(text.string().find('*'), std::string::npos);
  EXPECT_NE(text.attributesAtIndex(0).attachment, nullptr);
}

TEST(Badges, TheCatalogue) {
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
  EXPECT_EQ(score->cornerRadius(), 4);
  EXPECT_GT(score->size().width, 20);
}
