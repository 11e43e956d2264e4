#include <vesperon/pixels/MCUTType.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/platform/MCUniformTypeIdentifiers.h>

namespace {

std::mutex& containerMutex() {
  static std::mutex mutex;
  return mutex;
}

std::unordered_map<std::string, MCUTType::Ref>& container() {
  static std::unordered_map<std::string, MCUTType::Ref>* types = [] {
    auto* map = new std::unordered_map<std::string, MCUTType::Ref>();
    map->reserve(256);
    return map;
  }();
  return *types;
}

}  // namespace

MCUTType::MCUTType(std::string identifier)
    : typeIdentifier_(std::move(identifier)),
      typeDescription_(MCTypeCopyDescription(typeIdentifier_)),
      filenameExtensions_(MCTypeCopyAllFilenameExtensions(typeIdentifier_)),
      preferredFilenameExtension_(MCTypeCopyPreferredFilenameExtension(typeIdentifier_)) {}

std::unordered_map<std::string, MCUTType::Ref> MCUTType::typesContainer() {
  std::lock_guard lock(containerMutex());
  return container();
}

MCUTType::Ref MCUTType::typeWithIdentifier(const std::string& identifier) {
  // One lock over look-up and store, so that two threads never make two objects for one identifier.
  std::lock_guard lock(containerMutex());
  auto& types = container();
  if (auto it = types.find(identifier); it != types.end()) return it->second;
  auto type = std::make_shared<const MCUTType>(identifier);
  types.emplace(identifier, type);
  return type;
}

MCUTType::Ref MCUTType::typeForURL(const std::filesystem::path& url) {
  std::string error;
  auto identifier = MCTypeIdentifierForURL(url, &error);
  if (!identifier) {
    if (MCLog::writesToFile())
      MCLog::sdkFileSystem()->logToFile("Couldn't get type identifier for URL: {}\nError: {}", url.string(), error);
    return nullptr;
  }
  return typeWithIdentifier(*identifier);
}

MCUTType::Ref MCUTType::typeForExtension(const std::string& extension) {
  auto identifier = MCTypeCreatePreferredIdentifierForFilenameExtension(extension, kUTTypeData);
  return identifier ? typeWithIdentifier(*identifier) : nullptr;
}

std::set<std::string> MCUTType::allowedTypeIdentifiers() {
  std::set<std::string> identifiers;
  std::lock_guard lock(containerMutex());
  for (const auto& [identifier, type] : container())
    if (type->isAvailable()) identifiers.insert(identifier);
  return identifiers;
}

std::optional<std::string> MCUTType::preferredExtensionForIdentifier(const std::optional<std::string>& identifier) {
  if (!identifier) return std::nullopt;
  return typeWithIdentifier(*identifier)->preferredFilenameExtension();
}

bool MCUTType::comformsToType(const MCUTType& type) const { return comformsToIdentifier(type.typeIdentifier()); }

bool MCUTType::comformsToIdentifier(const std::string& identifier) const {
  return MCTypeConformsTo(typeIdentifier_, identifier);
}

std::string MCUTType::description() const {
  std::string text = typeDescription_ ? *typeDescription_ : typeIdentifier_;
  if (!filenameExtensions_.empty()) {
    text += " (";
    for (std::size_t i = 0; i < filenameExtensions_.size(); ++i) text += (i ? ", " : "") + filenameExtensions_[i];
    text += ")";
  }
  return text;
}

bool operator==(const MCUTType& a, const MCUTType& b) {
  return &a == &b || MCTypeEqual(a.typeIdentifier_, b.typeIdentifier_);
}
