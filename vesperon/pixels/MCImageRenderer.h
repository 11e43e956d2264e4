#pragma once
// MCImageRenderer: an off-screen drawing surface. It makes one bitmap context at construction,
// hands it to drawing callbacks, and turns what was drawn into an image.
//
// The context has `size` pixels (each side truncated to an integer), 8 bits per component
// whatever the format says, the format's colour space and bitmap info, and a transform scaled by
// `scale`. `contextBounds` is (0, 0, size × scale). At scale 1 pixels, bounds and size agree; at
// other scales the bitmap stays `size` pixels while the drawing coordinates are scaled, as on the
// platform. The context is never cleared: each drawWithBlock draws over what earlier calls left.
// One thread at a time.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/pixels/MCImageRendererFormat.h>
#include <vesperon/platform/MCGraphicsContext.h>

#include <functional>
#include <memory>

class MCImageRenderer {
 public:
  /// Draws into the context within `bounds`; false fails the image.
  using DrawingBlock = std::function<bool(MCGraphicsContext& context, const MCRect& bounds)>;

  /// A renderer with bitmap info 6 (no alpha, skip first) in the screen's colour space, which
  /// off screen is sRGB. None when the context cannot be made.
  static std::shared_ptr<MCImageRenderer> create(MCSize size, double scale);
  /// None when the context cannot be made (a side truncating to 0, a format without a layout, no
  /// colour space).
  static std::shared_ptr<MCImageRenderer> create(MCSize size, double scale,
                                                 std::shared_ptr<MCImageRendererFormat> format);

  /// The image's size in points.
  MCSize size() const { return size_; }
  /// Pixels per point.
  double scale() const { return scale_; }
  /// The pixel format.
  const std::shared_ptr<MCImageRendererFormat>& format() const { return format_; }
  /// The context drawn into.
  MCGraphicsContext& context() const { return *context_; }
  /// The bounds of the context in points.
  MCRect contextBounds() const { return contextBounds_; }

  /// Calls `block` with the context and contextBounds; none when it gives false (what it drew
  /// stays in the context) or no image can be made, else the image of the whole context.
  MCRasterImageRef drawWithBlock(const DrawingBlock& block);

 private:
  MCImageRenderer() = default;
  MCSize size_;
  double scale_ = 1;
  std::shared_ptr<MCImageRendererFormat> format_;
  std::shared_ptr<MCGraphicsContext> context_;
  MCRect contextBounds_;
};
