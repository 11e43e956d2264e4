#pragma once
// MCBrowserViewItemPlainCell: an item drawn without a background — the image and its title and
// subtitle centred as one block in the frame, the selection frame hugging the image. Only the
// image counts for hits: a click on the text or the margin is no hit on the cell.
//
// The title and subtitle heights come from the fonts of `titleAttributes` and
// `subtitleAttributes`, which are to be set before the cell is measured. Badges as on the card,
// placed from the image's rectangle.

#include <vesperon/browser/MCBrowserViewCell.h>
#include <vesperon/drawing/MCBadge.h>
#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>

#include <optional>
#include <string>

class MCBrowserViewItemPlainCell : public MCBrowserViewCell {
 public:
  explicit MCBrowserViewItemPlainCell(std::weak_ptr<MCView> controlView = {}) : MCBrowserViewCell(std::move(controlView)) {}

  bool shouldDrawImageDimmed = false;
  bool shouldDrawImagePlaceholder = false;
  bool shouldShowTitle = true;
  bool shouldShowSubtitle = true;
  bool shouldShowBadgeFlags = true;
  bool shouldShowBadgeLocked = false;
  bool shouldShowBadgeMarked = false;
  bool shouldShowBadgeSource = true;
  bool shouldShowBadgeState = true;
  bool shouldShowBadgeScore = true;
  std::optional<MCColor> selectionColor;
  MCImageRef image;
  std::string title, subtitle;
  MCTextAttributes titleAttributes, subtitleAttributes;
  MCBadgeRef flagsBadge;
  MCImageRef mediaSourceBadge;
  MCBadgeRef stateBadge, lockedBadge, markedBadge;
  double imageRadius = 7.0;
  double selectionRadius = 9.5;
  double selectionPadding = -2.5;
  double selectionThickness = 3.0;
  double maximumBrowserThumbnailSize = 360.0;
  MCSize imageSize{0, 0};
  MCEdgeInsets frameInsets{3, 3, 3, 3};
  MCEdgeInsets titleInsets{8, 0, 0, 0};
  MCEdgeInsets subtitleInsets{4, 0, 0, 0};

  double defaultImageWidth() const { return maximumBrowserThumbnailSize; }
  double defaultImageHeight() const { return maximumBrowserThumbnailSize; }
  /// ceil(ascender + descender + leading + 1) of the font of the title (subtitle) attributes.
  double defaultTitleHeight() const;
  double defaultSubtitleHeight() const;

  // MCBrowserViewCell
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override { return image; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override;
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;
  bool containsPoint(MCPoint point, const MCRect& frame) override;
  bool intersectsRect(const MCRect& rect, const MCRect& frame) override;

  // Geometry.
  MCSize contentSizeForBoundsSize(MCSize size) const;
  MCSize titleSizeForBoundsSize(MCSize size) const;
  MCSize imageSizeForBoundsSize(MCSize size) const;
  MCRect boundsForCellFrame(const MCRect& frame) const;
  MCRect contentRectForCellFrame(const MCRect& frame) const;
  MCRect selectionRectForContentRect(const MCRect& content) const;
  MCRect imageRectForContentRect(const MCRect& content) const;
  MCRect titlePartRectForContentRect(const MCRect& content) const;
  MCRect titleRectForTitlePartRect(const MCRect& part) const;
  MCRect subtitleRectForTitlePartRect(const MCRect& part) const;
  MCRect badgeStateRectForImageRect(const MCRect& image) const;
  MCRect badgeFlagsRectForImageRect(const MCRect& image) const;
  MCRect badgeLockedRectForContentRect(const MCRect& image) const;
  MCRect badgeMarkedRectForContentRect(const MCRect& image) const;
  MCRect badgeMediaSourceRectForContentRect(const MCRect& image) const;

  // Drawing. `drawWithFrame` runs through these, so a subclass changes one part of the picture by
  // overriding its operation; each is given the rectangle worked out above.
  virtual void drawContentInRect(const MCRect& content, MCView* view);
  /// The image (or its placeholder), then the flags, state, locked, marked and source badges that
  /// show and are set, each placed from the image's rectangle.
  virtual void drawImageWithBadgesInRect(const MCRect& rect);
  virtual void drawSelectionInRect(const MCRect& rect);
  virtual void drawTitleInRect(const MCRect& rect);
  virtual void drawSubtitleInRect(const MCRect& rect);
  virtual void drawImageInRect(const MCRect& rect);
  virtual void drawImagePlaceholderInRect(const MCRect& rect);
  /// `flagsBadge` in `badgeFlagsRectForImageRect`.
  virtual void drawBadgeFlagsInRect(const MCRect& rect);
  /// `stateBadge` in `badgeStateRectForImageRect`.
  virtual void drawBadgeStateInRect(const MCRect& rect);
  /// `mediaSourceBadge` in `badgeMediaSourceRectForContentRect`.
  virtual void drawBadgeMediaSourceInRect(const MCRect& rect);
};
