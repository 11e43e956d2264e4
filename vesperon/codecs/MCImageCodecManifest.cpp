#include <vesperon/codecs/MCImageCodecManifest.h>

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace fs = std::filesystem;

namespace {

// The whole file, or none when it is not a regular file of bounded size. O_NONBLOCK keeps a FIFO
// put in its place from blocking the start-up of every program that loads codecs.
std::optional<std::string> readSmallRegularFile(const fs::path& url, uintmax_t limit) {
  int fd = ::open(url.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  struct stat st {};
  std::optional<std::string> text;
  if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && static_cast<uintmax_t>(st.st_size) <= limit) {
    std::string bytes(static_cast<size_t>(st.st_size), '\0');
    size_t done = 0;
    while (done < bytes.size()) {
      ssize_t n = ::read(fd, bytes.data() + done, bytes.size() - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    if (done == bytes.size()) text = std::move(bytes);
  }
  ::close(fd);
  return text;
}

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
  auto text = readSmallRegularFile(url, maximumFileSize);
  if (!text) return std::nullopt;
  // A flat object of strings, a number, a flag and lists of strings: depth is bounded by the shape
  // checks below, and the parser's own depth by the size limit above.
  try {
    auto object = nlohmann::json::parse(*text);
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
