#include <vesperon/platform/MCGraphicsContext.h>

#include <cairo-tee.h>
#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

struct MCGraphicsContext::State {
  double fill[4] = {0, 0, 0, 1};
  double stroke[4] = {0, 0, 0, 1};
  double alpha = 1;
  MCBlendMode blendMode = MCBlendMode::Normal;
  MCInterpolationQuality interpolation = MCInterpolationQuality::Default;
  // The clip as the context's own clipping calls made it, in device pixels, for the ops a
  // recording context hands its sink; unknown once a path of any other shape clipped.
  bool clipKnown = true;
  MCDrawingClip clip;
};

namespace {

constexpr std::size_t kMaximumSide = 32767;  // Cairo's limit for image surfaces

cairo_operator_t cairoOperator(MCBlendMode mode) {
  switch (mode) {
    case MCBlendMode::Normal: return CAIRO_OPERATOR_OVER;
    case MCBlendMode::Multiply: return CAIRO_OPERATOR_MULTIPLY;
    case MCBlendMode::Screen: return CAIRO_OPERATOR_SCREEN;
    case MCBlendMode::Overlay: return CAIRO_OPERATOR_OVERLAY;
    case MCBlendMode::Darken: return CAIRO_OPERATOR_DARKEN;
    case MCBlendMode::Lighten: return CAIRO_OPERATOR_LIGHTEN;
    case MCBlendMode::ColorDodge: return CAIRO_OPERATOR_COLOR_DODGE;
    case MCBlendMode::ColorBurn: return CAIRO_OPERATOR_COLOR_BURN;
    case MCBlendMode::SoftLight: return CAIRO_OPERATOR_SOFT_LIGHT;
    case MCBlendMode::HardLight: return CAIRO_OPERATOR_HARD_LIGHT;
    case MCBlendMode::Difference: return CAIRO_OPERATOR_DIFFERENCE;
    case MCBlendMode::Exclusion: return CAIRO_OPERATOR_EXCLUSION;
    case MCBlendMode::Hue: return CAIRO_OPERATOR_HSL_HUE;
    case MCBlendMode::Saturation: return CAIRO_OPERATOR_HSL_SATURATION;
    case MCBlendMode::Color: return CAIRO_OPERATOR_HSL_COLOR;
    case MCBlendMode::Luminosity: return CAIRO_OPERATOR_HSL_LUMINOSITY;
    case MCBlendMode::Clear: return CAIRO_OPERATOR_CLEAR;
    case MCBlendMode::Copy: return CAIRO_OPERATOR_SOURCE;
    case MCBlendMode::SourceIn: return CAIRO_OPERATOR_IN;
    case MCBlendMode::SourceOut: return CAIRO_OPERATOR_OUT;
    case MCBlendMode::SourceAtop: return CAIRO_OPERATOR_ATOP;
    case MCBlendMode::DestinationOver: return CAIRO_OPERATOR_DEST_OVER;
    case MCBlendMode::DestinationIn: return CAIRO_OPERATOR_DEST_IN;
    case MCBlendMode::DestinationOut: return CAIRO_OPERATOR_DEST_OUT;
    case MCBlendMode::DestinationAtop: return CAIRO_OPERATOR_DEST_ATOP;
    case MCBlendMode::XOR: return CAIRO_OPERATOR_XOR;
    case MCBlendMode::PlusDarker: return CAIRO_OPERATOR_SATURATE;  // no exact counterpart in Cairo
    case MCBlendMode::PlusLighter: return CAIRO_OPERATOR_ADD;
  }
  return CAIRO_OPERATOR_OVER;
}

cairo_filter_t cairoFilter(MCInterpolationQuality quality) {
  switch (quality) {
    case MCInterpolationQuality::None: return CAIRO_FILTER_NEAREST;
    case MCInterpolationQuality::Low: return CAIRO_FILTER_FAST;
    case MCInterpolationQuality::High: return CAIRO_FILTER_BEST;
    default: return CAIRO_FILTER_GOOD;
  }
}

// The Cairo surface as a pixel layout: native-endian 32-bit words, B, G, R, A in memory here.
MCPixelLayout surfaceLayout(bool alpha) {
  return {MCColorSpace::Model::RGB, 8, 32,
          (alpha ? MCImageAlphaPremultipliedFirst : MCImageAlphaNoneSkipFirst) | MCBitmapByteOrder32Little};
}

bool isGray(const MCColorSpace& space) { return space.model() == MCColorSpace::Model::Gray; }

// An image's pixels as a Cairo surface holding colours of `space`; a gray space spreads gray over
// the three channels. None when the pixels cannot be converted.
cairo_surface_t* createSourceSurface(const MCRasterImage& image, const MCColorSpace& space) {
  const int w = int(image.width()), h = int(image.height());
  // Pixels already in Cairo's own layout and the context's space are drawn where they lie: the
  // image is immutable and outlives the drawing call that uses the surface.
  if (image.bitsPerComponent() == 8 && image.bitsPerPixel() == 32 &&
      image.bitmapInfo() == (MCImageAlphaPremultipliedFirst | MCBitmapByteOrder32Little) &&
      image.bytesPerRow() % 4 == 0 && MCColorSpaceOfImage(image).get() == &space) {
    cairo_surface_t* borrowed = cairo_image_surface_create_for_data(
        const_cast<uint8_t*>(image.pixels().data()), CAIRO_FORMAT_ARGB32, w, h, int(image.bytesPerRow()));
    if (cairo_surface_status(borrowed) == CAIRO_STATUS_SUCCESS) return borrowed;
    cairo_surface_destroy(borrowed);
  }
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
  if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return nullptr;
  }
  cairo_surface_flush(surface);
  uint8_t* pixels = cairo_image_surface_get_data(surface);
  const std::size_t stride = std::size_t(cairo_image_surface_get_stride(surface));
  const auto imageSpace = MCColorSpaceOfImage(image);
  bool converted;
  if (!isGray(space)) {
    converted = MCConvertPixels(*imageSpace, MCPixelLayoutOfImage(image), image.pixels().data(), image.bytesPerRow(),
                                space, surfaceLayout(true), pixels, stride, image.width(), image.height());
  } else {
    // Gray with premultiplied alpha, two bytes a pixel, then spread into B, G, R, A in place,
    // from the right so that the wider pixels never overwrite what is still to be read.
    const MCPixelLayout grayAlpha{MCColorSpace::Model::Gray, 8, 16, MCImageAlphaPremultipliedLast};
    converted = MCConvertPixels(*imageSpace, MCPixelLayoutOfImage(image), image.pixels().data(), image.bytesPerRow(),
                                space, grayAlpha, pixels, stride, image.width(), image.height());
    if (converted) {
      for (int y = 0; y < h; ++y) {
        uint8_t* row = pixels + std::size_t(y) * stride;
        for (int x = w - 1; x >= 0; --x) {
          const uint8_t g = row[2 * x], a = row[2 * x + 1];
          uint8_t* p = row + 4 * x;
          p[0] = g; p[1] = g; p[2] = g; p[3] = a;
        }
      }
    }
  }
  if (!converted) {
    cairo_surface_destroy(surface);
    return nullptr;
  }
  cairo_surface_mark_dirty(surface);
  return surface;
}

}  // namespace

