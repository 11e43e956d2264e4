#pragma once
// MCSandboxURL: one remembered grant of access to a folder, with a signed count of the claims on
// it. The first claim starts access to the folder (startAccessingSecurityScopedResource) and the
// last release stops it; a release without a claim does nothing.
//
// What a claim holds depends on where the program runs: outside a sandbox there is nothing to
// hold and the count is the whole of it; inside a Flatpak sandbox the folder is reached through
// the document portal (MCBookmarkData). Not thread-safe; the sandbox helper owns its grants.

#include <vesperon/core/MCValue.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

class MCSandboxURL {
 public:
  /// A grant of `url`; none for none.
  static std::shared_ptr<MCSandboxURL> create(const std::optional<std::filesystem::path>& url);
  /// A grant of what the bookmark data resolves to; none for none or data that does not resolve,
  /// with the reason in `error` when it is given (empty for no data).
  static std::shared_ptr<MCSandboxURL> createWithBookmark(const MCData* bookmark, std::string* error = nullptr);
  /// createWithBookmark with the dictionary's "bookmark" data.
  static std::shared_ptr<MCSandboxURL> createWithDictionary(const MCDictionary& dictionary,
                                                            std::string* error = nullptr);

  /// A granted folder at `url`, not yet accessed.
  explicit MCSandboxURL(std::filesystem::path url) : securityScopedURL_(std::move(url)) {}

  /// The folder.
  const std::filesystem::path& securityScopedURL() const { return securityScopedURL_; }
  /// How many accesses are open.
  long securityScopedResourceRetainCount() const { return retainCount_; }

  /// Claims the resource; false, and the count stays 0, when the first claim cannot start access.
  bool retainSecurityScopedResource();
  /// Gives one claim back; the last one stops access. Below 1 nothing happens.
  void releaseSecurityScopedResource();

  /// {"path": text, "bookmark": data} for the settings store, or none when either is missing.
  std::optional<MCDictionary> dictionaryRepresentation() const;

 private:
  std::filesystem::path securityScopedURL_;
  long retainCount_ = 0;
};
