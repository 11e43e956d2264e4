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
  /// A card of the default geometry, drawing into `controlView` (the browser view).
  explicit MCBrowserViewItemCardCell(std::weak_ptr<MCView> controlView = {}) : MCBrowserViewCell(std::move(controlView)) {}

  // Flags.
  /// A white veil over the image.
  bool shouldDrawImageDimmed = false;
  /// A placeholder instead of the image (no thumbnail yet).
  bool shouldDrawImagePlaceholder = false;
  /// The locked and marked badges go to the image's corner instead of the card's.
  bool shouldDrawMarkedBadgeOverImage = false;
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
  // Content.
  /// The frame of a selected card; none draws no frame.
  std::optional<MCColor> selectionColor;
  /// The card's rounded background; none draws none.
  std::optional<MCColor> backgroundColor;
  /// The item's image (its thumbnail); none with a placeholder or nothing.
  MCImageRef image;
  /// @name Text
  //@{
  /// The two lines under the image, and the attributes they draw with.
  std::string title, subtitle;
  MCTextAttributes titleAttributes, subtitleAttributes;
  //@}
  /// The badge at the top right of the image (a rating, flags).
  MCBadgeRef flagsBadge;
  /// The image at the top left of the card (where the item comes from).
  MCImageRef mediaSourceBadge;
  /// @name Corner badges
  //@{
  /// The state badge (bottom left of the image) and the locked and marked badges (bottom right of
  /// the card, or of the image with shouldDrawMarkedBadgeOverImage).
  MCBadgeRef stateBadge, lockedBadge, markedBadge;
  // Geometry.
  /// The corner radius of the background.
  double backgroundRadius = 7.0;
  //@}
  /// The corner radius the image is clipped to.
  double imageRadius = 7.0;
  /// @name Stored for the host
  //@{
  /// Stored and copied for the host; the card does not read them.
  double selectionRadius = 0, selectionPadding = 0, selectionThickness = 0;  // stored, not read by the card
  double maximumBrowserThumbnailSize = 0;                                   // stored, not read by the card
  /// The proportions the image is placed by (the photo's size, set by the host); zero uses the
  /// image part whole.
  MCSize imageSize{0, 0};
  //@}
  /// From the frame to the content.
  MCEdgeInsets frameInsets{3, 3, 3, 3};
  /// From the content to the image part.
  MCEdgeInsets imageInsets{7, 7, 7, 7};
  /// Around the title line.
  MCEdgeInsets titleInsets{0, 4, 4, 4};
  /// Around the subtitle line.
  MCEdgeInsets subtitleInsets{0, 4, 4, 4};

  /// @name Default sizes
  //@{
  /// The image part at scale 1: 360 by 360 points.
  static double defaultImageWidth() { return 360.0; }
  static double defaultImageHeight() { return 360.0; }
  //@}
  /// ceil(ascender + descender + leading + 1) of the system font at 13 and at 11 points.
  static double defaultTitleHeight();
  /// The same of the small system font.
  static double defaultSubtitleHeight();

  // MCBrowserViewCell
  MCSize cellSizeForBounds(const MCRect& bounds, double scale) override;
  std::shared_ptr<const MCImage> previewImage() override { return image; }
  MCRect previewSourceRectForCellFrame(const MCRect& frame) override { return imageRectForBounds(frame); }
  void drawWithFrame(const MCRect& frame, MCView* view) override;
  std::shared_ptr<MCBrowserViewCell> copy() const override;

  // Drawing steps.
  /// @name Drawing steps
  //@{
  /// The steps of drawWithFrame, each drawing one part when `rect` needs it (the selection frame,
  /// the title band and its two lines, the image part with its background, image or placeholder, and
  /// the badges).
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
  //@}

  // Geometry steps.
  /// The size of the title band for a card of `size`: the given width, the heights of the lines
  /// shown with their insets; zero when neither shows.
  MCSize titleSizeForBoundsSize(MCSize size) const;
  /// The image's size in a card of `size`: fitted to imageSize's proportions, rounded up.
  MCSize imageSizeForBoundsSize(MCSize size) const;
  /// The rectangle shrunk by frameInsets.
  MCRect contentRectForBounds(const MCRect& bounds) const;
  /// Where the image lies in a card's frame: fitted and centred in the image part.
  MCRect imageRectForBounds(const MCRect& bounds) const;
  /// The image's rectangle for a content rectangle, which the selection frame follows.
  MCRect selectionRectForContentRect(const MCRect& content) const;
  /// The content above the title band, inside imageInsets.
  MCRect imagePartRectForContentRect(const MCRect& content) const;
  /// The image fitted to imageSize's proportions and centred in the part (the part whole
  /// without a size), on whole points.
  MCRect imageRectForImagePartRect(const MCRect& part) const;
  /// The band at the bottom of the content that holds the lines; zero when neither shows.
  MCRect titlePartRectForContentRect(const MCRect& content) const;
  /// The title line in the band; zero when it does not show.
  MCRect titleRectForTitlePartRect(const MCRect& part) const;
  /// The subtitle line: centred on its text width, kept left of a corner badge; zero when it does
  /// not show.
  MCRect subtitleRectForTitlePartRect(const MCRect& part) const;
  /// @name Badge places
  //@{
  /// Where each badge lies, at its own size: the state badge 4 points in from the image's bottom
  /// left, the flags badge from its top right, the locked and marked badges at the content's bottom
  /// right, the media source badge at its top left.
  MCRect badgeStateRectForImageRect(const MCRect& image) const;
  MCRect badgeFlagsRectForImageRect(const MCRect& image) const;
  MCRect badgeLockedRectForContentRect(const MCRect& content) const;
  MCRect badgeMarkedRectForContentRect(const MCRect& content) const;
  MCRect badgeMediaSourceRectForContentRect(const MCRect& content) const;
  //@}

 private:
  static bool needs(MCView* view, const MCRect& rect);
};
