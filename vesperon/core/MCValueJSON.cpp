#include <vesperon/core/MCValueJSON.h>

nlohmann::json MCValueToJSON(const MCValue& value) {
  using json = nlohmann::json;
  return std::visit(
      [](const auto& v) -> json {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return nullptr;
        } else if constexpr (std::is_same_v<T, MCValue::Array>) {
          json out = json::array();
          for (const MCValue& e : v) out.push_back(MCValueToJSON(e));
          return out;
        } else if constexpr (std::is_same_v<T, MCValue::Dictionary>) {
          json out = json::object();
          for (const auto& [k, e] : v) out[k] = MCValueToJSON(e);
          return out;
        } else if constexpr (std::is_same_v<T, MCExifRational>) {
          return v.numberValue();
        } else if constexpr (std::is_same_v<T, MCExifComment>) {
          return v.stringValue();
        } else if constexpr (std::is_same_v<T, MCValue::Data>) {
          return json(v);
        } else {
          return v;
        }
      },
      value.storage());
}

MCValue MCValueFromJSON(const nlohmann::json& json) {
  switch (json.type()) {
    case nlohmann::json::value_t::boolean:
      return json.get<bool>();
    case nlohmann::json::value_t::number_integer:
      return json.get<int64_t>();
    case nlohmann::json::value_t::number_unsigned:
      return static_cast<int64_t>(json.get<uint64_t>());
    case nlohmann::json::value_t::number_float:
      return json.get<double>();
    case nlohmann::json::value_t::string:
      return json.get<std::string>();
    case nlohmann::json::value_t::array: {
      MCArray out;
      for (const auto& e : json) out.push_back(MCValueFromJSON(e));
      return out;
    }
    case nlohmann::json::value_t::object: {
      MCDictionary out;
      for (auto it = json.begin(); it != json.end(); ++it) out[it.key()] = MCValueFromJSON(it.value());
      return out;
    }
    default:
      return MCValue();
  }
}
