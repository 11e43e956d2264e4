#include <vesperon/toolkit/MCAttributedString.h>

#include <vesperon/platform/MCGraphicsContext.h>

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kObjectReplacement = "\xEF\xBF\xBC";  // U+FFFC

void setFontOptions(PangoContext* context) {
  // Unhinted metrics: a width measured here is the width drawn at any scale.
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  pango_cairo_context_set_font_options(context, options);
  cairo_font_options_destroy(options);
}

void renderShape(cairo_t* cr, PangoAttrShape* attribute, gboolean doPath, gpointer) {
  auto* attachment = static_cast<const MCTextAttachment*>(attribute->data);
  if (doPath || !attachment || !attachment->image) return;
  cairo_surface_t* surface = MCGraphicsContext::createSurfaceForImage(*attachment->image);
  if (!surface) return;
  double x = 0, y = 0;
  cairo_get_current_point(cr, &x, &y);
  const PangoRectangle& r = attribute->logical_rect;
  const double left = x + double(r.x) / PANGO_SCALE, top = y + double(r.y) / PANGO_SCALE;
  const double width = double(r.width) / PANGO_SCALE, height = double(r.height) / PANGO_SCALE;
  cairo_save(cr);
  cairo_rectangle(cr, left, top, width, height);
  cairo_clip(cr);
  cairo_translate(cr, left, top);
  cairo_scale(cr, width / double(attachment->image->width()), height / double(attachment->image->height()));
  cairo_set_source_surface(cr, surface, 0, 0);
  cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
  cairo_paint(cr);
  cairo_restore(cr);
  cairo_surface_destroy(surface);
}

PangoContext* measuringContext() {
  // Pango's objects belong to one thread; each thread that measures keeps its own.
  thread_local PangoContext* context = [] {
    PangoContext* c = pango_font_map_create_context(pango_cairo_font_map_get_default());
    setFontOptions(c);
    return c;
  }();
  return context;
}

PangoFontDescription* fontDescription(const MCFont& font) {
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, font.family.c_str());
  pango_font_description_set_absolute_size(description, std::max(1.0, font.pointSize) * PANGO_SCALE);
  pango_font_description_set_weight(description, PangoWeight(std::clamp(font.weight, 100, 1000)));
  pango_font_description_set_style(description, font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  return description;
}

guint16 colorComponent(double value) { return guint16(std::lround(std::clamp(value, 0.0, 1.0) * 65535.0)); }

template <typename T>
void overlay(std::optional<T>& into, const std::optional<T>& from) {
  if (from) into = from;
}

MCTextAttributes merged(MCTextAttributes base, const MCTextAttributes& over) {
  overlay(base.font, over.font);
  overlay(base.foregroundColor, over.foregroundColor);
  overlay(base.baselineOffset, over.baselineOffset);
  overlay(base.underline, over.underline);
  if (over.attachment) base.attachment = over.attachment;
  overlay(base.paragraphSpacing, over.paragraphSpacing);
  overlay(base.firstLineHeadIndent, over.firstLineHeadIndent);
  overlay(base.headIndent, over.headIndent);
  return base;
}

}  // namespace

// MARK: MCFont

namespace {
PangoFontMetrics* metricsOf(const MCFont& font) {
  PangoFontDescription* description = fontDescription(font);
  PangoFontMetrics* metrics = pango_context_get_metrics(measuringContext(), description, nullptr);
  pango_font_description_free(description);
  return metrics;
}
}  // namespace

double MCFont::ascender() const {
  PangoFontMetrics* metrics = metricsOf(*this);
  const double value = double(pango_font_metrics_get_ascent(metrics)) / PANGO_SCALE;
  pango_font_metrics_unref(metrics);
  return value;
}

double MCFont::descender() const {
  PangoFontMetrics* metrics = metricsOf(*this);
  const double value = double(pango_font_metrics_get_descent(metrics)) / PANGO_SCALE;
  pango_font_metrics_unref(metrics);
  return value;
}

double MCFont::lineHeight() const {
  PangoFontMetrics* metrics = metricsOf(*this);
  const int height = pango_font_metrics_get_height(metrics);
  const double value = height > 0 ? double(height) / PANGO_SCALE
                                  : double(pango_font_metrics_get_ascent(metrics) +
                                           pango_font_metrics_get_descent(metrics)) / PANGO_SCALE;
  pango_font_metrics_unref(metrics);
  return value;
}

