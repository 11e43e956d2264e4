#include <vesperon/files/MCDocumentPortal.h>

#include <gio/gio.h>
#include <gio/gunixfdlist.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr const char* kName = "org.freedesktop.portal.Documents";
constexpr const char* kPath = "/org/freedesktop/portal/documents";
constexpr const char* kInterface = "org.freedesktop.portal.Documents";
constexpr int kTimeoutMs = 10'000;

std::string takeMessage(GError* error) {
  std::string message = error && error->message ? error->message : "unknown D-Bus failure";
  if (error) g_error_free(error);
  return message;
}

}  // namespace

bool MCDocumentPortal::isSandboxed() { return ::access("/.flatpak-info", F_OK) == 0; }

MCDocumentPortal& MCDocumentPortal::shared() {
  static MCDocumentPortal* portal = new MCDocumentPortal();  // lives as long as the process
  return *portal;
}

MCDocumentPortal::MCDocumentPortal() {
  GError* error = nullptr;
  connection_ = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
  if (!connection_) connectError_ = takeMessage(error);
}

MCDocumentPortal::MCDocumentPortal(const std::string& busAddress) {
  GError* error = nullptr;
  connection_ = g_dbus_connection_new_for_address_sync(
      busAddress.c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &error);
  if (!connection_) connectError_ = takeMessage(error);
}

MCDocumentPortal::~MCDocumentPortal() {
  if (connection_) g_object_unref(connection_);
}

std::optional<std::string> MCDocumentPortal::addDocument(const std::filesystem::path& path, std::string* error) {
  if (!connection_) {
    if (error) *error = "no session bus: " + connectError_;
    return std::nullopt;
  }
  // The portal takes the item as an O_PATH descriptor, so it names what we opened, not a path
  // that could change under it.
  int fd = ::open(path.c_str(), O_PATH | O_CLOEXEC);
  if (fd < 0) {
    if (error) *error = "cannot open \"" + path.string() + "\"";
    return std::nullopt;
  }
  GUnixFDList* fds = g_unix_fd_list_new_from_array(&fd, 1);  // takes the descriptor
  GError* failure = nullptr;
  GVariant* reply = g_dbus_connection_call_with_unix_fd_list_sync(
      connection_, kName, kPath, kInterface, "Add", g_variant_new("(hbb)", 0, TRUE, TRUE), G_VARIANT_TYPE("(s)"),
      G_DBUS_CALL_FLAGS_NONE, kTimeoutMs, fds, nullptr, nullptr, &failure);
  g_object_unref(fds);
  if (!reply) {
    if (error) *error = "the document portal refused \"" + path.string() + "\": " + takeMessage(failure);
    return std::nullopt;
  }
  const gchar* id = nullptr;
  g_variant_get(reply, "(&s)", &id);
  std::string document = id ? id : "";
  g_variant_unref(reply);
  return document;
}

std::optional<std::filesystem::path> MCDocumentPortal::pathOfDocument(const std::string& documentIdentifier,
                                                                      std::string* error) {
  if (!connection_) {
    if (error) *error = "no session bus: " + connectError_;
    return std::nullopt;
  }
  GError* failure = nullptr;
  GVariant* info = g_dbus_connection_call_sync(connection_, kName, kPath, kInterface, "Info",
                                               g_variant_new("(s)", documentIdentifier.c_str()),
                                               G_VARIANT_TYPE("(aya{sas})"), G_DBUS_CALL_FLAGS_NONE, kTimeoutMs,
                                               nullptr, &failure);
  if (!info) {
    if (error) *error = "the document portal has no document " + documentIdentifier + ": " + takeMessage(failure);
    return std::nullopt;
  }
  GVariant* hostPath = g_variant_get_child_value(info, 0);
  const std::filesystem::path name = std::filesystem::path(g_variant_get_bytestring(hostPath)).filename();
  g_variant_unref(hostPath);
  g_variant_unref(info);

  GVariant* mount = g_dbus_connection_call_sync(connection_, kName, kPath, kInterface, "GetMountPoint", nullptr,
                                                G_VARIANT_TYPE("(ay)"), G_DBUS_CALL_FLAGS_NONE, kTimeoutMs, nullptr,
                                                &failure);
  if (!mount) {
    if (error) *error = "the document portal gives no mount point: " + takeMessage(failure);
    return std::nullopt;
  }
  GVariant* mountPath = g_variant_get_child_value(mount, 0);
  std::filesystem::path result = std::filesystem::path(g_variant_get_bytestring(mountPath)) / documentIdentifier / name;
  g_variant_unref(mountPath);
  g_variant_unref(mount);
  return result;
}
