#include <vesperon/platform/MCUserDefaults.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/core/MCValueJSON.h>
#include <vesperon/platform/MCApplicationDirectories.h>
#include <vesperon/platform/MCRegularFile.h>

#include <glib.h>

#include <atomic>
#include <fstream>
#include <string_view>
#include <unistd.h>

namespace {

nlohmann::json toJSON(const MCValue& value) {
  if (const MCData* data = value.data()) {
    gchar* text = g_base64_encode(data->data(), data->size());
    nlohmann::json tagged = {{"$data", text}};
    g_free(text);
    return tagged;
  }
  if (const MCArray* array = value.array()) {
    nlohmann::json out = nlohmann::json::array();
    for (const MCValue& element : *array) out.push_back(toJSON(element));
    return out;
  }
  if (const MCDictionary* dictionary = value.dictionary()) {
    nlohmann::json out = nlohmann::json::object();
    for (const auto& [key, element] : *dictionary) out[key] = toJSON(element);
    return out;
  }
  return MCValueToJSON(value);
}

// Parses nothing into memory; only counts how deep arrays and objects go, and stops the parse past
// the limit.
struct DepthLimit : nlohmann::json_sax<nlohmann::json> {
  explicit DepthLimit(int limit) : limit(limit) {}
  int limit;
  int depth = 0;
  bool tooDeep = false;

  bool enter() {
    if (++depth <= limit) return true;
    tooDeep = true;
    return false;
  }
  bool leave() {
    --depth;
    return true;
  }
  bool start_object(std::size_t) override { return enter(); }
  bool end_object() override { return leave(); }
  bool start_array(std::size_t) override { return enter(); }
  bool end_array() override { return leave(); }
  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }
  bool key(string_t&) override { return true; }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }
};

MCValue fromJSON(const nlohmann::json& json) {
  if (json.is_object() && json.size() == 1 && json.contains("$data") && json["$data"].is_string()) {
    gsize size = 0;
    guchar* bytes = g_base64_decode(json["$data"].get_ref<const std::string&>().c_str(), &size);
    MCData data(bytes, bytes + size);
    g_free(bytes);
    return data;
  }
  if (json.is_array()) {
    MCArray array;
    for (const auto& element : json) array.push_back(fromJSON(element));
    return array;
  }
  if (json.is_object()) {
    MCDictionary dictionary;
    for (const auto& [key, element] : json.items()) dictionary[key] = fromJSON(element);
    return dictionary;
  }
  return MCValueFromJSON(json);
}

}  // namespace

MCUserDefaults::MCUserDefaults(std::filesystem::path fileURL) : fileURL_(std::move(fileURL)) {}

std::filesystem::path MCUserDefaults::defaultFileURL() {
  return MCApplicationDirectories::configDirectory() / MCApplicationDirectories::applicationIdentifier() /
         "settings.json";
}

MCDictionary MCUserDefaults::dictionaryRepresentation() const {
  setAside_.reset();
  const MCRegularFile::Result file = MCRegularFile::read(fileURL_, kMaxFileSize);
  if (file.status == MCRegularFile::Status::Missing) return {};
  std::string reason = file.reason;
  if (file) {
    const std::string_view text(reinterpret_cast<const char*>(file.bytes.data()), file.bytes.size());
    // The depth is checked on a first pass that builds nothing, so a deep file never becomes a
    // deep tree for the recursive conversion below.
    DepthLimit limit(kMaxNestingDepth);
    if (!nlohmann::json::sax_parse(text, &limit)) {
      reason = limit.tooDeep ? "nests deeper than " + std::to_string(kMaxNestingDepth) + " levels" : "is not valid JSON";
    } else {
      const nlohmann::json json = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
      if (json.is_object()) {
        MCValue value = fromJSON(json);
        if (const MCDictionary* dictionary = value.dictionary()) return *dictionary;
      }
      reason = "holds no JSON object";
    }
  }
  // Kept aside, not lost: the next write would replace it.
  std::filesystem::path aside = fileURL_;
  aside += ".bak";
  std::error_code ec;
  std::filesystem::rename(fileURL_, aside, ec);
  setAside_ = SetAside{reason, ec ? std::filesystem::path() : aside};
  MCLog::sdkFileSystem()->logError("The settings file " + fileURL_.string() + " is not readable settings: it " +
                                   reason + (ec ? "; it could not be moved aside" : "; kept as " + aside.string()) +
                                   "; starting with no settings");
  return {};
}

std::optional<MCValue> MCUserDefaults::objectForKey(const std::string& key) const {
  const MCDictionary dictionary = dictionaryRepresentation();
  auto it = dictionary.find(key);
  if (it == dictionary.end()) return std::nullopt;
  return it->second;
}

bool MCUserDefaults::setObject(const MCValue& value, const std::string& key) {
  MCDictionary dictionary = dictionaryRepresentation();
  dictionary[key] = value;
  return write(dictionary);
}

bool MCUserDefaults::removeObjectForKey(const std::string& key) {
  MCDictionary dictionary = dictionaryRepresentation();
  if (dictionary.erase(key) == 0) return true;
  return write(dictionary);
}

bool MCUserDefaults::write(const MCDictionary& dictionary) {
  static std::atomic<unsigned> serial{0};
  std::error_code ec;
  std::filesystem::create_directories(fileURL_.parent_path(), ec);
  std::filesystem::path temporary = fileURL_;
  temporary += "." + std::to_string(::getpid()) + "." + std::to_string(serial++) + ".tmp";
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file << toJSON(MCValue(dictionary)).dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    file.flush();
    if (!file) {
      file.close();
      std::filesystem::remove(temporary, ec);
      MCLog::sdkFileSystem()->logError("Couldn't write the settings file " + fileURL_.string());
      return false;
    }
  }
  std::filesystem::rename(temporary, fileURL_, ec);
  if (ec) {
    std::filesystem::remove(temporary, ec);
    MCLog::sdkFileSystem()->logError("Couldn't write the settings file " + fileURL_.string());
    return false;
  }
  return true;
}