// MARK: MCAttributedString

MCAttributedString::MCAttributedString(std::string text, MCTextAttributes attributes) : text_(std::move(text)) {
  if (!text_.empty()) runs_.push_back({0, text_.size(), std::move(attributes)});
}

MCAttributedString MCAttributedString::attachmentString(std::shared_ptr<MCTextAttachment> attachment) {
  MCTextAttributes attributes;
  attributes.attachment = std::move(attachment);
  return MCAttributedString(kObjectReplacement, attributes);
}

void MCAttributedString::append(const MCAttributedString& other) {
  const std::size_t offset = text_.size();
  text_ += other.text_;
  for (const Run& run : other.runs_) runs_.push_back({run.start + offset, run.end + offset, run.attributes});
}

void MCAttributedString::appendString(const std::string& text, const MCTextAttributes& attributes) {
  append(MCAttributedString(text, attributes));
}

void MCAttributedString::addAttributes(const MCTextAttributes& attributes, std::size_t location, std::size_t length) {
  const std::size_t start = std::min(location, text_.size());
  const std::size_t end = std::min(text_.size(), start + std::min(length, text_.size() - start));
  if (start >= end) return;
  std::vector<Run> runs;
  for (const Run& run : runs_) {
    // Split the run at the range's edges; the middle part takes the new attributes.
    const std::size_t a = std::max(run.start, start), b = std::min(run.end, end);
    if (a >= b) {
      runs.push_back(run);
      continue;
    }
    if (run.start < a) runs.push_back({run.start, a, run.attributes});
    runs.push_back({a, b, merged(run.attributes, attributes)});
    if (b < run.end) runs.push_back({b, run.end, run.attributes});
  }
  runs_ = std::move(runs);
}

MCTextAttributes MCAttributedString::attributesAtIndex(std::size_t index) const {
  for (const Run& run : runs_)
    if (index >= run.start && index < run.end) return run.attributes;
  return {};
}

PangoLayout* MCAttributedString::makeLayout(PangoContext* context, double width, double height) const {
  PangoLayout* layout = pango_layout_new(context);
  pango_layout_set_text(layout, text_.c_str(), int(text_.size()));
  PangoAttrList* list = pango_attr_list_new();
  const MCFont defaultFont = MCFont::systemFontOfSize(13);
  for (const Run& run : runs_) {
    auto add = [&](PangoAttribute* attribute) {
      attribute->start_index = guint(run.start);
      attribute->end_index = guint(run.end);
      pango_attr_list_insert(list, attribute);
    };
    const MCFont font = run.attributes.font.value_or(defaultFont);
    PangoFontDescription* description = fontDescription(font);
    add(pango_attr_font_desc_new(description));
    pango_font_description_free(description);
    if (font.monospacedDigits) add(pango_attr_font_features_new("tnum"));
    const MCColor color = run.attributes.foregroundColor.value_or(MCColor::blackColor());
    add(pango_attr_foreground_new(colorComponent(color.redComponent()), colorComponent(color.greenComponent()),
                                  colorComponent(color.blueComponent())));
    add(pango_attr_foreground_alpha_new(std::max<guint16>(1, colorComponent(color.alphaComponent()))));
    if (run.attributes.baselineOffset)
      add(pango_attr_rise_new(int(std::lround(*run.attributes.baselineOffset * PANGO_SCALE))));
    if (run.attributes.underline && *run.attributes.underline) add(pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (const auto& attachment = run.attributes.attachment) {
      const MCRect b = attachment->bounds;
      PangoRectangle logical = {int(std::lround(b.origin.x * PANGO_SCALE)),
                                int(std::lround(-(b.origin.y + b.size.height) * PANGO_SCALE)),
                                int(std::lround(b.size.width * PANGO_SCALE)),
                                int(std::lround(b.size.height * PANGO_SCALE))};
      add(pango_attr_shape_new_with_data(&logical, &logical, attachment.get(), nullptr, nullptr));
    }
  }
  pango_layout_set_attributes(layout, list);
  pango_attr_list_unref(list);

  switch (alignment_) {
    case MCTextAlignment::Left: pango_layout_set_alignment(layout, PANGO_ALIGN_LEFT); break;
    case MCTextAlignment::Center: pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER); break;
    case MCTextAlignment::Right: pango_layout_set_alignment(layout, PANGO_ALIGN_RIGHT); break;
  }
  if (width > 0 && lineBreakMode_ != MCLineBreakMode::Clipping) {
    pango_layout_set_width(layout, int(width * PANGO_SCALE));
    switch (lineBreakMode_) {
      case MCLineBreakMode::WordWrapping:
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
        if (height > 0) pango_layout_set_height(layout, int(height * PANGO_SCALE));
        break;
      case MCLineBreakMode::TruncatingTail:
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_height(layout, -1);
        break;
      case MCLineBreakMode::TruncatingMiddle:
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_MIDDLE);
        pango_layout_set_height(layout, -1);
        break;
      case MCLineBreakMode::Clipping:
        break;
    }
  }
  return layout;
}

