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
  explicit MCDecoratedBadge(MCBadgeRef badge) : badge_(std::move(badge)) {}

  const MCBadgeRef& badge() const { return badge_; }
  void setBadge(MCBadgeRef badge) { badge_ = std::move(badge); }
  const std::optional<MCColor>& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(std::optional<MCColor> color) { backgroundColor_ = color; }
  double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius) { cornerRadius_ = radius; }
  const std::optional<MCShadow>& shadow() const { return shadow_; }
  void setShadow(std::optional<MCShadow> shadow) { shadow_ = shadow; }

  /// The plate as drawn, made on first use at the pixel density of the current context (or
  /// `kScale` pixels per point when there is none).
  MCImageRef cachedImage();
  void setCachedImage(MCImageRef image) { cachedImage_ = std::move(image); }
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
