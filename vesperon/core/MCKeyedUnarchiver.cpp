#include <vesperon/core/MCKeyedUnarchiver.h>

#include <vesperon/core/MCKeyedArchiver.h>
#include <vesperon/core/MCLog.h>

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>

namespace {

using nlohmann::json;

// A well-formed CBOR document that is not an archive of ours.
struct ArchiveError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

MCValue decode(const json& j) {
  switch (j.type()) {
    case json::value_t::null:
      return MCValue();
    case json::value_t::boolean:
      return MCValue(j.get<bool>());
    case json::value_t::number_integer:
      return MCValue(j.get<int64_t>());
    case json::value_t::number_unsigned: {
      uint64_t u = j.get<uint64_t>();
      if (u > uint64_t(INT64_MAX)) throw ArchiveError("integer out of range");
      return MCValue(int64_t(u));
    }
    case json::value_t::number_float:
      return MCValue(j.get<double>());
    case json::value_t::string:
      return MCValue(j.get<std::string>());
    case json::value_t::array: {
      MCArray array;
      array.reserve(j.size());
      for (const auto& element : j) array.push_back(decode(element));
      return MCValue(std::move(array));
    }
    case json::value_t::object: {
      MCDictionary dictionary;
      for (const auto& [key, element] : j.items()) dictionary.emplace(key, decode(element));
      return MCValue(std::move(dictionary));
    }
    case json::value_t::binary: {
      const auto& bytes = j.get_binary();
      if (!bytes.has_subtype()) return MCValue(MCData(bytes.begin(), bytes.end()));
      if (bytes.subtype() == MCKeyedArchiver::rationalTag) {
        if (bytes.size() != 8) throw ArchiveError("a rational needs 8 bytes");
        auto word = [&](size_t at) {
          return uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8 |
                 uint32_t(bytes[at + 3]);
        };
        exif_rational value;
        value.u = {word(0), word(4)};
        auto rational = MCExifRational::create(value);
        if (!rational) throw ArchiveError("a rational with a zero denominator");
        return MCValue(*rational);
      }
      if (bytes.subtype() == MCKeyedArchiver::commentTag)
        return MCValue(MCExifComment(std::string(bytes.begin(), bytes.end())));
      throw ArchiveError("unknown tag " + std::to_string(bytes.subtype()));
    }
    default:
      throw ArchiveError("unsupported item");
  }
}

}  // namespace

std::optional<MCValue> MCKeyedUnarchiver::unarchivedRootObject(const MCData& data) {
  json archive;
  try {
    archive = json::from_cbor(data, true, true, json::cbor_tag_handler_t::store);
  } catch (const std::exception& e) {
    MCLog::sdkGeneric()->logError(fmt::format("Failed to decode root object: {}", e.what()));
    return std::nullopt;
  }
  try {
    if (!archive.is_object() || archive.value("$archiver", "") != "MCKeyedArchiver")
      throw ArchiveError("not a keyed archive");
    if (!archive.contains("$version") || archive["$version"] != 1) throw ArchiveError("unsupported archive version");
    if (!archive.contains("root")) throw ArchiveError("no root object");
    return decode(archive["root"]);
  } catch (const std::exception& e) {
    MCLog::sdkGeneric()->logError(fmt::format("Failed to decode root object, error: {}", e.what()));
    return std::nullopt;
  }
}
