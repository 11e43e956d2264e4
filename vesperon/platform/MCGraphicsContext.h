#pragma once
// MCGraphicsContext: a bitmap drawing context on Cairo — the library's counterpart of the
// platform's CGBitmapContext.
//
// Coordinates are the platform's: the origin is at the bottom left of the bitmap and y grows
// upwards, one unit per pixel until the transform is changed. An image drawn into a rectangle
// appears upright, its top row at the rectangle's maximum y.
//
// The context's pixels live in a Cairo image surface (32-bit premultiplied ARGB, or RGB without
// alpha) holding the colour values of the context's own colour space; a gray context keeps its
// gray value in all three colour channels. Images are converted into that space with Little CMS
// when drawn, and the surface is converted into the context's declared layout — 8 or 16 bits, any
// of the alpha infos, gray or RGB — when its data or an image is asked for. Compositing runs at
// 8 bits per component, so a 16-bit context holds 8-bit precision widened to 16 bits.
//
// A fresh context is all zero: transparent black, or black without alpha. One thread at a time.
//
// A recording context (createRecording) has no pixels of its own: it hands what it draws to an
// MCDrawingSink, images, solid rectangles and plain text as ops of their own where their clip and
// transform allow, and the rest as runs of Cairo drawing in between (see MCDrawingSink.h). Views
// draw the same way into either kind.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/platform/MCColorSpace.h>
#include <vesperon/platform/MCDrawingSink.h>
#include <vesperon/platform/MCPixelConversion.h>
#include <vesperon/platform/MCRasterImage.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

/// The platform's blend mode numbers.
enum class MCBlendMode : int {
  Normal = 0, Multiply, Screen, Overlay, Darken, Lighten, ColorDodge, ColorBurn, SoftLight, HardLight,
  Difference, Exclusion, Hue, Saturation, Color, Luminosity,
  Clear = 16, Copy = 17, SourceIn, SourceOut, SourceAtop, DestinationOver, DestinationIn, DestinationOut,
  DestinationAtop, XOR, PlusDarker, PlusLighter,
};

enum class MCInterpolationQuality : int { Default = 0, None = 1, Low = 2, High = 3, Medium = 4 };
enum class MCLineCap : int { Butt = 0, Round = 1, Square = 2 };
enum class MCLineJoin : int { Miter = 0, Round = 1, Bevel = 2 };

class MCGraphicsContext {
 public:
  /// CGBitmapContextCreate without data of the caller's. `bytesPerRow` 0 chooses tightly packed
  /// rows. None when a size is 0 or above 32767, the colour space is absent or CMYK, the bits and
  /// bitmap info make no layout (see MCRasterImage), or the row bytes are too few.
  static std::shared_ptr<MCGraphicsContext> create(std::size_t width, std::size_t height,
                                                   std::size_t bitsPerComponent, std::size_t bytesPerRow,
                                                   std::shared_ptr<const MCColorSpace> colorSpace,
                                                   uint32_t bitmapInfo);
  /// A context of `width` × `height` device pixels (sRGB with alpha) that records into `sink`
  /// instead of drawing into pixels; the sink must outlive it. Its data() is none and its image
  /// none. None for sizes that create() refuses, or without a sink.
  static std::shared_ptr<MCGraphicsContext> createRecording(std::size_t width, std::size_t height,
                                                            MCDrawingSink* sink);
  /// Hands the sink the Cairo drawing made since its last op. Call once drawing is over.
  void finishRecording();
  /// Whether the context records into a sink.
  bool isRecording() const { return sink_ != nullptr; }
  ~MCGraphicsContext();
  MCGraphicsContext(const MCGraphicsContext&) = delete;
  MCGraphicsContext& operator=(const MCGraphicsContext&) = delete;

  /// @name Bitmap
  //@{
  /// The bitmap the context draws into: its size in pixels, layout, colour space and the platform's
  /// bitmap info bits.
  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  std::size_t bitsPerComponent() const { return layout_.bitsPerComponent; }
  std::size_t bitsPerPixel() const { return layout_.bitsPerPixel; }
  std::size_t bytesPerRow() const { return bytesPerRow_; }
  const std::shared_ptr<const MCColorSpace>& colorSpace() const { return colorSpace_; }
  uint32_t bitmapInfo() const { return layout_.bitmapInfo; }
  //@}

  // Graphics state. saveGState/restoreGState keep the transform, the clip, the colours, the alpha,
  // the blend mode, the interpolation quality, the line settings and antialiasing.
  /// @name Graphics state
  //@{
  /// Push and pop the graphics state; change the transform (translate, scale, rotate in radians),
  /// the blend mode, the interpolation quality of images, the alpha all drawing takes, and
  /// antialiasing.
  void saveGState();
  void restoreGState();
  /// How many states are saved; restoreGStatesTo pops back to such a depth (after drawing that
  /// was cut short).
  std::size_t gStateDepth() const;
  void restoreGStatesTo(std::size_t depth);
  void translateCTM(double tx, double ty);
  void scaleCTM(double sx, double sy);
  void rotateCTM(double radians);
  void setBlendMode(MCBlendMode mode);
  void setInterpolationQuality(MCInterpolationQuality quality);
  void setAlpha(double alpha);
  void setShouldAntialias(bool antialias);
  //@}
  /// Colours are components of the context's colour space, each 0 to 1. An RGB colour in a gray
  /// context becomes its Rec. 709 luma; a gray colour in an RGB context has equal components.
  void setRGBFillColor(double red, double green, double blue, double alpha);
  /// @name Colours and lines
  //@{
  /// The stroke colour, gray fill and stroke colours (as the RGB ones above), and how lines stroke.
  void setRGBStrokeColor(double red, double green, double blue, double alpha);
  void setGrayFillColor(double gray, double alpha);
  void setGrayStrokeColor(double gray, double alpha);
  void setLineWidth(double width);
  void setLineCap(MCLineCap cap);
  void setLineJoin(MCLineJoin join);
  //@}

