#include <vesperon/drawing/MCBadgeFactory.h>

#include <vesperon/drawing/MCSymbolIcons.h>

#include <cstdio>
#include <map>

namespace {

std::shared_ptr<MCDecoratedBadge> decorated(MCBadgeRef inner) {
  auto badge = std::make_shared<MCDecoratedBadge>(std::move(inner));
  badge->setShadow(MCBadgeFactory::defaultShadow());
  return badge;
}

std::shared_ptr<MCDecoratedBadge> plate(const char* symbol, double pointSize, MCSize minimum, MCEdgeInsets insets,
                                        double radius, const MCColor& background) {
  auto icon = std::make_shared<MCIconBadge>(MCBadgeFactory::iconNamed(symbol, pointSize), MCColor::colorWithWhite(0.94, 1));
  auto badge = std::make_shared<MCDecoratedBadge>(icon);
  badge->setBackgroundColor(background);
  badge->setMinimumSize(minimum);
  badge->setContentInsets(insets);
  badge->setCornerRadius(radius);
  badge->setShadow(MCBadgeFactory::defaultShadow());
  return badge;
}

}  // namespace

MCShadow MCBadgeFactory::defaultShadow() {
  return MCShadow{MCColor::blackColor().colorWithAlphaComponent(0.4), {0, -1}, 2};
}

MCTextAttributes MCBadgeFactory::defaultTextAttributes() {
  return {MCFont::boldSystemFontOfSize(16), MCColor::whiteColor(), {}, {}, {}};
}

MCImageRef MCBadgeFactory::iconNamed(const std::string& name, double pointSize) { return MCSymbolImage(name, pointSize); }

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::iconBadgeNamed(const std::string& name, double pointSize,
                                                                 const MCColor& tint) {
  return decorated(std::make_shared<MCIconBadge>(iconNamed(name, pointSize), tint));
}

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::defaultIconBadgeNamed(const std::string& name, double pointSize) {
  return iconBadgeNamed(name, pointSize, defaultTintColor());
}

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::warningIconBadgeNamed(const std::string& name, double pointSize) {
  return iconBadgeNamed(name, pointSize, warningTintColor());
}

#define MC_NAMED_BADGE(function, symbol, size) \
  std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::function() { return defaultIconBadgeNamed(symbol, size); }
MC_NAMED_BADGE(badgeLock, "lock.fill", 18)
MC_NAMED_BADGE(badgeTrash, "trash.fill", 16)
MC_NAMED_BADGE(badgeCloud, "icloud.fill", 16)
MC_NAMED_BADGE(badgeCloudMissing, "icloud.slash.fill", 16)
MC_NAMED_BADGE(badgeFlagged, "flag.fill", 16)
MC_NAMED_BADGE(badgeWarning, "exclamationmark.triangle.fill", 16)
MC_NAMED_BADGE(badgeFavorite, "heart.fill", 16)
MC_NAMED_BADGE(badgeHidden, "eye.slash.fill", 16)
MC_NAMED_BADGE(badgeReferenced, "arrowshape.turn.up.right.fill", 16)
MC_NAMED_BADGE(badgeVirtualCopy, "document.on.document.fill", 16)
MC_NAMED_BADGE(badgeRejected, "flag.slash.fill", 16)
MC_NAMED_BADGE(badgeHDR, "square.stack.3d.up.fill", 16)
MC_NAMED_BADGE(badgeLive, "livephoto.play", 16)
MC_NAMED_BADGE(badgePanorama, "pano.fill", 16)
MC_NAMED_BADGE(badgePortrait, "cube.fill", 16)
MC_NAMED_BADGE(badgeScreenshot, "iphone", 16)
MC_NAMED_BADGE(badgeSlowMotion, "slowmo", 16)
MC_NAMED_BADGE(badgeShared, "person.2.fill", 16)
MC_NAMED_BADGE(badgeTimeLapse, "timelapse", 16)
MC_NAMED_BADGE(badgeVideo, "video.fill", 16)
#undef MC_NAMED_BADGE

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::badgeLockWithBackgroundColor(const MCColor& color) {
  return plate("lock.fill", 19, {32, 32}, {0, 0, 1, 0}, 6, color);
}
std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::badgeTrashWithBackgroundColor(const MCColor& color) {
  return plate("trash.fill", 17, {32, 32}, {0, 1, 1, 0}, 6, color);
}
std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::smallBadgeLockWithBackgroundColor(const MCColor& color) {
  return plate("lock.fill", 15, {28, 28}, {0, 1, 1, 0}, 5, color);
}
std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::smallBadgeTrashWithBackgroundColor(const MCColor& color) {
  return plate("trash.fill", 15, {28, 28}, {0, 1, 1, 0}, 5, color);
}

