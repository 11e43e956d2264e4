#pragma once
// MCBadgeFactory: the catalogue of ready-made badges — icons on a shadow, icons on coloured plates,
// colour-label circles, stars and scores. Icons are the system symbols of MCSymbolIcons.h; a
// symbol without an icon gives an icon badge with no icon (it measures and draws nothing).

#include <vesperon/drawing/MCBadge.h>
#include <vesperon/drawing/MCDecoratedBadge.h>
#include <vesperon/drawing/MCIconBadge.h>
#include <vesperon/drawing/MCShadow.h>
#include <vesperon/drawing/MCStackBadge.h>
#include <vesperon/drawing/MCTextBadge.h>

#include <memory>
#include <string>
#include <vector>

class MCBadgeFactory {
 public:
  MCBadgeFactory() = delete;

  /// The desktop's shadow colour (black) at alpha 0.4, offset (0, -1), blur 2.
  static MCShadow defaultShadow();
  /// The tint of icon badges: white.
  static MCColor defaultTintColor() { return MCColor::whiteColor(); }
  /// The tint of warning badges: orange.
  static MCColor warningTintColor() { return MCColor::orangeColor(); }
  /// Bold system font of 16 points, white.
  static MCTextAttributes defaultTextAttributes();

  /// The desktop's symbolic icon for a system symbol name ("lock.fill" …) at `pointSize`; none when
  /// the theme has none.
  static MCImageRef iconNamed(const std::string& name, double pointSize);
  /// A decorated badge with no background around an icon badge, with the default shadow.
  static std::shared_ptr<MCDecoratedBadge> iconBadgeNamed(const std::string& name, double pointSize, const MCColor& tint);
  /// An icon badge of the default tint.
  static std::shared_ptr<MCDecoratedBadge> defaultIconBadgeNamed(const std::string& name, double pointSize);
  /// An icon badge of the warning tint.
  static std::shared_ptr<MCDecoratedBadge> warningIconBadgeNamed(const std::string& name, double pointSize);

  // Named badges.
  /// @name Named badges
  //@{
  /// The library's badges for the states of an item (locked, in the trash, in the cloud, flagged,
  /// favourite, a kind of photo or video …), each an icon badge of its symbol.
  static std::shared_ptr<MCDecoratedBadge> badgeLock();
  static std::shared_ptr<MCDecoratedBadge> badgeTrash();
  static std::shared_ptr<MCDecoratedBadge> badgeCloud();
  static std::shared_ptr<MCDecoratedBadge> badgeCloudMissing();
  static std::shared_ptr<MCDecoratedBadge> badgeFlagged();
  static std::shared_ptr<MCDecoratedBadge> badgeWarning();
  static std::shared_ptr<MCDecoratedBadge> badgeFavorite();
  static std::shared_ptr<MCDecoratedBadge> badgeHidden();
  static std::shared_ptr<MCDecoratedBadge> badgeReferenced();
  static std::shared_ptr<MCDecoratedBadge> badgeVirtualCopy();
  static std::shared_ptr<MCDecoratedBadge> badgeRejected();
  static std::shared_ptr<MCDecoratedBadge> badgeHDR();
  static std::shared_ptr<MCDecoratedBadge> badgeLive();
  static std::shared_ptr<MCDecoratedBadge> badgePanorama();
  static std::shared_ptr<MCDecoratedBadge> badgePortrait();
  static std::shared_ptr<MCDecoratedBadge> badgeScreenshot();
  static std::shared_ptr<MCDecoratedBadge> badgeSlowMotion();
  static std::shared_ptr<MCDecoratedBadge> badgeShared();
  static std::shared_ptr<MCDecoratedBadge> badgeTimeLapse();
  static std::shared_ptr<MCDecoratedBadge> badgeVideo();
  //@}

  // Plate badges: the icon in white 0.94 on a rounded plate of the colour.
  /// @name Badges on a background
  //@{
  /// The lock and trash badges on a round background of `color`, in the normal and a small size.
  static std::shared_ptr<MCDecoratedBadge> badgeLockWithBackgroundColor(const MCColor& color);
  static std::shared_ptr<MCDecoratedBadge> badgeTrashWithBackgroundColor(const MCColor& color);
  static std::shared_ptr<MCDecoratedBadge> smallBadgeLockWithBackgroundColor(const MCColor& color);
  static std::shared_ptr<MCDecoratedBadge> smallBadgeTrashWithBackgroundColor(const MCColor& color);
  //@}

  /// A filled circle in the colour of a label: 1 red, 2 orange, 3 yellow, 4 green, 5 blue,
  /// 6 purple, 7 gray; none for another number.
  static std::shared_ptr<MCDecoratedBadge> badgeCircleWithLabelColor(long label);
  /// The colour of a label number, as above.
  static std::optional<MCColor> labelColor(long label);
  /// Compact: the count and a star as text; otherwise a row of `count` stars.
  static std::shared_ptr<MCDecoratedBadge> badgeStarsWithCount(long count, bool compact);
  /// The score with two decimals after a sparkles icon ("* " when there is none), on a dark plate.
  static std::shared_ptr<MCDecoratedBadge> badgeScore(double score);
  /// A stack of the children; none for an empty list.
  static std::shared_ptr<MCStackBadge> badgeStack(std::vector<MCBadgeRef> children, MCEdgeInsets contentInsets,
                                                  double spacing, MCSize minimumSize);
};
