#pragma once
// MCDocumentPortal: the freedesktop document portal ("org.freedesktop.portal.Documents"), which
// inside a Flatpak sandbox makes a file or folder the user chose reachable under a document id,
// for as long as the document is kept. Spoken to over D-Bus with GDBus, synchronously.
//
// `shared()` talks to the portal of the session bus; a portal on another bus (a test's own) is
// reached through the constructor. Calls block the calling thread for the time of one D-Bus call.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

typedef struct _GDBusConnection GDBusConnection;

class MCDocumentPortal {
 public:
  /// Whether this process runs inside a Flatpak sandbox ("/.flatpak-info" exists).
  static bool isSandboxed();

  /// The portal of the session bus, connected on first use.
  static MCDocumentPortal& shared();
  /// `shared()` inside a sandbox, none outside one: what bookmarks go through by default.
  static MCDocumentPortal* sandboxPortal() { return isSandboxed() ? &shared() : nullptr; }

  /// A portal reached over the bus at `busAddress` (a D-Bus address such as "unix:path=…").
  explicit MCDocumentPortal(const std::string& busAddress);
  ~MCDocumentPortal();
  MCDocumentPortal(const MCDocumentPortal&) = delete;
  MCDocumentPortal& operator=(const MCDocumentPortal&) = delete;

  /// Adds the item at `path` as a persistent document (reusing one made before for it) and gives
  /// its id, or none with the reason in `error`.
  std::optional<std::string> addDocument(const std::filesystem::path& path, std::string* error);
  /// Where the document is reachable now (the portal's mount point, the id, the item's name), or
  /// none with the reason in `error` — when the document was removed, for instance.
  std::optional<std::filesystem::path> pathOfDocument(const std::string& documentIdentifier, std::string* error);

 private:
  MCDocumentPortal();
  GDBusConnection* connection_ = nullptr;
  std::string connectError_;
};