std::optional<MCColor> MCBadgeFactory::labelColor(long label) {
  // The desktop's named colours (Adwaita), made once.
  static const std::map<long, MCColor> colors = {
      {1, MCColor::colorWithHex(0xE01B24)}, {2, MCColor::colorWithHex(0xFF7800)}, {3, MCColor::colorWithHex(0xF6D32D)},
      {4, MCColor::colorWithHex(0x33D17A)}, {5, MCColor::colorWithHex(0x3584E4)}, {6, MCColor::colorWithHex(0x9141AC)},
      {7, MCColor::colorWithHex(0x9A9996)},
  };
  auto it = colors.find(label);
  if (it == colors.end()) return std::nullopt;
  return it->second;
}

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::badgeCircleWithLabelColor(long label) {
  const auto color = labelColor(label);
  if (!color) return nullptr;
  constexpr double kDiameter = 14;
  MCImageRef circle = MCImageWithSize({kDiameter, kDiameter}, 2.0, [&](MCGraphicsContext& context) {
    color->setFill(context);
    context.fillEllipseInRect(MCMakeRect(0.5, 0.5, kDiameter - 1, kDiameter - 1));
  });
  return decorated(std::make_shared<MCIconBadge>(circle, std::nullopt));
}

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::badgeStarsWithCount(long count, bool compact) {
  if (compact) {
    char text[32];
    std::snprintf(text, sizeof text, "%ld", count);
    MCAttributedString string(text, defaultTextAttributes());
    if (MCImageRef star = iconNamed("star.fill", 12)) {
      auto attachment = std::make_shared<MCTextAttachment>();
      MCImageRef tinted = MCImageTintedWithColor(*star, defaultTintColor());
      attachment->image = tinted ? tinted->CGImage() : nullptr;
      const MCSize size = MCImagePointSize(*star);
      attachment->bounds = MCMakeRect(0, 0, size.width, size.height);
      string.append(MCAttributedString::attachmentString(attachment));
    }
    return decorated(std::make_shared<MCTextBadge>(string));
  }
  std::vector<MCBadgeRef> stars;
  MCImageRef star = iconNamed("star.fill", 16);
  for (long i = 0; i < count; ++i) stars.push_back(std::make_shared<MCIconBadge>(star, defaultTintColor()));
  return decorated(std::make_shared<MCStackBadge>(std::move(stars)));
}

std::shared_ptr<MCDecoratedBadge> MCBadgeFactory::badgeScore(double score) {
  const MCTextAttributes attributes{MCFont::boldSystemFontOfSize(12), defaultTintColor(), {}, {}, {}};
  char number[64];
  std::snprintf(number, sizeof number, "%.2f", score);
  MCAttributedString text;
  if (MCImageRef sparkles = iconNamed("sparkles", 12)) {
    auto attachment = std::make_shared<MCTextAttachment>();
    MCImageRef tinted = MCImageTintedWithColor(*sparkles, defaultTintColor());
    attachment->image = tinted ? tinted->CGImage() : nullptr;
    const MCSize size = MCImagePointSize(*sparkles);
    attachment->bounds = MCMakeRect(0, -2, size.width, size.height);
    text.append(MCAttributedString::attachmentString(attachment));
    text.appendString(number, attributes);
  } else {
    text.appendString(std::string("* ") + number, attributes);
  }
  auto badge = std::make_shared<MCDecoratedBadge>(std::make_shared<MCTextBadge>(text));
  badge->setBackgroundColor(MCColor::colorWithWhite(1.0 / 3.0, 0.7));
  badge->setCornerRadius(4);
  badge->setContentInsets({0, 4, 2, 4});
  return badge;
}

std::shared_ptr<MCStackBadge> MCBadgeFactory::badgeStack(std::vector<MCBadgeRef> children, MCEdgeInsets contentInsets,
                                                         double spacing, MCSize minimumSize) {
  if (children.empty()) return nullptr;
  auto stack = std::make_shared<MCStackBadge>(std::move(children));
  stack->setContentInsets(contentInsets);
  stack->setSpacing(spacing);
  stack->setMinimumSize(minimumSize);
  return stack;
}
