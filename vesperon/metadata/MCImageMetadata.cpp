#include <vesperon/metadata/MCImageMetadata.h>

#include <vesperon/metadata/MCDateExtensions.h>
#include <vesperon/metadata/MCExifUtils.h>
#include <vesperon/metadata/MCXMPPropertyMap.h>

#include <exempi/xmp.h>
#include <fmt/format.h>

#include <cctype>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string_view>

namespace {

XmpPtr handle(void* xmp) { return static_cast<XmpPtr>(xmp); }

void initialiseToolkit() {
  static std::once_flag once;
  std::call_once(once, [] {
    xmp_init();
    XmpStringPtr registered = xmp_string_new();
    for (const auto& [prefix, uri] : MCXMPPropertyMap::namespaces()) xmp_register_namespace(uri, prefix, registered);
    xmp_string_free(registered);
  });
}

// Owns an XmpStringPtr.
class XmpString {
 public:
  XmpString() : s_(xmp_string_new()) {}
  ~XmpString() { xmp_string_free(s_); }
  XmpString(const XmpString&) = delete;
  XmpString& operator=(const XmpString&) = delete;
  operator XmpStringPtr() const { return s_; }
  std::string str() const {
    const char* text = xmp_string_cstr(s_);
    return text ? std::string(text, xmp_string_len(s_)) : std::string();
  }

 private:
  XmpStringPtr s_;
};

// A cheap look over the packet before the XMP parser sees it: the parser recurses once per level of
// nesting, and a packet without rdf:RDF holds no XMP at all. Also refuses document type
// declarations, which XMP does not allow and which could only serve entity expansion.
bool isPlausiblePacket(std::string_view text, int maximumDepth) {
  int depth = 0;
  bool sawRDF = false;
  std::size_t i = 0;
  auto skipPast = [&](std::string_view end) {
    const std::size_t at = text.find(end, i);
    if (at == std::string_view::npos) return false;
    i = at + end.size();
    return true;
  };
  while ((i = text.find('<', i)) != std::string_view::npos) {
    const std::string_view rest = text.substr(i);
    if (rest.starts_with("<!--")) {
      if (!skipPast("-->")) return false;
    } else if (rest.starts_with("<![CDATA[")) {
      if (!skipPast("]]>")) return false;
    } else if (rest.starts_with("<?")) {
      if (!skipPast("?>")) return false;
    } else if (rest.starts_with("<!")) {
      return false;
    } else if (rest.starts_with("</")) {
      --depth;
      if (!skipPast(">")) return false;
    } else {
      // An element start: its name, then attributes up to the closing '>' outside quotes.
      std::size_t j = i + 1;
      while (j < text.size() && !std::strchr(" \t\r\n/>", text[j])) ++j;
      std::string_view name = text.substr(i + 1, j - i - 1);
      if (const auto colon = name.rfind(':'); colon != std::string_view::npos) name = name.substr(colon + 1);
      if (name == "RDF") sawRDF = true;
      char quote = 0;
      for (; j < text.size(); ++j) {
        const char c = text[j];
        if (quote) {
          if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
          quote = c;
        } else if (c == '>') {
          break;
        }
      }
      if (j >= text.size()) return false;
      if (text[j - 1] != '/' && ++depth > maximumDepth) return false;
      i = j + 1;
    }
  }
  return sawRDF;
}

MCImageMetadataType typeOfOptions(uint32_t options) {
  if (options & XMP_PROP_ARRAY_IS_ALTTEXT) return kMCImageMetadataTypeAlternateText;
  if (options & XMP_PROP_ARRAY_IS_ALT) return kMCImageMetadataTypeAlternateArray;
  if (options & XMP_PROP_ARRAY_IS_ORDERED) return kMCImageMetadataTypeArrayOrdered;
  if (options & XMP_PROP_VALUE_IS_ARRAY) return kMCImageMetadataTypeArrayUnordered;
  if (options & XMP_PROP_VALUE_IS_STRUCT) return kMCImageMetadataTypeStructure;
  return kMCImageMetadataTypeString;
}

std::string prefixOfNamespace(const std::string& uri) {
  XmpString prefix;
  if (!xmp_namespace_prefix(uri.c_str(), prefix)) return {};
  std::string text = prefix.str();
  if (!text.empty() && text.back() == ':') text.pop_back();
  return text;
}

std::string namespaceOfPrefix(const std::string& prefix) {
  XmpString uri;
  if (!xmp_prefix_namespace_uri(prefix.c_str(), uri)) return {};
  return uri.str();
}

// A node of the tree as the iterator hands it out, before it becomes an immutable tag.
struct Node {
  std::string path;
  std::string namespaceURI;
  std::string prefix;
  std::string name;
  MCImageMetadataType type = kMCImageMetadataTypeString;
  std::string value;
  std::string language;
  std::vector<std::unique_ptr<Node>> children;

