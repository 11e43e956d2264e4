#include <vesperon/codecs/MCImageCodecManifest.h>

#include <vesperon/platform/MCRegularFile.h>

#include <nlohmann/json.hpp>

#include <string>

namespace fs = std::filesystem;

namespace {

std::vector<std::string> stringList(const nlohmann::json& object, const char* key) {
  std::vector<std::string> list;
  auto it = object.find(key);
  if (it == object.end()) return list;
  for (const auto& item : it->get_ref<const nlohmann::json::array_t&>()) list.push_back(item.get<std::string>());
  return list;
}

}  // namespace

MCImageCodecManifest MCImageCodecManifest::describing(const MCImageCodec& codec) {
  MCImageCodecManifest manifest;
  manifest.identifier = codec.extensionIdentifier();
  manifest.displayName = codec.extensionDisplayName();
  manifest.description = codec.extensionDescription();
  manifest.priority = codec.defaultPriority();
  manifest.sourceImageTypes = codec.sourceImageTypes();
  manifest.sourceVideoTypes = codec.sourceVideoTypes();
  manifest.destinationImageTypes = codec.destinationImageTypes();
  manifest.destinationVideoTypes = codec.destinationVideoTypes();
  manifest.alwaysAvailableAsSource = codec.isAlwaysAvailableAsSource();
  return manifest;
}

fs::path MCImageCodecManifest::urlForPlugInAtURL(const fs::path& plugIn) {
  fs::path url = plugIn;
  url += ".json";
  return url;
}

std::optional<MCImageCodecManifest> MCImageCodecManifest::read(const fs::path& url) {
  const auto file = MCRegularFile::read(url, maximumFileSize);
  if (!file) return std::nullopt;
  // A flat object of strings, a number, a flag and lists of strings: depth is bounded by the shape
  // checks below, and the parser's own depth by the size limit above.
  try {
    auto object = nlohmann::json::parse(file.bytes.begin(), file.bytes.end());
    if (!object.is_object()) return std::nullopt;
    MCImageCodecManifest manifest;
    manifest.abiVersion = object.at("abiVersion").get<uint32_t>();
    manifest.identifier = object.at("identifier").get<std::string>();
    manifest.displayName = object.at("displayName").get<std::string>();
    manifest.description = object.value("description", std::string());
    manifest.priority = object.at("priority").get<double>();
    manifest.sourceImageTypes = stringList(object, "sourceImageTypes");
    manifest.sourceVideoTypes = stringList(object, "sourceVideoTypes");
    manifest.destinationImageTypes = stringList(object, "destinationImageTypes");
    manifest.destinationVideoTypes = stringList(object, "destinationVideoTypes");
    manifest.alwaysAvailableAsSource = object.value("alwaysAvailableAsSource", false);
    if (manifest.identifier.empty()) return std::nullopt;
    return manifest;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::string MCImageCodecManifest::json() const {
  nlohmann::ordered_json object;
  object["abiVersion"] = abiVersion;
  object["identifier"] = identifier;
  object["displayName"] = displayName;
  object["description"] = description;
  object["priority"] = priority;
  object["sourceImageTypes"] = sourceImageTypes;
  object["sourceVideoTypes"] = sourceVideoTypes;
  object["destinationImageTypes"] = destinationImageTypes;
  object["destinationVideoTypes"] = destinationVideoTypes;
  object["alwaysAvailableAsSource"] = alwaysAvailableAsSource;
  return object.dump(2) + "\n";
}