std::shared_ptr<MCGraphicsContext> MCGraphicsContext::create(std::size_t width, std::size_t height,
                                                             std::size_t bitsPerComponent, std::size_t bytesPerRow,
                                                             std::shared_ptr<const MCColorSpace> colorSpace,
                                                             uint32_t bitmapInfo) {
  if (width == 0 || height == 0 || width > kMaximumSide || height > kMaximumSide || !colorSpace) return nullptr;
  if (colorSpace->model() == MCColorSpace::Model::CMYK || !colorSpace->profile()) return nullptr;
  if (bitsPerComponent != 8 && bitsPerComponent != 16) return nullptr;
  MCPixelLayout layout;
  layout.model = colorSpace->model();
  layout.bitsPerComponent = bitsPerComponent;
  layout.bitmapInfo = bitmapInfo;
  const std::size_t components =
      std::size_t(colorSpace->numberOfComponents()) + ((bitmapInfo & MCBitmapAlphaInfoMask) != MCImageAlphaNone);
  layout.bitsPerPixel = components * bitsPerComponent;
  if (!layout.littleCMSFormat()) return nullptr;
  const std::size_t minimumRowBytes = width * layout.bytesPerPixel();
  if (bytesPerRow == 0) bytesPerRow = minimumRowBytes;
  if (bytesPerRow < minimumRowBytes) return nullptr;

  auto context = std::shared_ptr<MCGraphicsContext>(new MCGraphicsContext());
  context->width_ = width;
  context->height_ = height;
  context->bytesPerRow_ = bytesPerRow;
  context->layout_ = layout;
  context->colorSpace_ = std::move(colorSpace);
  context->surface_ = cairo_image_surface_create(layout.hasAlpha() ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24,
                                                 int(width), int(height));
  if (cairo_surface_status(context->surface_) != CAIRO_STATUS_SUCCESS) return nullptr;
  if (!context->startDrawing()) return nullptr;
  return context;
}