MCSize MCAttributedString::size() const {
  if (text_.empty()) return {0, 0};
  PangoLayout* layout = makeLayout(measuringContext(), 0, 0);
  PangoRectangle logical;
  pango_layout_get_extents(layout, nullptr, &logical);
  g_object_unref(layout);
  return {double(logical.width) / PANGO_SCALE, double(logical.height) / PANGO_SCALE};
}

MCRect MCAttributedString::boundingRectWithSize(MCSize size) const {
  if (text_.empty()) return {};
  PangoLayout* layout = makeLayout(measuringContext(), size.width, size.height);
  PangoRectangle logical;
  pango_layout_get_extents(layout, nullptr, &logical);
  g_object_unref(layout);
  return MCMakeRect(0, 0, std::ceil(double(logical.width) / PANGO_SCALE), std::ceil(double(logical.height) / PANGO_SCALE));
}

double MCAttributedString::baselineOffsetFromTop() const {
  if (text_.empty()) return 0;
  PangoLayout* layout = makeLayout(measuringContext(), 0, 0);
  const double baseline = double(pango_layout_get_baseline(layout)) / PANGO_SCALE;
  g_object_unref(layout);
  return baseline;
}

void MCAttributedString::drawAtPoint(MCPoint point, MCGraphicsContext& context) const {
  draw(MCMakeRect(point.x, point.y, 0, 0), false, context);
}

void MCAttributedString::drawInRect(const MCRect& rect, MCGraphicsContext& context) const {
  if (MCIsEmptyRect(rect)) return;
  draw(rect, true, context);
}

void MCAttributedString::draw(const MCRect& rect, bool constrained, MCGraphicsContext& graphics) const {
  if (text_.empty()) return;
  cairo_t* cr = graphics.cairoContext();
  PangoContext* context = pango_cairo_create_context(cr);
  setFontOptions(context);
  pango_cairo_context_set_shape_renderer(context, renderShape, nullptr, nullptr);
  PangoLayout* layout = makeLayout(context, constrained ? rect.size.width : 0, constrained ? rect.size.height : 0);
  PangoRectangle logical;
  pango_layout_get_extents(layout, nullptr, &logical);
  const double textHeight = double(logical.height) / PANGO_SCALE;
  const double textWidth = double(logical.width) / PANGO_SCALE;

  graphics.saveGState();
  if (constrained) graphics.clipToRect(rect);
  // Pango sets text downward from its top: in an unflipped space turn y around about the text.
  double x = rect.origin.x;
  if (constrained && lineBreakMode_ == MCLineBreakMode::Clipping) {
    if (alignment_ == MCTextAlignment::Center) x += (rect.size.width - textWidth) / 2;
    else if (alignment_ == MCTextAlignment::Right) x += rect.size.width - textWidth;
  }
  if (graphics.isFlipped()) {
    graphics.translateCTM(x, rect.origin.y);
  } else {
    const double top = constrained ? MCMaxY(rect) : rect.origin.y + textHeight;
    graphics.translateCTM(x, top);
    graphics.scaleCTM(1, -1);
  }
  cairo_move_to(cr, 0, 0);
  // Runs with an attachment are shapes that only Cairo draws.
  const bool glyphsOnly = std::none_of(runs_.begin(), runs_.end(), [](const Run& run) { return bool(run.attributes.attachment); });
  graphics.showLayout(layout, glyphsOnly);
  graphics.restoreGState();
  g_object_unref(layout);
  g_object_unref(context);
}
