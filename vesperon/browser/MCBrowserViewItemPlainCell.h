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
  /// A plain cell of the default geometry, drawing into `controlView` (the browser view).
  explicit MCBrowserViewItemPlainCell(std::weak_ptr<MCView> controlView = {}) : MCBrowserViewCell(std::move(controlView)) {}

  /// A white veil over the image.
  bool shouldDrawImageDimmed = false;
  /// A placeholder instead of the image (no thumbnail yet).
  bool shouldDrawImagePlaceholder = false;
  /// Whether the title line shows.
  bool shouldShowTitle = true;
  /// Whether the subtitle line shows.
  bool shouldShowSubtitle = true;
  /// Whether the flags badge shows (with shouldShowBadgeScore).
  bool shouldShowBadgeFlags = true;
  /// Whether the locked badge shows.
  bool shouldShowBadgeLocked = false;
  /// Whether the marked badge shows.
  bool shouldShowBadgeMarked = false;
  /// Whether the media source badge shows.
  bool shouldShowBadgeSource = true;
  /// Whether the state badge shows.
  bool shouldShowBadgeState = true;
  /// Also needed for the flags badge to draw.
  bool shouldShowBadgeScore = true;
  /// The frame around the image of a selected item; none draws no frame.
  std::optional<MCColor> selectionColor;
  /// The item's image (its thumbnail).
  MCImageRef image;
  /// @name Text
  //@{
  /// The two lines under the image, and the attributes (with their fonts) they draw with.
  std::string title, subtitle;
  MCTextAttributes titleAttributes, subtitleAttributes;
  //@}
  /// The badge at the top right of the image.
  MCBadgeRef flagsBadge;
  /// The image that tells where the item comes from.
  MCImageRef mediaSourceBadge;
  /// @name Corner badges
  //@{
  /// The state badge (bottom left of the image) and the locked and marked badges.
  MCBadgeRef stateBadge, lockedBadge, markedBadge;
  /// The corner radius the image is clipped to.
  double imageRadius = 7.0;
  //@}
  /// The corner radius of the selection frame.
  double selectionRadius = 9.5;
  /// How far the selection frame stands out from the image (negative: it overlaps it).
  double selectionPadding = -2.5;
  /// The line width of the selection frame.
  double selectionThickness = 3.0;
  /// The side of the image at scale 1.
  double maximumBrowserThumbnailSize = 360.0;
  /// The proportions the image is placed by (the photo's size, set by the host).
  MCSize imageSize{0, 0};
  /// From the frame to the content.
  MCEdgeInsets frameInsets{3, 3, 3, 3};
  /// Around the title line.
  MCEdgeInsets titleInsets{8, 0, 0, 0};
  /// Around the subtitle line.
  MCEdgeInsets subtitleInsets{4, 0, 0, 0};

  /// @name Default sizes
  //@{
  /// The image at scale 1: maximumBrowserThumbnailSize on both sides.
  double defaultImageWidth() const { return maximumBrowserThumbnailSize; }
  double defaultImageHeight() const { return maximumBrowserThumbnailSize; }
  //@}
  /// ceil(ascender + descender + leading + 1) of the font of the title (subtitle) attributes.
  double defaultTitleHeight() const;
  /// The same of the subtitle attributes' font.
  double defaultSubtitleHeight() const;

  // MCBrowserViewCell
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override { return image; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override;
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;
  /// Only the image's rectangle counts for hits.
  bool containsPoint(MCPoint point, const MCRect& frame) override;
  /// Whether `rect` meets the image's rectangle.
  bool intersectsRect(const MCRect& rect, const MCRect& frame) override;

  // Geometry.
  /// The size of the block (image and lines) for a cell of `size`.
  MCSize contentSizeForBoundsSize(MCSize size) const;
  /// The size of the lines for a cell of `size`; zero when neither shows.
  MCSize titleSizeForBoundsSize(MCSize size) const;
  /// The image's size for a cell of `size`, fitted to imageSize's proportions.
  MCSize imageSizeForBoundsSize(MCSize size) const;
  /// The frame shrunk by frameInsets.
  MCRect boundsForCellFrame(const MCRect& frame) const;
  /// The block of image and lines, centred in the frame.
  MCRect contentRectForCellFrame(const MCRect& frame) const;
  /// The selection frame: around the image, by selectionPadding.
  MCRect selectionRectForContentRect(const MCRect& content) const;
  /// The image at the top of the block, centred across it.
  MCRect imageRectForContentRect(const MCRect& content) const;
  /// The lines under the image; zero when neither shows.
  MCRect titlePartRectForContentRect(const MCRect& content) const;
  /// The title line in the lines' part; zero when it does not show.
  MCRect titleRectForTitlePartRect(const MCRect& part) const;
  /// The subtitle line in the lines' part; zero when it does not show.
  MCRect subtitleRectForTitlePartRect(const MCRect& part) const;
  /// @name Badge places
  //@{
  /// Where each badge lies, at its own size, placed from the image's rectangle as on the card.
  MCRect badgeStateRectForImageRect(const MCRect& image) const;
  MCRect badgeFlagsRectForImageRect(const MCRect& image) const;
  MCRect badgeLockedRectForContentRect(const MCRect& image) const;
  MCRect badgeMarkedRectForContentRect(const MCRect& image) const;
  MCRect badgeMediaSourceRectForContentRect(const MCRect& image) const;
  //@}

  // Drawing. `drawWithFrame` runs through these, so a subclass changes one part of the picture by
  // overriding its operation; each is given the rectangle worked out above.
  /// Draws the selection, the image with its badges and the lines of a content rectangle.
  virtual void drawContentInRect(const MCRect& content, MCView* view);
  /// The image (or its placeholder), then the flags, state, locked, marked and source badges that
  /// show and are set, each placed from the image's rectangle.
  virtual void drawImageWithBadgesInRect(const MCRect& rect);
  /// The selection frame, when the cell is selected and has a selection colour.
  virtual void drawSelectionInRect(const MCRect& rect);
  /// The title, cut with an ellipsis.
  virtual void drawTitleInRect(const MCRect& rect);
  /// The subtitle, cut with an ellipsis.
  virtual void drawSubtitleInRect(const MCRect& rect);
  /// The image clipped to imageRadius (dimmed when asked).
  virtual void drawImageInRect(const MCRect& rect);
  /// The placeholder in the image's place.
  virtual void drawImagePlaceholderInRect(const MCRect& rect);
  /// `flagsBadge` in `badgeFlagsRectForImageRect`.
  virtual void drawBadgeFlagsInRect(const MCRect& rect);
  /// `stateBadge` in `badgeStateRectForImageRect`.
  virtual void drawBadgeStateInRect(const MCRect& rect);
  /// `mediaSourceBadge` in `badgeMediaSourceRectForContentRect`.
  virtual void drawBadgeMediaSourceInRect(const MCRect& rect);
};