std::shared_ptr<MCGraphicsContext> MCGraphicsContext::createRecording(std::size_t width, std::size_t height,
                                                                      MCDrawingSink* sink) {
  if (!sink || width == 0 || height == 0 || width > kMaximumSide || height > kMaximumSide) return nullptr;
  auto context = std::shared_ptr<MCGraphicsContext>(new MCGraphicsContext());
  context->width_ = width;
  context->height_ = height;
  context->bytesPerRow_ = width * 4;
  context->layout_ = surfaceLayout(true);
  context->colorSpace_ = MCColorSpace::sRGB();
  // A tee sends all drawing to a recording surface of the whole bitmap, which gives the Cairo
  // context its extents and is otherwise unused, and to the run under way, which flushRun
  // swaps for a new one: so one Cairo context, with its saved states and clip, draws across runs.
  const cairo_rectangle_t extents = {0, 0, double(width), double(height)};
  cairo_surface_t* whole = cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &extents);
  context->surface_ = cairo_tee_surface_create(whole);
  cairo_surface_destroy(whole);
  if (cairo_surface_status(context->surface_) != CAIRO_STATUS_SUCCESS) return nullptr;
  context->run_ = cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &extents);
  cairo_tee_surface_add(context->surface_, context->run_);
  if (!context->startDrawing()) return nullptr;
  context->sink_ = sink;
  return context;
}

bool MCGraphicsContext::startDrawing() {
  cr_ = cairo_create(surface_);
  if (cairo_status(cr_) != CAIRO_STATUS_SUCCESS) return false;
  // Into the platform's coordinates: origin at the bottom left, y up.
  cairo_translate(cr_, 0, double(height_));
  cairo_scale(cr_, 1, -1);
  states_.emplace_back();
  states_.back().clip.rect = MCMakeRect(0, 0, double(width_), double(height_));
  return true;
}

