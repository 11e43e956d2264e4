#pragma once
// MCIconBadge: a badge of one icon, tinted with a colour when one is given (the colour takes the
// icon's shape: source-atop over the icon).

#include <vesperon/drawing/MCBadge.h>
#include <vesperon/drawing/MCImageExtensions.h>

#include <optional>

class MCIconBadge : public MCBadge {
 public:
  /// A badge of `icon`, tinted when a colour is given.
  MCIconBadge(MCImageRef icon, std::optional<MCColor> tintColor) : icon_(std::move(icon)), tintColor_(tintColor) {}

  /// The icon.
  const MCImageRef& icon() const { return icon_; }
  /// The tint; none draws the icon as it is.
  const std::optional<MCColor>& tintColor() const { return tintColor_; }
  /// The icon, or with a tint a new image of its size in the tint's colour.
  MCImageRef tintedIcon() const;
  /// The icon's size in points; zero without an icon.
  MCSize contentSize() const override;
  /// The tinted icon centred in the rectangle less the insets.
  void drawInRect(const MCRect& rect) override;

 private:
  MCImageRef icon_;
  std::optional<MCColor> tintColor_;
};
