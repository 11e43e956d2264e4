#include <vesperon/files/MCSandboxURL.h>

#include <vesperon/files/MCURLExtensions.h>

std::shared_ptr<MCSandboxURL> MCSandboxURL::create(const std::optional<std::filesystem::path>& url) {
  if (!url || url->empty()) return nullptr;
  return std::make_shared<MCSandboxURL>(*url);
}

std::shared_ptr<MCSandboxURL> MCSandboxURL::createWithBookmark(const MCData* bookmark, std::string* error) {
  if (!bookmark) return nullptr;
  return create(URLWithSecurityScopedBookmark(bookmark, error));
}

std::shared_ptr<MCSandboxURL> MCSandboxURL::createWithDictionary(const MCDictionary& dictionary, std::string* error) {
  const MCValue* bookmark = MCDictionaryGet(dictionary, "bookmark");
  return createWithBookmark(bookmark ? bookmark->data() : nullptr, error);
}

bool MCSandboxURL::retainSecurityScopedResource() {
  if (retainCount_ == 0 && !startAccessingSecurityScopedResource(securityScopedURL_)) return false;
  ++retainCount_;
  return true;
}

void MCSandboxURL::releaseSecurityScopedResource() {
  if (retainCount_ < 1) return;
  if (--retainCount_ == 0) stopAccessingSecurityScopedResource(securityScopedURL_);
}

std::optional<MCDictionary> MCSandboxURL::dictionaryRepresentation() const {
  auto bookmark = securityScopedBookmark(securityScopedURL_);
  if (securityScopedURL_.empty() || !bookmark) return std::nullopt;
  return MCDictionary{{"path", securityScopedURL_.string()}, {"bookmark", std::move(*bookmark)}};
}
