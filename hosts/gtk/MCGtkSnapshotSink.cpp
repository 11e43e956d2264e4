#include "MCGtkSnapshotSink.h"

#include <gtk/gtk.h>

#include <cmath>

namespace {

graphene_rect_t grapheneRect(const MCRect& r) {
  return GRAPHENE_RECT_INIT(float(r.origin.x), float(r.origin.y), float(r.size.width), float(r.size.height));
}

}  // namespace

int MCGtkSnapshotSink::pushClip(const MCDrawingClip& clip, const MCRect& bounds) {
  int pushed = 0;
  if (!MCContainsRect(clip.rect, bounds)) {
    const graphene_rect_t r = grapheneRect(clip.rect);
    gtk_snapshot_push_clip(snapshot_, &r);
    ++pushed;
  }
  if (clip.radius > 0) {
    GskRoundedRect rounded;
    const graphene_size_t corner = GRAPHENE_SIZE_INIT(float(clip.radius), float(clip.radius));
    const graphene_rect_t r = grapheneRect(clip.rounded);
    gsk_rounded_rect_init(&rounded, &r, &corner, &corner, &corner, &corner);
    gtk_snapshot_push_rounded_clip(snapshot_, &rounded);
    ++pushed;
  }
  return pushed;
}

void MCGtkSnapshotSink::pop(int count) {
  while (count-- > 0) gtk_snapshot_pop(snapshot_);
}

void MCGtkSnapshotSink::drawRecording(cairo_surface_t* recording, const MCRect& inkExtents) {
  flushPendingFill();
  const graphene_rect_t bounds = grapheneRect(inkExtents);
  cairo_t* cr = gtk_snapshot_append_cairo(snapshot_, &bounds);
  // Cairo rasterises a recording it paints into an image as large as the paint's extents: without
  // this clip, the whole window for every run, however small its ink.
  cairo_rectangle(cr, inkExtents.origin.x, inkExtents.origin.y, inkExtents.size.width, inkExtents.size.height);
  cairo_clip(cr);
  cairo_set_source_surface(cr, recording, 0, 0);
  cairo_paint(cr);
  cairo_destroy(cr);
  ++counts_.cairo;
}

bool MCGtkSnapshotSink::fillRect(const MCRect& rect, const MCDrawingClip& clip, double red, double green, double blue,
                                 double alpha) {
  // A fill is held back until the next op: an opaque fill over all of it (a view's background
  // over the window's) means it need not be drawn at all.
  const bool opaqueCover = alpha >= 1 && clip.radius <= 0;
  if (pending_ && !(opaqueCover && MCContainsRect(rect, pending_->rect))) flushPendingFill();
  pending_ = PendingFill{rect, clip, {float(red), float(green), float(blue), float(alpha)}};
  return true;
}

void MCGtkSnapshotSink::flushPendingFill() {
  if (!pending_) return;
  const PendingFill fill = *pending_;
  pending_.reset();
  const int pushed = pushClip(fill.clip, fill.rect);
  const graphene_rect_t r = grapheneRect(fill.rect);
  gtk_snapshot_append_color(snapshot_, &fill.color, &r);
  pop(pushed);
  ++counts_.color;
}

bool MCGtkSnapshotSink::drawImage(const MCRasterImageRef& image, const MCDrawingImageOp& op) {
  const MCDeviceTransform& m = op.transform;
  if (op.nearest || m.xy != 0 || m.yx != 0) return false;
  const double w = m.xx * double(image->width()), h = m.yy * double(image->height());
  const MCRect target = MCMakeRect(std::min(m.x0, m.x0 + w), std::min(m.y0, m.y0 + h), std::fabs(w), std::fabs(h));
  if (cairoImages_) return drawImageWithCairo(image, op, target);
  GdkTexture* texture = textures_.textureForImage(image);
  if (!texture) return false;
  flushPendingFill();
  const int pushed = pushClip(op.clip, target);
  if (op.alpha < 1) gtk_snapshot_push_opacity(snapshot_, op.alpha);
  if (w > 0 && h > 0) {
    const graphene_rect_t r = grapheneRect(target);
    gtk_snapshot_append_texture(snapshot_, texture, &r);
  } else {
    drawMirrored(texture, target, w < 0, h < 0);
  }
  if (op.alpha < 1) gtk_snapshot_pop(snapshot_);
  pop(pushed);
  ++counts_.texture;
  return true;
}

bool MCGtkSnapshotSink::drawImageWithCairo(const MCRasterImageRef& image, const MCDrawingImageOp& op,
                                           const MCRect& target) {
  cairo_surface_t* surface = textures_.surfaceForImage(image);
  if (!surface) return false;
  flushPendingFill();
  const int pushed = pushClip(op.clip, target);
  const graphene_rect_t bounds = grapheneRect(target);
  cairo_t* cr = gtk_snapshot_append_cairo(snapshot_, &bounds);
  cairo_rectangle(cr, target.origin.x, target.origin.y, target.size.width, target.size.height);
  cairo_clip(cr);
  const cairo_matrix_t m = {op.transform.xx, op.transform.yx, op.transform.xy, op.transform.yy, op.transform.x0,
                            op.transform.y0};
  cairo_transform(cr, &m);
  cairo_set_source_surface(cr, surface, 0, 0);
  cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
  cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
  cairo_paint_with_alpha(cr, op.alpha);
  cairo_destroy(cr);
  pop(pushed);
  ++counts_.texture;
  return true;
}

void MCGtkSnapshotSink::drawMirrored(GdkTexture* texture, const MCRect& target, bool acrossX, bool acrossY) {
  const graphene_rect_t bounds = GRAPHENE_RECT_INIT(0, 0, float(target.size.width), float(target.size.height));
  gtk_snapshot_save(snapshot_);
  // A mirrored image is drawn upright and turned about its middle.
  graphene_point_t at = GRAPHENE_POINT_INIT(float(MCMidX(target)), float(MCMidY(target)));
  gtk_snapshot_translate(snapshot_, &at);
  gtk_snapshot_scale(snapshot_, acrossX ? -1.f : 1.f, acrossY ? -1.f : 1.f);
  at = GRAPHENE_POINT_INIT(float(-target.size.width / 2), float(-target.size.height / 2));
  gtk_snapshot_translate(snapshot_, &at);
  gtk_snapshot_append_texture(snapshot_, texture, &bounds);
  gtk_snapshot_restore(snapshot_);
}

bool MCGtkSnapshotSink::drawLayout(PangoLayout* layout, const MCDrawingTextOp& op) {
  flushPendingFill();
  const MCDeviceTransform& m = op.transform;
  PangoRectangle ink;
  pango_layout_get_pixel_extents(layout, &ink, nullptr);
  const MCRect bounds = MCMakeRect(m.x0 + ink.x * m.xx, m.y0 + ink.y * m.yy, ink.width * m.xx, ink.height * m.yy);
  const int pushed = pushClip(op.clip, bounds);
  gtk_snapshot_save(snapshot_);
  const graphene_point_t at = GRAPHENE_POINT_INIT(float(m.x0), float(m.y0));
  gtk_snapshot_translate(snapshot_, &at);
  gtk_snapshot_scale(snapshot_, float(m.xx), float(m.yy));
  const GdkRGBA color = {float(op.red), float(op.green), float(op.blue), float(op.alpha)};
  gtk_snapshot_append_layout(snapshot_, layout, &color);
  gtk_snapshot_restore(snapshot_);
  pop(pushed);
  ++counts_.text;
  return true;
}
