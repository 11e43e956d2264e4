#pragma once
// MCBrowserViewItemCardCell: an item drawn as a card — a rounded background, the image in its
// upper part fitted to the image's proportions, a title and a subtitle below, and up to six
// badges: flags (top right of the image), state (bottom left of the image), locked and marked
// (bottom right of the card, or of the image), and the media source (top left of the card).
//
// At scale 1 the image part is 360 by 360 points. Every drawing step tests needsToDrawRect on its
// own part, so redrawing the text band leaves the image alone. Colours and text attributes have
// no defaults: the host sets them. A long title is cut with an ellipsis at its end.

#include <vesperon/browser/MCBrowserViewCell.h>
#include <vesperon/drawing/MCBadge.h>
#include <vesperon/drawing/MCImageExtensions.h>
#include <vesperon/toolkit/MCAttributedString.h>
#include <vesperon/toolkit/MCColor.h>

#include <optional>
#include <string>

class MCBrowserViewItemCardCell : public MCBrowserViewCell {
 public:
  explicit MCBrowserViewItemCardCell(std::weak_ptr<MCView> controlView = {}) : MCBrowserViewCell(std::move(controlView)) {}

  // Flags.
  bool shouldDrawImageDimmed = false;
  bool shouldDrawImagePlaceholder = false;
  bool shouldDrawMarkedBadgeOverImage = false;
  bool shouldShowTitle = true;
  bool shouldShowSubtitle = true;
  bool shouldShowBadgeFlags = true;
  bool shouldShowBadgeLocked = false;
  bool shouldShowBadgeMarked = false;
  bool shouldShowBadgeSource = true;
  bool shouldShowBadgeState = true;
  bool shouldShowBadgeScore = true;
  // Content.
  std::optional<MCColor> selectionColor;
  std::optional<MCColor> backgroundColor;
  MCImageRef image;
  std::string title, subtitle;
  MCTextAttributes titleAttributes, subtitleAttributes;
  MCBadgeRef flagsBadge;
  MCImageRef mediaSourceBadge;
  MCBadgeRef stateBadge, lockedBadge, markedBadge;
  // Geometry.
  double backgroundRadius = 7.0;
  double imageRadius = 7.0;
  double selectionRadius = 0, selectionPadding = 0, selectionThickness = 0;  // stored, not read by the card
  double maximumBrowserThumbnailSize = 0;                                   // stored, not read by the card
  MCSize imageSize{0, 0};
  MCEdgeInsets frameInsets{3, 3, 3, 3};
  MCEdgeInsets imageInsets{7, 7, 7, 7};
  MCEdgeInsets titleInsets{0, 4, 4, 4};
  MCEdgeInsets subtitleInsets{0, 4, 4, 4};

  static double defaultImageWidth() { return 360.0; }
  static double defaultImageHeight() { return 360.0; }
  /// ceil(ascender + descender + leading + 1) of the system font at 13 and at 11 points.
  static double defaultTitleHeight();
  static double defaultSubtitleHeight();

  // MCBrowserViewCell
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override { return image; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return imageRectForBounds(frame); }
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;

  // Drawing steps.
  void drawSelectionInRect(const MCRect& rect);
  void drawTitlePartInRect(const MCRect& rect);
  void drawTitleInRect(const MCRect& rect);
  void drawSubtitleInRect(const MCRect& rect);
  void drawImagePartInRect(const MCRect& rect, MCView* view);
  void drawBackgroundInRect(const MCRect& rect);
  void drawImageInRect(const MCRect& rect);
  void drawImagePlaceholderInRect(const MCRect& rect);
  void drawBadgeFlagsInRect(const MCRect& rect);
  void drawBadgeMediaSourceInRect(const MCRect& rect);
  void drawBadgeStateInRect(const MCRect& rect);
  void drawContentInRect(const MCRect& rect, MCView* view);

  // Geometry steps.
  MCSize titleSizeForBoundsSize(MCSize size) const;
  MCSize imageSizeForBoundsSize(MCSize size) const;
  MCRect contentRectForBounds(const MCRect& bounds) const;
  MCRect imageRectForBounds(const MCRect& bounds) const;
  MCRect selectionRectForContentRect(const MCRect& content) const;
  MCRect imagePartRectForContentRect(const MCRect& content) const;
  MCRect imageRectForImagePartRect(const MCRect& part) const;
  MCRect titlePartRectForContentRect(const MCRect& content) const;
  MCRect titleRectForTitlePartRect(const MCRect& part) const;
  MCRect subtitleRectForTitlePartRect(const MCRect& part) const;
  MCRect badgeStateRectForImageRect(const MCRect& image) const;
  MCRect badgeFlagsRectForImageRect(const MCRect& image) const;
  MCRect badgeLockedRectForContentRect(const MCRect& content) const;
  MCRect badgeMarkedRectForContentRect(const MCRect& content) const;
  MCRect badgeMediaSourceRectForContentRect(const MCRect& content) const;

 private:
  static bool needs(MCView* view, const MCRect& rect);
};