  MCImageMetadataTag::Ptr freeze() const {
    MCImageMetadataTag::Value tagValue = value;
    if (type == kMCImageMetadataTypeStructure) {
      MCImageMetadataTag::Structure fields;
      for (const auto& child : children) fields.emplace(child->name, child->freeze());
      tagValue = std::move(fields);
    } else if (type != kMCImageMetadataTypeString) {
      MCImageMetadataTag::Array items;
      for (const auto& child : children) items.push_back(child->freeze());
      tagValue = std::move(items);
    }
    return std::make_shared<const MCImageMetadataTag>(namespaceURI, prefix, name, type, std::move(tagValue), language);
  }
};

// The last step of a path: "exif:Flash/exif:Mode" gives "exif:Mode", "dc:subject[2]" gives "[2]".
std::size_t lastStepStart(const std::string& path) {
  std::size_t slash = path.rfind('/');
  std::size_t bracket = path.rfind('[');
  std::size_t start = 0;
  if (slash != std::string::npos) start = slash + 1;
  if (bracket != std::string::npos && bracket >= start) start = bracket;
  return start;
}

void nameNode(Node& node) {
  const std::size_t start = lastStepStart(node.path);
  if (start < node.path.size() && node.path[start] == '[') return;  // an array item has no name
  std::string step = node.path.substr(start);
  if (const auto colon = step.find(':'); colon != std::string::npos) {
    node.prefix = step.substr(0, colon);
    node.name = step.substr(colon + 1);
    node.namespaceURI = namespaceOfPrefix(node.prefix);
  } else {
    node.name = step;
  }
}

// Reads the property at `path` in `uri` and everything under it.
MCImageMetadataTag::Ptr readTag(XmpPtr xmp, const std::string& uri, const std::string& path) {
  XmpString value;
  uint32_t options = 0;
  if (!xmp_get_property(xmp, uri.c_str(), path.c_str(), value, &options)) return nullptr;

  XmpIteratorPtr iterator = xmp_iterator_new(xmp, uri.c_str(), path.c_str(), XMP_ITER_OMITQUALIFIERS);
  if (!iterator) return nullptr;
  XmpString schema, nodePath, nodeValue;
  std::unique_ptr<Node> root;
  std::vector<Node*> stack;  // the nodes whose subtrees are still open
  uint32_t nodeOptions = 0;
  while (xmp_iterator_next(iterator, schema, nodePath, nodeValue, &nodeOptions)) {
    auto node = std::make_unique<Node>();
    node->path = nodePath.str();
    node->type = typeOfOptions(nodeOptions);
    if (node->type == kMCImageMetadataTypeString) node->value = nodeValue.str();
    nameNode(*node);
    if (node->namespaceURI.empty()) node->namespaceURI = schema.str();
    if (nodeOptions & XMP_PROP_HAS_LANG) {
      XmpString language;
      if (xmp_get_property(xmp, uri.c_str(), (node->path + "/?xml:lang").c_str(), language, nullptr)) {
        node->language = language.str();
      }
    }
    if (!root) {
      root = std::move(node);
      stack.push_back(root.get());
      continue;
    }
    const std::string parentPath = node->path.substr(0, lastStepStart(node->path));
    while (!stack.empty()) {
      std::string open = stack.back()->path;
      if (parentPath == open || parentPath == open + "/") break;
      stack.pop_back();
    }
    if (stack.empty()) break;  // not under the root: the subtree is done
    Node* raw = node.get();
    stack.back()->children.push_back(std::move(node));
    stack.push_back(raw);
  }
  xmp_iterator_free(iterator);
  return root ? root->freeze() : nullptr;
}

std::optional<std::string> scalarText(const MCValue& value) {
  if (const std::string* s = value.string()) return *s;
  if (value.isBool()) return std::string(*value.integerValue() ? "True" : "False");
  if (value.isInteger()) return std::to_string(*value.integerValue());
  if (value.isDouble()) return fmt::format("{}", *value.doubleValue());
  if (const MCExifRational* r = value.rational()) return fmt::format("{}/{}", r->value().s.numerator, r->value().s.denominator);
  if (const MCExifComment* c = value.comment()) return c->stringValue();
  return std::nullopt;
}

std::optional<std::string> dateText(const MCValue& value) {
  const std::string* text = value.string();
  if (!text) return std::nullopt;
  if (auto date = dateFromExifString(*text)) return xmpString(*date);
  // IIM dates are CCYYMMDD.
  if (text->size() == 8 && text->find_first_not_of("0123456789") == std::string::npos) {
    return text->substr(0, 4) + "-" + text->substr(4, 2) + "-" + text->substr(6, 2);
  }
  return *text;
}

// IIM "HHMMSS±HHMM" (or "HH:MM:SS" with a zone or none) as the time part of an XMP date,
// "HH:MM:SS±HH:MM"; none for anything else.
std::optional<std::string> xmpTimeOfIIMTime(const std::string& text) {
  std::string digits;
  std::size_t at = 0;
  for (; at < text.size() && digits.size() < 6; ++at) {
    if (std::isdigit(static_cast<unsigned char>(text[at]))) digits += text[at];
    else if (text[at] != ':') return std::nullopt;
  }
  if (digits.size() != 6) return std::nullopt;
  std::string out = digits.substr(0, 2) + ":" + digits.substr(2, 2) + ":" + digits.substr(4, 2);
  const std::string zone = text.substr(at);
  if (zone.empty()) return out;
  if (zone == "Z") return out + "Z";
  std::string zoneDigits;
  for (std::size_t i = 1; i < zone.size(); ++i)
    if (std::isdigit(static_cast<unsigned char>(zone[i]))) zoneDigits += zone[i];
    else if (zone[i] != ':') return std::nullopt;
  if ((zone[0] != '+' && zone[0] != '-') || zoneDigits.size() != 4) return std::nullopt;
  return out + zone[0] + zoneDigits.substr(0, 2) + ":" + zoneDigits.substr(2, 2);
}

std::optional<std::string> versionText(const MCValue& value) {
  if (const MCArray* parts = value.array()) {
    // Three parts are an Exif version ("0231"), two a FlashPix one ("0100").
    auto bytes = parts->size() == 3 ? MCExifUtils::dataWithExifVersionComponents(*parts)
                                    : MCExifUtils::dataWithFlashPixVersionComponents(*parts);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
  }
  if (const MCData* bytes = value.data()) return std::string(bytes->begin(), bytes->end());
  return scalarText(value);
}

std::optional<std::string> coordinateText(const MCValue& value, const MCXMPProperty& property) {
  if (value.isString()) return *value.string();
  auto degrees = value.doubleValue();
  if (!degrees || !std::isfinite(*degrees)) return std::nullopt;
  const bool latitude = std::string_view(property.name).find("Latitude") != std::string_view::npos;
  const char letter = latitude ? (*degrees < 0 ? 'S' : 'N') : (*degrees < 0 ? 'W' : 'E');
  const double magnitude = std::fabs(*degrees);
  const double whole = std::floor(magnitude);
  return fmt::format("{},{:.6f}{}", static_cast<int64_t>(whole), (magnitude - whole) * 60.0, letter);
}

}  // namespace