namespace {

bool axisAligned(const cairo_matrix_t& m) { return m.xy == 0 && m.yx == 0; }

MCRect toDevice(const cairo_matrix_t& m, double x, double y, double w, double h) {
  double x0 = x, y0 = y, x1 = x + w, y1 = y + h;
  cairo_matrix_transform_point(&m, &x0, &y0);
  cairo_matrix_transform_point(&m, &x1, &y1);
  return MCMakeRect(std::min(x0, x1), std::min(y0, y1), std::fabs(x1 - x0), std::fabs(y1 - y0));
}

// Whether two device rectangles cover the same whole pixels, give or take one at each edge: Cairo
// answers clip extents rounded out to pixels.
bool samePixels(const MCRect& a, const MCRect& b) {
  if (MCIsEmptyRect(a) || MCIsEmptyRect(b)) return MCIsEmptyRect(a) && MCIsEmptyRect(b);
  return std::fabs(MCMinX(a) - MCMinX(b)) <= 1 && std::fabs(MCMinY(a) - MCMinY(b)) <= 1 &&
         std::fabs(MCMaxX(a) - MCMaxX(b)) <= 1 && std::fabs(MCMaxY(a) - MCMaxY(b)) <= 1;
}

MCRect clipBounds(const MCDrawingClip& clip) {
  return clip.radius > 0 ? MCIntersectionRect(clip.rect, clip.rounded) : clip.rect;
}

}  // namespace

bool MCGraphicsContext::sinkClip(MCDrawingClip& clip) {
  if (!sink_ || cairo_get_group_target(cr_) != surface_) return false;
  const State& state = states_.back();
  if (state.blendMode != MCBlendMode::Normal) return false;
  cairo_matrix_t m;
  cairo_get_matrix(cr_, &m);
  if (!axisAligned(m)) return false;
  double x1, y1, x2, y2;
  cairo_clip_extents(cr_, &x1, &y1, &x2, &y2);
  const MCRect extents = toDevice(m, x1, y1, x2 - x1, y2 - y1);
  // The clip this context made stands if Cairo's agrees with it; drawing that clipped Cairo
  // directly shows as a difference, and then only a clip Cairo can list as one rectangle does.
  if (state.clipKnown && samePixels(extents, clipBounds(state.clip))) {
    clip = state.clip;
    return true;
  }
  cairo_rectangle_list_t* list = cairo_copy_clip_rectangle_list(cr_);
  bool known = false;
  if (list->status == CAIRO_STATUS_SUCCESS && list->num_rectangles <= 1) {
    clip = MCDrawingClip{};
    if (list->num_rectangles == 1) {
      const cairo_rectangle_t& r = list->rectangles[0];
      clip.rect = toDevice(m, r.x, r.y, r.width, r.height);
    }
    known = true;
  }
  cairo_rectangle_list_destroy(list);
  return known;
}

void MCGraphicsContext::flushRun() {
  if (!runMayHaveInk_) return;
  runMayHaveInk_ = false;
  double x, y, w, h;
  cairo_recording_surface_ink_extents(run_, &x, &y, &w, &h);
  if (w <= 0 || h <= 0) return;
  sink_->drawRecording(run_, MCMakeRect(x, y, w, h));
  cairo_tee_surface_remove(surface_, run_);
  cairo_surface_destroy(run_);
  const cairo_rectangle_t extents = {0, 0, double(width_), double(height_)};
  run_ = cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &extents);
  cairo_tee_surface_add(surface_, run_);
}

void MCGraphicsContext::finishRecording() {
  if (sink_) flushRun();
}

namespace {
thread_local MCGraphicsContext* currentGraphicsContext = nullptr;
}

cairo_surface_t* MCGraphicsContext::createSurfaceForImage(const MCRasterImage& image) {
  return createSourceSurface(image, *MCColorSpace::sRGB());
}

MCGraphicsContext* MCGraphicsContext::currentContext() { return currentGraphicsContext; }
void MCGraphicsContext::setCurrentContext(MCGraphicsContext* context) { currentGraphicsContext = context; }

MCGraphicsContext::~MCGraphicsContext() {
  if (cr_) cairo_destroy(cr_);
  if (run_) cairo_surface_destroy(run_);
  if (surface_) cairo_surface_destroy(surface_);
}

void MCGraphicsContext::saveGState() {
  cairo_save(cr_);
  states_.push_back(states_.back());
}

