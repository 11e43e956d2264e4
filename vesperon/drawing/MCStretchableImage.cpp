#include <vesperon/drawing/MCStretchableImage.h>

#include <vesperon/drawing/MCLibraryImages.h>
#include <vesperon/pixels/MCImageFiles.h>

#include <algorithm>

std::shared_ptr<MCStretchableImage> MCStretchableImage::create(const MCImageRef& image, MCEdgeInsets insets) {
  if (!image) return nullptr;
  const MCSize s = MCImagePointSize(*image);
  if (!(s.width > 0) || !(s.height > 0)) return nullptr;
  auto result = std::shared_ptr<MCStretchableImage>(new MCStretchableImage());
  result->size_ = s;
  result->insets_ = insets;
  const double t = insets.top, l = insets.left, b = insets.bottom, r = insets.right;
  const double midW = s.width - l - r, midH = s.height - t - b;
  const MCRect rects[9] = {
      MCMakeRect(0, 0, l, t),          MCMakeRect(l, 0, midW, t),          MCMakeRect(s.width - r, 0, r, t),
      MCMakeRect(0, t, l, midH),       MCMakeRect(l, t, midW, midH),       MCMakeRect(s.width - r, t, r, midH),
      MCMakeRect(0, s.height - b, l, b), MCMakeRect(l, s.height - b, midW, b), MCMakeRect(s.width - r, s.height - b, r, b),
  };
  for (int i = 0; i < 9; ++i) result->pieces_[std::size_t(i)] = MCImageFromRect(*image, rects[i]);
  return result;
}

std::shared_ptr<MCStretchableImage> MCStretchableImage::imageNamed(const std::filesystem::path& file, MCEdgeInsets insets) {
  return create(MCImageSafeImageWithCGImage(MCCreateImageWithURL(file)), insets);
}

std::shared_ptr<MCStretchableImage> MCStretchableImage::sdkImageNamed(const std::string& name, MCEdgeInsets insets) {
  return create(MCLibraryImageNamed(name), insets);
}

void MCStretchableImage::setPiece(std::size_t index, MCImageRef piece) {
  pieces_[index] = std::move(piece);
  cachedImage_ = nullptr;
  cachedImageSize_ = {};
}

std::shared_ptr<MCStretchableImage> MCStretchableImage::copy() const {
  auto result = std::shared_ptr<MCStretchableImage>(new MCStretchableImage());
  result->size_ = size_;
  result->insets_ = insets_;
  result->pieces_ = pieces_;
  return result;
}

void MCStretchableImage::drawInRect(const MCRect& rect, MCBlendMode operation, double fraction, bool respectFlipped) {
  if (MCIsEmptyRect(rect)) return;
  if (!cachedImage_ || !MCEqualSizes(cachedImageSize_, rect.size)) {
    const MCSize target = rect.size;
    const double t = insets_.top, l = insets_.left, b = insets_.bottom, r = insets_.right;
    // Corners at their natural size; edges stretched along one axis; the centre along both.
    const double midW = std::max(0.0, target.width - l - r), midH = std::max(0.0, target.height - t - b);
    const MCRect places[9] = {
        MCMakeRect(0, 0, l, t),           MCMakeRect(l, 0, midW, t),           MCMakeRect(l + midW, 0, r, t),
        MCMakeRect(0, t, l, midH),        MCMakeRect(l, t, midW, midH),        MCMakeRect(l + midW, t, r, midH),
        MCMakeRect(0, t + midH, l, b),    MCMakeRect(l, t + midH, midW, b),    MCMakeRect(l + midW, t + midH, r, b),
    };
    cachedImage_ = MCImageWithSize(target, 2.0, [&](MCGraphicsContext&) {
      for (int i = 0; i < 9; ++i)
        if (const MCImageRef& piece = pieces_[std::size_t(i)]) MCImageDrawInRect(*piece, places[i], operation, fraction);
    });
    cachedImageSize_ = target;
    ++compositions_;
  }
  if (cachedImage_) MCImageDrawInRect(*cachedImage_, rect, MCBlendMode::Normal, 1.0, respectFlipped);
}
