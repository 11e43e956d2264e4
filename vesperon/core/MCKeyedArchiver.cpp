#include <vesperon/core/MCKeyedArchiver.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCValueJSON.h>

#include <nlohmann/json.hpp>

#include <exception>
#include <type_traits>

namespace {

using nlohmann::json;

json encode(const MCValue& value) {
  return std::visit(
      [](const auto& v) -> json {
        using V = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<V, std::monostate>) {
          return nullptr;
        } else if constexpr (std::is_same_v<V, MCData>) {
          return json::binary(v);
        } else if constexpr (std::is_same_v<V, MCArray>) {
          json array = json::array();
          for (const auto& element : v) array.push_back(encode(element));
          return array;
        } else if constexpr (std::is_same_v<V, MCDictionary>) {
          json object = json::object();
          for (const auto& [key, element] : v) object[key] = encode(element);
          return object;
        } else if constexpr (std::is_same_v<V, MCExifRational>) {
          uint32_t n = v.value().u.numerator, d = v.value().u.denominator;
          MCData bytes{uint8_t(n >> 24), uint8_t(n >> 16), uint8_t(n >> 8), uint8_t(n),
                       uint8_t(d >> 24), uint8_t(d >> 16), uint8_t(d >> 8), uint8_t(d)};
          return json::binary(std::move(bytes), MCKeyedArchiver::rationalTag);
        } else if constexpr (std::is_same_v<V, MCExifComment>) {
          const std::string& text = v.stringValue();
          return json::binary(MCData(text.begin(), text.end()), MCKeyedArchiver::commentTag);
        } else {
          return v;  // bool, int64_t, double, std::string
        }
      },
      value.storage());
}

}  // namespace

std::optional<MCData> MCKeyedArchiver::archivedRootObject(const MCValue& object) {
  try {
    json archive = json::object();
    archive["$archiver"] = "MCKeyedArchiver";
    archive["$version"] = 1;
    archive["root"] = encode(object);
    return json::to_cbor(archive);
  } catch (const std::exception& e) {
    std::string text = MCValueToJSON(object).dump(-1, ' ', false, json::error_handler_t::replace);
    MCLog::sdkGeneric()->logError(fmt::format("Failed to encode root object: {}", text));
    return std::nullopt;
  }
}
