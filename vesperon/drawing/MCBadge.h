#pragma once
// MCBadge: a small composed drawing laid over a thumbnail — the base of the badge family. A badge
// measures and draws; it takes no events. Its size is its content's plus its insets, raised to
// its minimum size. Subclasses: MCTextBadge, MCIconBadge, MCStackBadge, MCDecoratedBadge.

#include <vesperon/core/MCGeometry.h>

#include <memory>

class MCBadge {
 public:
  virtual ~MCBadge() = default;

  /// The smallest size the badge draws at.
  MCSize minimumSize() const { return minimumSize_; }
  /// Sets the smallest size.
  void setMinimumSize(MCSize size) { minimumSize_ = size; }
  /// The room around the content.
  MCEdgeInsets contentInsets() const { return contentInsets_; }
  /// Sets the room around the content.
  void setContentInsets(MCEdgeInsets insets) { contentInsets_ = insets; }

  /// contentSize plus the insets, each side raised to the minimum size.
  virtual MCSize size() const;
  /// Zero for the base.
  virtual MCSize contentSize() const { return {0, 0}; }
  /// Draws into the current graphics context; nothing for the base.
  virtual void drawInRect(const MCRect& rect);

 private:
  MCSize minimumSize_{0, 0};
  MCEdgeInsets contentInsets_{0, 0, 0, 0};
};

using MCBadgeRef = std::shared_ptr<MCBadge>;