void MCGraphicsContext::restoreGState() {
  if (states_.size() < 2) return;  // unbalanced: the platform ignores it too
  cairo_restore(cr_);
  states_.pop_back();
}

std::size_t MCGraphicsContext::gStateDepth() const { return states_.size() - 1; }

void MCGraphicsContext::restoreGStatesTo(std::size_t depth) {
  while (gStateDepth() > depth) restoreGState();
}

void MCGraphicsContext::translateCTM(double tx, double ty) { cairo_translate(cr_, tx, ty); }
void MCGraphicsContext::scaleCTM(double sx, double sy) { cairo_scale(cr_, sx, sy); }
void MCGraphicsContext::rotateCTM(double radians) { cairo_rotate(cr_, radians); }
void MCGraphicsContext::setBlendMode(MCBlendMode mode) { states_.back().blendMode = mode; }
void MCGraphicsContext::setInterpolationQuality(MCInterpolationQuality quality) { states_.back().interpolation = quality; }
void MCGraphicsContext::setAlpha(double alpha) { states_.back().alpha = std::clamp(alpha, 0.0, 1.0); }
void MCGraphicsContext::setShouldAntialias(bool antialias) {
  cairo_set_antialias(cr_, antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
}

namespace {
void storeColor(double* slot, bool grayContext, double r, double g, double b, double a) {
  if (grayContext) r = g = b = 0.2126 * r + 0.7152 * g + 0.0722 * b;
  slot[0] = r; slot[1] = g; slot[2] = b; slot[3] = a;
}
}  // namespace

void MCGraphicsContext::setRGBFillColor(double red, double green, double blue, double alpha) {
  storeColor(states_.back().fill, isGray(*colorSpace_), red, green, blue, alpha);
}
void MCGraphicsContext::setRGBStrokeColor(double red, double green, double blue, double alpha) {
  storeColor(states_.back().stroke, isGray(*colorSpace_), red, green, blue, alpha);
}
void MCGraphicsContext::setGrayFillColor(double gray, double alpha) { storeColor(states_.back().fill, false, gray, gray, gray, alpha); }
void MCGraphicsContext::setGrayStrokeColor(double gray, double alpha) { storeColor(states_.back().stroke, false, gray, gray, gray, alpha); }
void MCGraphicsContext::setLineWidth(double width) { cairo_set_line_width(cr_, width); }
void MCGraphicsContext::setLineCap(MCLineCap cap) {
  cairo_set_line_cap(cr_, cap == MCLineCap::Round ? CAIRO_LINE_CAP_ROUND
                          : cap == MCLineCap::Square ? CAIRO_LINE_CAP_SQUARE : CAIRO_LINE_CAP_BUTT);
}
void MCGraphicsContext::setLineJoin(MCLineJoin join) {
  cairo_set_line_join(cr_, join == MCLineJoin::Round ? CAIRO_LINE_JOIN_ROUND
                           : join == MCLineJoin::Bevel ? CAIRO_LINE_JOIN_BEVEL : CAIRO_LINE_JOIN_MITER);
}

void MCGraphicsContext::beginPath() { cairo_new_path(cr_); }
void MCGraphicsContext::moveToPoint(double x, double y) { cairo_move_to(cr_, x, y); }
void MCGraphicsContext::addLineToPoint(double x, double y) { cairo_line_to(cr_, x, y); }
void MCGraphicsContext::addCurveToPoint(double cp1x, double cp1y, double cp2x, double cp2y, double x, double y) {
  cairo_curve_to(cr_, cp1x, cp1y, cp2x, cp2y, x, y);
}
void MCGraphicsContext::addQuadCurveToPoint(double cpx, double cpy, double x, double y) {
  double x0 = x, y0 = y;
  if (cairo_has_current_point(cr_)) cairo_get_current_point(cr_, &x0, &y0);
  cairo_curve_to(cr_, x0 + 2.0 / 3.0 * (cpx - x0), y0 + 2.0 / 3.0 * (cpy - y0), x + 2.0 / 3.0 * (cpx - x),
                 y + 2.0 / 3.0 * (cpy - y), x, y);
}
void MCGraphicsContext::addArc(double x, double y, double radius, double startAngle, double endAngle, bool clockwise) {
  // In the y-up space angles grow counter-clockwise, the direction cairo_arc takes there.
  if (clockwise) cairo_arc_negative(cr_, x, y, radius, startAngle, endAngle);
  else cairo_arc(cr_, x, y, radius, startAngle, endAngle);
}
void MCGraphicsContext::addRect(const MCRect& rect) { applyPath(rect, false); }
void MCGraphicsContext::addEllipseInRect(const MCRect& rect) { applyPath(rect, true); }
void MCGraphicsContext::closePath() { cairo_close_path(cr_); }

void MCGraphicsContext::applyPath(const MCRect& rect, bool ellipse) {
  if (!ellipse) {
    cairo_rectangle(cr_, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    return;
  }
  if (rect.size.width <= 0 || rect.size.height <= 0) return;
  cairo_save(cr_);
  cairo_translate(cr_, MCMidX(rect), MCMidY(rect));
  cairo_scale(cr_, rect.size.width / 2, rect.size.height / 2);
  cairo_new_sub_path(cr_);
  cairo_arc(cr_, 0, 0, 1, 0, 2 * M_PI);
  cairo_close_path(cr_);
  cairo_restore(cr_);
}

void MCGraphicsContext::applyOperator() { cairo_set_operator(cr_, cairoOperator(states_.back().blendMode)); }

void MCGraphicsContext::applySource(bool stroke) {
  const State& state = states_.back();
  const double* c = stroke ? state.stroke : state.fill;
  cairo_set_source_rgba(cr_, c[0], c[1], c[2], c[3] * state.alpha);
  applyOperator();
}

void MCGraphicsContext::fillPath() {
  runMayHaveInk_ = true;
  applySource(false);
  cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
  cairo_fill(cr_);
}
void MCGraphicsContext::eoFillPath() {
  runMayHaveInk_ = true;
  applySource(false);
  cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_EVEN_ODD);
  cairo_fill(cr_);
  cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
}
void MCGraphicsContext::strokePath() {
  runMayHaveInk_ = true;
  applySource(true);
  cairo_stroke(cr_);
}
void MCGraphicsContext::clip() {
  cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
  cairo_clip(cr_);
  states_.back().clipKnown = false;
}
void MCGraphicsContext::clipToRect(const MCRect& rect) { clipToRoundedRect(rect, 0); }
void MCGraphicsContext::clipToRoundedRect(const MCRect& rect, double radius) {
  cairo_new_path(cr_);
  cairo_matrix_t m;
  cairo_get_matrix(cr_, &m);
  State& state = states_.back();
  if (radius <= 0 || rect.size.width <= 0 || rect.size.height <= 0) {
    addRect(rect);
  } else {
    // The corners of the rounded rectangles the library draws (CGContextAddRoundedRectangle).
    radius = std::min({radius, rect.size.width / 2, rect.size.height / 2});
    const double x0 = MCMinX(rect), y0 = MCMinY(rect), x1 = MCMaxX(rect), y1 = MCMaxY(rect);
    cairo_new_sub_path(cr_);
    cairo_arc(cr_, x1 - radius, y1 - radius, radius, 0, M_PI / 2);
    cairo_arc(cr_, x0 + radius, y1 - radius, radius, M_PI / 2, M_PI);
    cairo_arc(cr_, x0 + radius, y0 + radius, radius, M_PI, 3 * M_PI / 2);
    cairo_arc(cr_, x1 - radius, y0 + radius, radius, 3 * M_PI / 2, 2 * M_PI);
    cairo_close_path(cr_);
  }
  cairo_clip(cr_);
  if (!state.clipKnown) return;
  const MCRect device = toDevice(m, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
  const double deviceRadius = radius * std::fabs(m.xx);
  if (!axisAligned(m) || (radius > 0 && (state.clip.radius > 0 || std::fabs(m.xx) != std::fabs(m.yy)))) {
    state.clipKnown = false;  // a second rounded clip, or corners that are not round
    return;
  }
  if (radius > 0) {
    state.clip.rounded = device;
    state.clip.radius = deviceRadius;
  } else {
    state.clip.rect = MCIntersectionRect(state.clip.rect, device);
  }
}
bool MCGraphicsContext::fillRectToSink(const MCRect& rect) {
  MCDrawingClip clip;
  if (!sinkClip(clip)) return false;
  cairo_matrix_t m;
  cairo_get_matrix(cr_, &m);
  const MCRect device = MCIntersectionRect(toDevice(m, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height),
                                           clip.rect);
  const State& state = states_.back();
  if (MCIsEmptyRect(device) || state.fill[3] * state.alpha <= 0) return true;
  flushRun();
  if (sink_->fillRect(device, clip, state.fill[0], state.fill[1], state.fill[2], state.fill[3] * state.alpha))
    return true;
  runMayHaveInk_ = true;
  return false;
}

void MCGraphicsContext::fillRect(const MCRect& rect) {
  if (sink_ && fillRectToSink(rect)) return;
  runMayHaveInk_ = true;
  cairo_new_path(cr_);
  addRect(rect);
  fillPath();
}
void MCGraphicsContext::strokeRect(const MCRect& rect) {
  cairo_new_path(cr_);
  addRect(rect);
  strokePath();
}
void MCGraphicsContext::fillEllipseInRect(const MCRect& rect) {
  cairo_new_path(cr_);
  addEllipseInRect(rect);
  fillPath();
}
void MCGraphicsContext::strokeEllipseInRect(const MCRect& rect) {
  cairo_new_path(cr_);
  addEllipseInRect(rect);
  strokePath();
}
void MCGraphicsContext::clearRect(const MCRect& rect) {
  runMayHaveInk_ = true;
  cairo_save(cr_);
  cairo_new_path(cr_);
  addRect(rect);
  cairo_set_operator(cr_, CAIRO_OPERATOR_CLEAR);
  cairo_fill(cr_);
  cairo_restore(cr_);
}

void MCGraphicsContext::drawImage(const MCRect& rect, const MCRasterImageRef& image) {
  if (!image || rect.size.width == 0 || rect.size.height == 0) return;
  MCDrawingClip clip;
  if (sink_ && image->width() > 0 && image->height() > 0 && sinkClip(clip)) {
    if (MCIsEmptyRect(clipBounds(clip))) return;
    cairo_matrix_t m;
    cairo_get_matrix(cr_, &m);
    cairo_matrix_translate(&m, rect.origin.x, rect.origin.y + rect.size.height);
    cairo_matrix_scale(&m, rect.size.width / double(image->width()), -rect.size.height / double(image->height()));
    if (axisAligned(m) &&
        MCIsEmptyRect(MCIntersectionRect(clipBounds(clip), toDevice(m, 0, 0, double(image->width()), double(image->height())))))
      return;
    MCDrawingImageOp op;
    op.transform = {m.xx, m.yx, m.xy, m.yy, m.x0, m.y0};
    op.clip = clip;
    op.alpha = states_.back().alpha;
    op.nearest = states_.back().interpolation == MCInterpolationQuality::None;
    flushRun();
    if (sink_->drawImage(image, op)) return;
  }
  runMayHaveInk_ = true;
  cairo_surface_t* source = createSourceSurface(*image, *colorSpace_);
  if (!source) return;
  const State& state = states_.back();
  cairo_save(cr_);
  cairo_new_path(cr_);
  cairo_translate(cr_, rect.origin.x, rect.origin.y + rect.size.height);
  cairo_scale(cr_, rect.size.width / double(image->width()), -rect.size.height / double(image->height()));
  cairo_rectangle(cr_, 0, 0, double(image->width()), double(image->height()));
  cairo_clip(cr_);
  cairo_set_source_surface(cr_, source, 0, 0);
  cairo_pattern_t* pattern = cairo_get_source(cr_);
  cairo_pattern_set_filter(pattern, cairoFilter(state.interpolation));
  cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
  if (state.alpha < 1 && state.blendMode != MCBlendMode::Normal) {
    // Cairo blends a masked paint with what is there; the platform applies the alpha to the image
    // first and then the blend mode (copy replaces with the faded image).
    cairo_push_group(cr_);
    cairo_paint_with_alpha(cr_, state.alpha);
    cairo_pop_group_to_source(cr_);
    applyOperator();
    cairo_paint(cr_);
  } else {
    applyOperator();
    if (state.alpha < 1) cairo_paint_with_alpha(cr_, state.alpha);
    else cairo_paint(cr_);
  }
  cairo_restore(cr_);
  cairo_surface_destroy(source);
}

void MCGraphicsContext::showLayout(PangoLayout* layout, bool glyphsOnly) {
  MCDrawingClip clip;
  if (sink_ && glyphsOnly && sinkClip(clip)) {
    if (MCIsEmptyRect(clipBounds(clip))) return;
    cairo_matrix_t m;
    cairo_get_matrix(cr_, &m);
    if (m.xx > 0 && m.yy > 0) {
      double x = 0, y = 0;
      if (cairo_has_current_point(cr_)) cairo_get_current_point(cr_, &x, &y);
      cairo_user_to_device(cr_, &x, &y);
      MCDrawingTextOp op;
      op.transform = {m.xx, 0, 0, m.yy, x, y};
      op.clip = clip;
      flushRun();
      if (sink_->drawLayout(layout, op)) return;
    }
  }
  runMayHaveInk_ = true;
  pango_cairo_show_layout(cr_, layout);
}

const uint8_t* MCGraphicsContext::data() {
  if (sink_) return nullptr;
  cairo_surface_flush(surface_);
  const uint8_t* pixels = cairo_image_surface_get_data(surface_);
  const std::size_t stride = std::size_t(cairo_image_surface_get_stride(surface_));
  data_.assign(bytesPerRow_ * height_, 0);
  const MCPixelLayout from = surfaceLayout(layout_.hasAlpha());
  if (!isGray(*colorSpace_)) {
    MCConvertPixels(*colorSpace_, from, pixels, stride, *colorSpace_, layout_, data_.data(), bytesPerRow_, width_, height_);
  } else {
    // Take gray (the green channel; all three agree) and alpha, then lay them out.
    const MCPixelLayout grayAlpha{MCColorSpace::Model::Gray, 8, 16, MCImageAlphaPremultipliedLast};
    std::vector<uint8_t> gray(width_ * height_ * 2);
    for (std::size_t y = 0; y < height_; ++y) {
      const uint8_t* s = pixels + y * stride;
      uint8_t* d = gray.data() + y * width_ * 2;
      for (std::size_t x = 0; x < width_; ++x) {
        d[2 * x] = s[4 * x + 1];
        d[2 * x + 1] = layout_.hasAlpha() ? s[4 * x + 3] : 0xFF;
      }
    }
    MCConvertPixels(*colorSpace_, grayAlpha, gray.data(), width_ * 2, *colorSpace_, layout_, data_.data(),
                    bytesPerRow_, width_, height_);
  }
  return data_.data();
}

MCRasterImageRef MCGraphicsContext::createImage() {
  if (sink_) return nullptr;
  data();
  return MCRasterImage::create(width_, height_, layout_.bitsPerComponent, layout_.bitsPerPixel, bytesPerRow_,
                               colorSpace_, layout_.bitmapInfo, data_);
}