  // Paths. Drawing a path consumes it.
  /// @name Paths
  //@{
  /// Build the current path (starting anew, in points of the present transform), and fill it
  /// (nonzero, or even-odd with eoFillPath) or stroke it; filling and stroking consume it.
  void beginPath();
  void moveToPoint(double x, double y);
  void addLineToPoint(double x, double y);
  void addCurveToPoint(double cp1x, double cp1y, double cp2x, double cp2y, double x, double y);
  void addQuadCurveToPoint(double cpx, double cpy, double x, double y);
  /// An arc around (x, y); `clockwise` as the platform counts it in its y-up space.
  void addArc(double x, double y, double radius, double startAngle, double endAngle, bool clockwise);
  void addRect(const MCRect& rect);
  void addEllipseInRect(const MCRect& rect);
  void closePath();
  void fillPath();
  void eoFillPath();
  void strokePath();
  //@}
  /// Intersects the clip with the current path, and consumes it.
  void clip();
  /// Intersects the clip with `rect`.
  void clipToRect(const MCRect& rect);
  /// Intersects the clip with `rect` rounded by `radius` at each corner (a plain rectangle at 0);
  /// a recording context keeps images drawn inside it as ops of their own.
  void clipToRoundedRect(const MCRect& rect, double radius);

  /// @name Shapes
  //@{
  /// Fill or stroke a rectangle or the ellipse inside one, with no effect on the current path.
  void fillRect(const MCRect& rect);
  void strokeRect(const MCRect& rect);
  void fillEllipseInRect(const MCRect& rect);
  void strokeEllipseInRect(const MCRect& rect);
  //@}
  /// Sets the rectangle to transparent black (or black without alpha), whatever the blend mode.
  void clearRect(const MCRect& rect);

  /// Draws the image scaled into `rect` with the interpolation quality's filter (Default and
  /// Medium: Cairo's "good"; High: "best"; Low: "fast"; None: nearest), the alpha and the blend
  /// mode. Edge pixels are repeated outward for the filter, so edges do not darken. An absent
  /// image, or one whose pixels cannot be converted, draws nothing.
  void drawImage(const MCRect& rect, const MCRasterImageRef& image);

  /// CGBitmapContextCreateImage: a copy of what was drawn, in the context's layout and colour space.
  MCRasterImageRef createImage();
  /// The pixels in the context's layout, height × bytesPerRow bytes, brought up to date with
  /// what was drawn. Valid until the next drawing call.
  const uint8_t* data();

  /// Whether the drawing under way is in a flipped space (y down), as a flipped view's is. Images
  /// and text drawn "respecting the flip" read it to stay upright. The toolkit sets it for each
  /// view it draws; a new context is not flipped.
  bool isFlipped() const { return flipped_; }
  /// Says whether the drawing under way is in a flipped space.
  void setFlipped(bool flipped) { flipped_ = flipped; }

  /// The context views draw into at present on this thread, or none: the toolkit sets it for the
  /// length of a drawing pass, as the platform's current graphics context.
  static MCGraphicsContext* currentContext();
  /// Sets the current context of this thread (none ends the drawing pass).
  static void setCurrentContext(MCGraphicsContext* context);

  /// A Cairo image surface (32-bit premultiplied ARGB, sRGB) with the image's pixels, for drawing
  /// that goes to Cairo directly; none when the pixels cannot be converted. The caller destroys it.
  static cairo_surface_t* createSurfaceForImage(const MCRasterImage& image);

  /// The Cairo context, for drawing that this interface does not have (text with Pango). Its
  /// transform already holds the flip to the platform's coordinates; colours are the context's.
  /// In a recording context what is drawn here becomes part of a run of Cairo drawing.
  cairo_t* cairoContext() {
    runMayHaveInk_ = true;
    return cr_;
  }

  /// pango_cairo_show_layout at the current point, made with a Pango context of cairoContext().
  /// `glyphsOnly` says that the layout has no shapes of its own drawing (inline images): a
  /// recording context then hands it to its sink as text.
  void showLayout(PangoLayout* layout, bool glyphsOnly);

 private:
  struct State;
  MCGraphicsContext() = default;
  // The Cairo context over surface_, in the platform's coordinates, with the first state.
  bool startDrawing();
  void applySource(bool stroke);
  void applyOperator();
  void applyPath(const MCRect& rect, bool ellipse);
  /// For a recording context: whether an op can go to the sink now, and its clip there.
  bool sinkClip(MCDrawingClip& clip);
  /// Hands the sink the run of Cairo drawing so far, if it drew anything, and starts another.
  void flushRun();
  bool fillRectToSink(const MCRect& rect);

  std::size_t width_ = 0, height_ = 0, bytesPerRow_ = 0;
  MCPixelLayout layout_;
  std::shared_ptr<const MCColorSpace> colorSpace_;
  cairo_surface_t* surface_ = nullptr;
  cairo_t* cr_ = nullptr;
  std::vector<State> states_;
  std::vector<uint8_t> data_;
  bool flipped_ = false;
  MCDrawingSink* sink_ = nullptr;
  cairo_surface_t* run_ = nullptr;  // the recording surface the tee sends Cairo drawing to
  bool runMayHaveInk_ = false;
};

using MCGraphicsContextRef = std::shared_ptr<MCGraphicsContext>;
