#pragma once
// MCDrawingSink: where a recording MCGraphicsContext sends what it draws, in drawing order.
//
// A recording context (MCGraphicsContext::createRecording) hands the sink the drawing that a
// retained renderer has a primitive for — images, solid rectangles, text layouts — each with its
// clip and transform resolved into device pixels (origin at the top left of the bitmap, y down).
// Everything else (paths, strokes, gradients, text with inline images, drawing inside a
// transparency group, any blend mode but Normal) is drawn with Cairo into a recording surface, and
// each run of such drawing between two of the ops above reaches the sink as one surface, in its
// place. So replaying the calls in order, each as its own layer, gives the picture a bitmap context
// would have drawn.
//
// A sink may refuse an op by answering false; the context then draws it with Cairo instead.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCRasterImage.h>

typedef struct _cairo_surface cairo_surface_t;
typedef struct _PangoLayout PangoLayout;

/// An affine map in device pixels: x' = xx x + xy y + x0, y' = yx x + yy y + y0 (Cairo's order).
struct MCDeviceTransform {
  /// How far x' moves per unit of x.
  double xx = 1;
  /// How far y' moves per unit of x.
  double yx = 0;
  /// How far x' moves per unit of y.
  double xy = 0;
  /// How far y' moves per unit of y.
  double yy = 1;
  /// Where the origin goes across.
  double x0 = 0;
  /// Where the origin goes down.
  double y0 = 0;
};

/// The clip of an op in device pixels: a rectangle, and inside it a rectangle with rounded corners
/// when `radius` > 0.
struct MCDrawingClip {
  /// The clip's rectangle.
  MCRect rect;
  /// The rectangle whose corners are rounded, when `radius` > 0.
  MCRect rounded;
  /// The corners' radius; 0 for none.
  double radius = 0;
};

/// An image op: `transform` takes the image's pixel grid (0..width × 0..height, its first row at
/// y = 0) into device pixels.
struct MCDrawingImageOp {
  /// From the image's pixel grid into device pixels.
  MCDeviceTransform transform;
  /// Where the image may show.
  MCDrawingClip clip;
  /// The opacity the image is drawn with, 0 to 1.
  double alpha = 1;
  /// Nearest-neighbour sampling was asked for.
  bool nearest = false;
};

/// A text op: the layout's top left at (x0, y0), its units scaled by xx and yy (both positive).
struct MCDrawingTextOp {
  /// Where the layout's top left goes, and its scale.
  MCDeviceTransform transform;
  /// Where the text may show.
  MCDrawingClip clip;
  /// The opacity the text is drawn with, 0 to 1.
  double alpha = 1;
  /// The colour of text without a colour attribute of its own, sRGB, not premultiplied: red.
  double red = 0;
  /// Green, as red.
  double green = 0;
  /// Blue, as red.
  double blue = 0;
};

class MCDrawingSink {
 public:
  virtual ~MCDrawingSink() = default;
  /// A run of drawing that had no op of its own: a Cairo recording surface in device pixels, and
  /// the part of it that holds ink. The surface lives as long as the sink holds a reference.
  virtual void drawRecording(cairo_surface_t* recording, const MCRect& inkExtents) = 0;
  /// A solid colour over `rect` (device pixels, already inside the clip's rectangle), sRGB with
  /// alpha, not premultiplied.
  virtual bool fillRect(const MCRect& rect, const MCDrawingClip& clip, double red, double green, double blue,
                        double alpha) = 0;
  /// An image.
  virtual bool drawImage(const MCRasterImageRef& image, const MCDrawingImageOp& op) = 0;
  /// A Pango layout whose runs hold glyphs only.
  virtual bool drawLayout(PangoLayout* layout, const MCDrawingTextOp& op) = 0;
};
