#pragma once
// A drawing sink that paints each op with Cairo into an image of its own, in the order it gets
// them, and remembers their kinds: so a recording context's output can be compared pixel by pixel
// with what a bitmap context draws, and its split into ops checked.
#include <vesperon/platform/MCDrawingSink.h>
#include <vesperon/platform/MCGraphicsContext.h>

#include <cairo.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <string>

class ReplayingSink : public MCDrawingSink {
 public:
  ReplayingSink(int width, int height) : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)) {}
  ~ReplayingSink() override { cairo_surface_destroy(surface_); }

  /// One letter per op: c(airo), r(ectangle), i(mage), t(ext).
  std::string ops;

  void drawRecording(cairo_surface_t* recording, const MCRect& ink) override {
    ops += 'c';
    cairo_t* cr = cairo_create(surface_);
    cairo_rectangle(cr, ink.origin.x, ink.origin.y, ink.size.width, ink.size.height);
    cairo_clip(cr);
    cairo_set_source_surface(cr, recording, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
  }
  bool fillRect(const MCRect& rect, const MCDrawingClip& clip, double r, double g, double b, double a) override {
    ops += 'r';
    cairo_t* cr = clipped(clip);
    cairo_rectangle(cr, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_set_source_rgba(cr, r, g, b, a);
    cairo_fill(cr);
    cairo_destroy(cr);
    return true;
  }
  bool drawImage(const MCRasterImageRef& image, const MCDrawingImageOp& op) override {
    ops += 'i';
    cairo_surface_t* source = MCGraphicsContext::createSurfaceForImage(*image);
    if (!source) return false;
    cairo_t* cr = clipped(op.clip);
    const cairo_matrix_t m = {op.transform.xx, op.transform.yx, op.transform.xy, op.transform.yy, op.transform.x0,
                              op.transform.y0};
    cairo_transform(cr, &m);
    cairo_rectangle(cr, 0, 0, double(image->width()), double(image->height()));
    cairo_clip(cr);
    cairo_set_source_surface(cr, source, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_paint_with_alpha(cr, op.alpha);
    cairo_destroy(cr);
    cairo_surface_destroy(source);
    return true;
  }
  bool drawLayout(PangoLayout* layout, const MCDrawingTextOp& op) override {
    ops += 't';
    cairo_t* cr = clipped(op.clip);
    cairo_translate(cr, op.transform.x0, op.transform.y0);
    cairo_scale(cr, op.transform.xx, op.transform.yy);
    cairo_set_source_rgba(cr, op.red, op.green, op.blue, op.alpha);
    pango_cairo_show_layout(cr, layout);
    cairo_destroy(cr);
    return true;
  }

  /// The largest difference of one channel between the replayed pixels and `data` (the same size,
  /// in Cairo's ARGB32 layout), and how many pixels differ by more than `tolerance`.
  int compare(const uint8_t* data, std::size_t bytesPerRow, int tolerance, int& pixelsOff) const {
    cairo_surface_flush(surface_);
    const int w = cairo_image_surface_get_width(surface_), h = cairo_image_surface_get_height(surface_);
    const uint8_t* ours = cairo_image_surface_get_data(surface_);
    const int stride = cairo_image_surface_get_stride(surface_);
    int largest = 0;
    pixelsOff = 0;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        int worst = 0;
        for (int c = 0; c < 4; ++c)
          worst = std::max(worst, std::abs(int(ours[y * stride + 4 * x + c]) - int(data[y * bytesPerRow + 4 * x + c])));
        largest = std::max(largest, worst);
        if (worst > tolerance) ++pixelsOff;
      }
    return largest;
  }

 private:
  cairo_t* clipped(const MCDrawingClip& clip) {
    cairo_t* cr = cairo_create(surface_);
    cairo_rectangle(cr, clip.rect.origin.x, clip.rect.origin.y, clip.rect.size.width, clip.rect.size.height);
    cairo_clip(cr);
    if (clip.radius > 0) {
      const MCRect& r = clip.rounded;
      const double k = clip.radius;
      cairo_new_sub_path(cr);
      cairo_arc(cr, MCMaxX(r) - k, MCMinY(r) + k, k, -M_PI / 2, 0);
      cairo_arc(cr, MCMaxX(r) - k, MCMaxY(r) - k, k, 0, M_PI / 2);
      cairo_arc(cr, MCMinX(r) + k, MCMaxY(r) - k, k, M_PI / 2, M_PI);
      cairo_arc(cr, MCMinX(r) + k, MCMinY(r) + k, k, M_PI, 3 * M_PI / 2);
      cairo_close_path(cr);
      cairo_clip(cr);
    }
    return cr;
  }

  cairo_surface_t* surface_;
};
