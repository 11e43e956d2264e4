#pragma once
// MCStackBadge: badges in a row from the left, each centred vertically, with spacing between.

#include <vesperon/drawing/MCBadge.h>

#include <vector>

class MCStackBadge : public MCBadge {
 public:
  /// A badge of `children` side by side.
  explicit MCStackBadge(std::vector<MCBadgeRef> children = {}) : children_(std::move(children)) {}

  /// The badges, left to right.
  const std::vector<MCBadgeRef>& children() const { return children_; }
  /// Replaces the badges.
  void setChildren(std::vector<MCBadgeRef> children) { children_ = std::move(children); }
  /// The gap between badges.
  double spacing() const { return spacing_; }
  /// Sets the gap.
  void setSpacing(double spacing) { spacing_ = spacing; }

  /// The widths added, with the spacing between (not before the first); the tallest height.
  MCSize contentSize() const override;
  void drawInRect(const MCRect& rect) override;

 private:
  std::vector<MCBadgeRef> children_;
  double spacing_ = 0;
};
