#pragma once
// MCDecoratedBadge: a badge on a plate — an optional rounded background and an optional shadow
// around an inner badge. The whole plate is composed once, on first use, into `cachedImage`;
// later draws only paint that image. Changing a property afterwards does not refresh it: clear
// it with setCachedImage(nullptr).

#include <vesperon/drawing/MCBadge.h>
#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/drawing/MCShadow.h>

#include <optional>

class MCDecoratedBadge : public MCBadge {
 public:
  /// A plate around `badge`, with no background yet.
  explicit MCDecoratedBadge(MCBadgeRef badge) : badge_(std::move(badge)) {}

  /// The inner badge.
  const MCBadgeRef& badge() const { return badge_; }
  /// Replaces the inner badge.
  void setBadge(MCBadgeRef badge) { badge_ = std::move(badge); }
  /// The plate's colour; none draws no plate.
  const std::optional<MCColor>& backgroundColor() const { return backgroundColor_; }
  /// Sets the plate's colour.
  void setBackgroundColor(std::optional<MCColor> color) { backgroundColor_ = color; }
  /// The plate's corner radius.
  double cornerRadius() const { return cornerRadius_; }
  /// Sets the corner radius.
  void setCornerRadius(double radius) { cornerRadius_ = radius; }
  /// The shadow under the badge; none casts none.
  const std::optional<MCShadow>& shadow() const { return shadow_; }
  /// Sets the shadow.
  void setShadow(std::optional<MCShadow> shadow) { shadow_ = shadow; }

  /// The plate as drawn, made on first use at the pixel density of the current context (or
  /// `kScale` pixels per point when there is none).
  MCImageRef cachedImage();
  /// Replaces the drawn plate (none makes it anew).
  void setCachedImage(MCImageRef image) { cachedImage_ = std::move(image); }
  /// The pixels per point of a plate drawn outside any context.
  static constexpr double kScale = 2.0;

  /// The inner badge's size.
  MCSize contentSize() const override;
  /// The inner size plus the insets, plus twice the shadow's margin on each axis, raised to the
  /// minimum size.
  MCSize size() const override;
  void drawInRect(const MCRect& rect) override;

 private:
  MCBadgeRef badge_;
  std::optional<MCColor> backgroundColor_;
  double cornerRadius_ = 0;
  std::optional<MCShadow> shadow_;
  MCImageRef cachedImage_;
};
