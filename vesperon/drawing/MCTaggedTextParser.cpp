#include <vesperon/drawing/MCTaggedTextParser.h>

#include <libxml/parser.h>

#include <cmath>
#include <cstring>

namespace {

MCColor colorWithHSB(double hue, double saturation, double brightness) {
  const double h = std::fmod(hue, 1.0) * 6, c = brightness * saturation, x = c * (1 - std::fabs(std::fmod(h, 2) - 1));
  const double m = brightness - c;
  double r = 0, g = 0, b = 0;
  if (h < 1) r = c, g = x;
  else if (h < 2) r = x, g = c;
  else if (h < 3) g = c, b = x;
  else if (h < 4) g = x, b = c;
  else if (h < 5) r = x, b = c;
  else r = c, b = x;
  return {r + m, g + m, b + m, 1};
}

bool endsInBreak(const std::string& name) {
  return name == "h1" || name == "h2" || name == "li" || name == "lli" || name == "br";
}

}  // namespace

MCTaggedTextParser::StyleMap MCTaggedTextParser::defaultStyleMap() {
  StyleMap map;
  MCTextAttributes h1;
  h1.font = MCFont::systemFontOfSize(17);
  h1.foregroundColor = MCColor::labelColor();
  h1.paragraphSpacing = 16;
  map["h1"] = h1;
  MCTextAttributes h2 = h1;
  h2.font = MCFont::systemFontOfSize(13);
  map["h2"] = h2;
  MCTextAttributes li = h2;
  li.paragraphSpacing = 8;
  map["li"] = li;
  MCTextAttributes lli = li;
  lli.firstLineHeadIndent = 24;
  lli.headIndent = 24;
  lli.foregroundColor = MCColor::secondaryLabelColor();
  map["lli"] = lli;
  MCTextAttributes em;
  em.foregroundColor = colorWithHSB(0.5888888888888889, 0.5, 1);
  map["em"] = em;
  return map;
}

void MCTaggedTextParser::didStartElement(const std::string& name) {
  MCTextAttributes attributes = attributesStack_.empty() ? MCTextAttributes{} : attributesStack_.back();
  if (auto it = styleMap_.find(name); it != styleMap_.end()) {
    const MCTextAttributes& style = it->second;
    if (style.font) attributes.font = style.font;
    if (style.foregroundColor) attributes.foregroundColor = style.foregroundColor;
    if (style.baselineOffset) attributes.baselineOffset = style.baselineOffset;
    if (style.underline) attributes.underline = style.underline;
    if (style.attachment) attributes.attachment = style.attachment;
    if (style.paragraphSpacing) attributes.paragraphSpacing = style.paragraphSpacing;
    if (style.firstLineHeadIndent) attributes.firstLineHeadIndent = style.firstLineHeadIndent;
    if (style.headIndent) attributes.headIndent = style.headIndent;
  }
  // Bold and italic change the inherited font; without one there is nothing to change.
  if (name == "b" && attributes.font) attributes.font->weight = 700;
  if (name == "i" && attributes.font) attributes.font->italic = true;
  attributesStack_.push_back(std::move(attributes));
}

void MCTaggedTextParser::foundCharacters(const std::string& text) {
  std::size_t start = 0, end = text.size();
  while (start < end && (text[start] == '\n' || text[start] == '\r')) ++start;
  while (end > start && (text[end - 1] == '\n' || text[end - 1] == '\r')) --end;
  if (start == end) return;
  attributedString_.appendString(text.substr(start, end - start),
                                 attributesStack_.empty() ? MCTextAttributes{} : attributesStack_.back());
}

void MCTaggedTextParser::didEndElement(const std::string& name) {
  if (endsInBreak(name))
    attributedString_.appendString("\n", attributesStack_.empty() ? MCTextAttributes{} : attributesStack_.back());
  if (!attributesStack_.empty()) attributesStack_.pop_back();
}

MCAttributedString MCTaggedTextParser::parse(const std::function<int(void*, void*)>& run) {
  attributedString_ = MCAttributedString();
  attributesStack_.clear();
  xmlSAXHandler handler;
  std::memset(&handler, 0, sizeof handler);
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int, const xmlChar**, int,
                              int, const xmlChar**) {
    static_cast<MCTaggedTextParser*>(self)->didStartElement(reinterpret_cast<const char*>(name));
  };
  handler.endElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*) {
    static_cast<MCTaggedTextParser*>(self)->didEndElement(reinterpret_cast<const char*>(name));
  };
  handler.characters = [](void* self, const xmlChar* text, int length) {
    static_cast<MCTaggedTextParser*>(self)->foundCharacters(std::string(reinterpret_cast<const char*>(text), std::size_t(length)));
  };
  // Errors end the parse with a failure; they are not printed.
  handler.serror = [](void*, xmlError*) {};
  const int status = run(&handler, this);
  MCAttributedString result = status == 0 ? attributedString_ : MCAttributedString();
  attributedString_ = MCAttributedString();
  attributesStack_.clear();
  return result;
}

MCAttributedString MCTaggedTextParser::attributedStringFromURL(const std::filesystem::path& url) {
  return parse([&](void* handler, void* self) {
    return xmlSAXUserParseFile(static_cast<xmlSAXHandler*>(handler), self, url.c_str());
  });
}

MCAttributedString MCTaggedTextParser::attributedStringFromData(const std::string& document) {
  return parse([&](void* handler, void* self) {
    return xmlSAXUserParseMemory(static_cast<xmlSAXHandler*>(handler), self, document.data(), int(document.size()));
  });
}