std::shared_ptr<MCImageMetadata> MCImageMetadata::createFromXMPData(const MCData& data) {
  if (data.empty()) return nullptr;
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  if (!isPlausiblePacket(text, kMaximumNestingDepth)) return nullptr;
  initialiseToolkit();
  XmpPtr xmp = xmp_new(text.data(), text.size());
  if (!xmp) return nullptr;
  return std::shared_ptr<MCImageMetadata>(new MCImageMetadata(xmp));
}

std::shared_ptr<MCImageMetadata> MCImageMetadata::createMutable() {
  initialiseToolkit();
  XmpPtr xmp = xmp_new_empty();
  if (!xmp) return nullptr;
  return std::shared_ptr<MCImageMetadata>(new MCImageMetadata(xmp));
}

MCImageMetadata::~MCImageMetadata() { xmp_free(handle(xmp_)); }

MCImageMetadataTag::Ptr MCImageMetadata::copyTagMatchingImageProperty(const std::string& dictionaryName,
                                                                      const std::string& propertyName) const {
  const MCXMPProperty* property = MCXMPPropertyMap::find(dictionaryName, propertyName);
  if (!property) return nullptr;
  return readTag(handle(xmp_), property->namespaceURI, property->name);
}

MCImageMetadataTag::Ptr MCImageMetadata::copyTagWithPath(const std::string& path) const {
  const auto colon = path.find(':');
  if (colon == std::string::npos || colon == 0) return nullptr;
  const std::string uri = namespaceOfPrefix(path.substr(0, colon));
  if (uri.empty()) return nullptr;
  return readTag(handle(xmp_), uri, path);
}

