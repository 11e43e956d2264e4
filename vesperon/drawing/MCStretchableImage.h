#pragma once
// MCStretchableImage: a nine-part image — a source cut by four insets into corners, edges and a
// centre — drawn at any size with the corners at their natural size, the edges stretched along
// one axis and the centre along both. The image composed for the last size drawn is kept, so a
// list of like cells composes it once.

#include <vesperon/drawing/MCImageExtensions.h>

#include <array>
#include <filesystem>
#include <string>

class MCStretchableImage {
 public:
  /// None for no image, or an image of no width or height.
  static std::shared_ptr<MCStretchableImage> create(const MCImageRef& image, MCEdgeInsets insets);
  /// From an image file (PNG, JPEG … through the codec plug-ins) at scale 1.
  static std::shared_ptr<MCStretchableImage> imageNamed(const std::filesystem::path& file, MCEdgeInsets insets);
  /// From the library's own image resource of that name (see MCLibraryImages.h); none when the
  /// library has no such resource.
  static std::shared_ptr<MCStretchableImage> sdkImageNamed(const std::string& name, MCEdgeInsets insets);

  /// The size the image is drawn at by drawAtPoint.
  MCSize size() const { return size_; }
  /// The widths of the fixed edges and corners.
  const MCEdgeInsets& insets() const { return insets_; }
  /// The nine pieces in the order top left, top, top right, left, centre, right, bottom left,
  /// bottom, bottom right.
  const std::array<MCImageRef, 9>& pieces() const { return pieces_; }

  // The pieces one by one. Setting one drops the composed image, so the next drawing shows it;
  // a piece set to none leaves its place empty.
  /// @name Pieces
  //@{
  /// The nine pieces: four fixed corners, four edges stretched along their side and the stretched
  /// centre. Setting one drops the composed cache.
  const MCImageRef& topLeftCorner() const { return pieces_[0]; }
  void setTopLeftCorner(MCImageRef piece) { setPiece(0, std::move(piece)); }
  const MCImageRef& topEdgeFill() const { return pieces_[1]; }
  void setTopEdgeFill(MCImageRef piece) { setPiece(1, std::move(piece)); }
  const MCImageRef& topRightCorner() const { return pieces_[2]; }
  void setTopRightCorner(MCImageRef piece) { setPiece(2, std::move(piece)); }
  const MCImageRef& leftEdgeFill() const { return pieces_[3]; }
  void setLeftEdgeFill(MCImageRef piece) { setPiece(3, std::move(piece)); }
  const MCImageRef& centerFill() const { return pieces_[4]; }
  void setCenterFill(MCImageRef piece) { setPiece(4, std::move(piece)); }
  const MCImageRef& rightEdgeFill() const { return pieces_[5]; }
  void setRightEdgeFill(MCImageRef piece) { setPiece(5, std::move(piece)); }
  const MCImageRef& bottomLeftCorner() const { return pieces_[6]; }
  void setBottomLeftCorner(MCImageRef piece) { setPiece(6, std::move(piece)); }
  const MCImageRef& bottomEdgeFill() const { return pieces_[7]; }
  void setBottomEdgeFill(MCImageRef piece) { setPiece(7, std::move(piece)); }
  const MCImageRef& bottomRightCorner() const { return pieces_[8]; }
  void setBottomRightCorner(MCImageRef piece) { setPiece(8, std::move(piece)); }
  //@}

  /// Composes (or reuses) the image of the rectangle's size with the operation and fraction, and
  /// draws it over what is there.
  void drawInRect(const MCRect& rect, MCBlendMode operation, double fraction, bool respectFlipped);
  /// As above with the flip not respected.
  void drawInRect(const MCRect& rect, MCBlendMode operation, double fraction) {
    drawInRect(rect, operation, fraction, false);
  }
  /// Draws at `size` with its top left at `point`, the flip not respected.
  void drawAtPoint(MCPoint point, MCBlendMode operation, double fraction) {
    drawInRect(MCMakeRect(point.x, point.y, size_.width, size_.height), operation, fraction);
  }
  /// A copy with the same pieces and no cache.
  std::shared_ptr<MCStretchableImage> copy() const;

  /// How many times an image was composed; for tests and benchmarks.
  int numberOfCompositions() const { return compositions_; }
  /// The size of the composed image kept; zero when none is.
  MCSize cachedImageSize() const { return cachedImageSize_; }

 private:
  MCStretchableImage() = default;
  void setPiece(std::size_t index, MCImageRef piece);
  MCSize size_{};
  MCEdgeInsets insets_{};
  std::array<MCImageRef, 9> pieces_{};
  MCImageRef cachedImage_;
  MCSize cachedImageSize_{};
  int compositions_ = 0;
};
