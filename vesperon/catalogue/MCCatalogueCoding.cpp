#include <vesperon/catalogue/MCCatalogueCoding.h>

#include <nlohmann/json.hpp>

#include <cmath>

namespace mc_detail {
namespace {

using json = nlohmann::json;

const std::string kBytes = "\x01" "bytes", kRational = "\x01" "rational", kComment = "\x01" "comment",
                  kText = "\x01" "text", kReal = "\x01" "real";


std::string hex(const uint8_t* bytes, std::size_t size) {
  static const char digits[] = "0123456789abcdef";
  std::string out;
  out.reserve(size * 2);
  for (std::size_t i = 0; i < size; ++i) {
    out += digits[bytes[i] >> 4];
    out += digits[bytes[i] & 15];
  }
  return out;
}

std::optional<std::string> unhex(const std::string& text) {
  if (text.size() % 2) return std::nullopt;
  auto digit = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
  };
  std::string out;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int hi = digit(text[i]), lo = digit(text[i + 1]);
    if (hi < 0 || lo < 0) return std::nullopt;
    out += char(hi * 16 + lo);
  }
  return out;
}

json textJSON(const std::string& text) {
  if (MCCatalogueIsUTF8(text)) return text;
  return json::object({{kText, hex(reinterpret_cast<const uint8_t*>(text.data()), text.size())}});
}

json encode(const MCValue& value, int depth);

json encodeDictionary(const MCDictionary& dictionary, int depth) {
  json out = json::object();
  for (const auto& [key, value] : dictionary) {
    // A key that is not UTF-8 cannot be a JSON key; it is kept hex-escaped under the text tag.
    const std::string name = MCCatalogueIsUTF8(key) ? key : kText + hex(reinterpret_cast<const uint8_t*>(key.data()), key.size());
    out[name] = encode(value, depth + 1);
  }
  return out;
}

json encode(const MCValue& value, int depth) {
  if (depth > 64) return nullptr;  // deeper than any metadata nests
  return std::visit(
      [&](const auto& v) -> json {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::monostate>) return nullptr;
        else if constexpr (std::is_same_v<T, bool>) return v;
        else if constexpr (std::is_same_v<T, int64_t>) return v;
        else if constexpr (std::is_same_v<T, double>) {
          if (std::isfinite(v)) return v;
          return json::object({{kReal, std::isnan(v) ? "nan" : v > 0 ? "inf" : "-inf"}});
        } else if constexpr (std::is_same_v<T, std::string>) return textJSON(v);
        else if constexpr (std::is_same_v<T, MCValue::Data>) return json::object({{kBytes, hex(v.data(), v.size())}});
        else if constexpr (std::is_same_v<T, MCValue::Array>) {
          json out = json::array();
          for (const MCValue& item : v) out.push_back(encode(item, depth + 1));
          return out;
        } else if constexpr (std::is_same_v<T, MCValue::Dictionary>) return encodeDictionary(v, depth);
        else if constexpr (std::is_same_v<T, MCExifRational>) return json::object({{kRational, v.value().word}});
        else return json::object({{kComment, textJSON(v.stringValue())}});
      },
      value.storage());
}

std::optional<std::string> decodeText(const json& j) {
  if (j.is_string()) return j.get<std::string>();
  if (j.is_object() && j.size() == 1 && j.contains(kText) && j[kText].is_string()) return unhex(j[kText].get<std::string>());
  return std::nullopt;
}

MCValue decode(const json& j, int depth);

MCDictionary decodeDictionary(const json& j, int depth) {
  MCDictionary out;
  for (auto it = j.begin(); it != j.end(); ++it) {
    std::string key = it.key();
    if (key.rfind(kText, 0) == 0) key = unhex(key.substr(kText.size())).value_or(key);
    out[key] = decode(it.value(), depth + 1);
  }
  return out;
}

MCValue decode(const json& j, int depth) {
  if (depth > 64) return MCValue();
  switch (j.type()) {
    case json::value_t::boolean: return MCValue(j.get<bool>());
    case json::value_t::number_integer: return MCValue(j.get<int64_t>());
    case json::value_t::number_unsigned: return MCValue(int64_t(j.get<uint64_t>()));
    case json::value_t::number_float: return MCValue(j.get<double>());
    case json::value_t::string: return MCValue(j.get<std::string>());
    case json::value_t::array: {
      MCValue::Array items;
      for (const json& item : j) items.push_back(decode(item, depth + 1));
      return MCValue(std::move(items));
    }
    case json::value_t::object: {
      if (j.size() == 1) {
        const auto first = j.begin();
        const std::string& key = first.key();
        const json& inner = first.value();
        if (key == kText) {
          if (auto text = decodeText(j)) return MCValue(*text);
        } else if (key == kBytes && inner.is_string()) {
          if (auto bytes = unhex(inner.get<std::string>())) return MCValue(MCValue::Data(bytes->begin(), bytes->end()));
        } else if (key == kRational && inner.is_number_unsigned()) {
          exif_rational r;
          r.word = inner.get<uint64_t>();
          if (auto rational = MCExifRational::create(r)) return MCValue(*rational);
        } else if (key == kComment) {
          if (auto text = decodeText(inner)) return MCValue(MCExifComment(*text));
        } else if (key == kReal && inner.is_string()) {
          const std::string which = inner.get<std::string>();
          return MCValue(which == "nan" ? std::nan("") : which == "inf" ? HUGE_VAL : -HUGE_VAL);
        }
      }
      return MCValue(decodeDictionary(j, depth));
    }
    default: return MCValue();
  }
}

}  // namespace

bool MCCatalogueIsUTF8(const std::string& text) {
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t n = text.size();
  for (std::size_t i = 0; i < n;) {
    const unsigned char c = s[i];
    if (c < 0x80) { ++i; continue; }
    std::size_t length;
    uint32_t point;
    if ((c & 0xE0) == 0xC0) length = 2, point = c & 0x1F;
    else if ((c & 0xF0) == 0xE0) length = 3, point = c & 0x0F;
    else if ((c & 0xF8) == 0xF0) length = 4, point = c & 0x07;
    else return false;
    if (i + length > n) return false;
    for (std::size_t k = 1; k < length; ++k) {
      if ((s[i + k] & 0xC0) != 0x80) return false;
      point = (point << 6) | (s[i + k] & 0x3F);
    }
    // Overlong forms, surrogates and points past U+10FFFF are not UTF-8.
    if ((length == 2 && point < 0x80) || (length == 3 && point < 0x800) || (length == 4 && point < 0x10000) ||
        point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
      return false;
    i += length;
  }
  return true;
}

std::string MCCatalogueEncodeDictionary(const MCDictionary& dictionary) { return encodeDictionary(dictionary, 0).dump(); }

std::optional<MCDictionary> MCCatalogueDecodeDictionary(const std::string& text) {
  const json j = json::parse(text, nullptr, false);
  if (!j.is_object()) return std::nullopt;
  return decodeDictionary(j, 0);
}

}  // namespace mc_detail