bool MCImageMetadata::setValueMatchingImageProperty(const std::string& dictionaryName, const std::string& propertyName,
                                                    const MCValue& value) {
  const MCXMPProperty* property = MCXMPPropertyMap::find(dictionaryName, propertyName);
  if (!property) return false;
  XmpPtr xmp = handle(xmp_);
  const char* uri = property->namespaceURI;
  const char* name = property->name;

  auto setSimple = [&](const std::optional<std::string>& text) {
    if (!text) return false;
    xmp_delete_property(xmp, uri, name);
    return xmp_set_property(xmp, uri, name, text->c_str(), 0);
  };
  auto setFields = [&](const std::vector<std::pair<std::string, std::string>>& fields) {
    if (fields.empty()) return false;
    xmp_delete_property(xmp, uri, name);
    const std::string fieldPrefix = prefixOfNamespace(uri);
    bool ok = true;
    for (const auto& [field, text] : fields) {
      const std::string fieldPath = std::string(name) + "/" + fieldPrefix + ":" + field;
      ok = xmp_set_property(xmp, uri, fieldPath.c_str(), text.c_str(), 0) && ok;
    }
    return ok;
  };
  auto dictionaryFields = [&](const MCDictionary& dictionary) {
    std::vector<std::pair<std::string, std::string>> fields;
    for (const auto& [field, fieldValue] : dictionary) {
      if (auto text = scalarText(fieldValue)) fields.emplace_back(field, *text);
    }
    return fields;
  };

  switch (property->form) {
    case MCXMPForm::Text:
      return setSimple(scalarText(value));
    case MCXMPForm::Date:
      return setSimple(dateText(value));
    case MCXMPForm::Version:
      return setSimple(versionText(value));
    case MCXMPForm::TimeOfDate: {
      // The day comes from the date key, written before (its key sorts first); without a day there
      // is no XMP date to hold the time.
      XmpString current;
      if (!xmp_get_property(xmp, uri, name, current, nullptr)) return false;
      const std::string date = current.str();
      const auto time = value.string() ? xmpTimeOfIIMTime(*value.string()) : std::nullopt;
      if (date.size() < 10 || !time) return false;
      return setSimple(date.substr(0, 10) + "T" + *time);
    }
    case MCXMPForm::GPSCoordinate:
      return setSimple(coordinateText(value, *property));
    case MCXMPForm::OrderedArray:
    case MCXMPForm::UnorderedArray: {
      std::vector<std::string> items;
      if (const MCArray* array = value.array()) {
        for (const MCValue& item : *array) {
          if (auto text = scalarText(item)) items.push_back(*text);
        }
      } else if (auto text = scalarText(value)) {
        items.push_back(*text);
      }
      if (items.empty()) return false;
      xmp_delete_property(xmp, uri, name);
      const uint32_t arrayOptions =
          XMP_PROP_VALUE_IS_ARRAY | (property->form == MCXMPForm::OrderedArray ? XMP_PROP_ARRAY_IS_ORDERED : 0);
      bool ok = true;
      for (const std::string& item : items) ok = xmp_append_array_item(xmp, uri, name, arrayOptions, item.c_str(), 0) && ok;
      return ok;
    }
    case MCXMPForm::AlternateText: {
      std::optional<std::string> text;
      if (const MCArray* array = value.array()) {
        if (!array->empty()) text = scalarText(array->front());
      } else {
        text = scalarText(value);
      }
      if (!text) return false;
      xmp_delete_property(xmp, uri, name);
      return xmp_set_localized_text(xmp, uri, name, "", "x-default", text->c_str(), 0);
    }
    case MCXMPForm::Structure:
      if (const MCDictionary* dictionary = value.dictionary()) return setFields(dictionaryFields(*dictionary));
      return false;
    case MCXMPForm::FlashStructure: {
      if (const MCDictionary* dictionary = value.dictionary()) return setFields(dictionaryFields(*dictionary));
      if (!value.isNumber()) return false;
      const int64_t flash = *value.integerValue();
      auto flag = [](bool on) { return std::string(on ? "True" : "False"); };
      return setFields({{"Fired", flag(flash & 0x01)},
                        {"Return", std::to_string((flash >> 1) & 3)},
                        {"Mode", std::to_string((flash >> 3) & 3)},
                        {"Function", flag(flash & 0x20)},
                        {"RedEyeMode", flag(flash & 0x40)}});
    }
  }
  return false;
}

std::optional<MCData> MCImageMetadata::createXMPData() const {
  XmpString packet;
  if (!xmp_serialize(handle(xmp_), packet, 0, 0)) return std::nullopt;
  const std::string text = packet.str();
  return MCData(text.begin(), text.end());
}
