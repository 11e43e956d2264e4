#include "FilesTestSupport.h"

#include <vesperon/files/MCBookmarkData.h>
#include <vesperon/files/MCDocumentPortal.h>

#include <gio/gio.h>
#include <gio/gunixfdlist.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <map>
#include <mutex>
#include <thread>

namespace fs = std::filesystem;

namespace {

// A small document portal on a private session bus: a dbus-daemon of the test's own, and a
// service on a thread of its own that answers Add, Info and GetMountPoint as the real portal
// does. Its "mount point" is a folder where each document is a link to the item, standing in for
// the portal's FUSE file system.
class FakePortal {
 public:
  explicit FakePortal(const fs::path& folder) : mount_(folder / "doc") {
    fs::create_directories(mount_);
    const std::string command = "dbus-daemon --session --nofork --print-address=1 --print-pid=1 "
                                "--address=unix:path=" + (folder / "bus").string();
    daemon_ = ::popen(command.c_str(), "r");
    if (!daemon_) return;
    char line[512] = {};
    if (!std::fgets(line, sizeof line, daemon_)) return;
    address_ = line;
    while (!address_.empty() && address_.back() == '\n') address_.pop_back();
    if (std::fgets(line, sizeof line, daemon_)) pid_ = std::atoi(line);
    service_ = std::thread([this] { serve(); });
    std::unique_lock lock(mutex_);
    ready_.wait(lock, [&] { return state_ != 0; });
  }
  ~FakePortal() {
    if (loop_) g_main_loop_quit(loop_);
    if (service_.joinable()) service_.join();
    if (loop_) g_main_loop_unref(loop_);
    if (pid_ > 0) ::kill(pid_, SIGTERM);
    if (daemon_) ::pclose(daemon_);
  }
  bool running() const { return state_ == 1; }
  const std::string& address() const { return address_; }
  const fs::path& mountPoint() const { return mount_; }
  int adds() const { return adds_; }

 private:
  void serve() {
    GMainContext* context = g_main_context_new();
    g_main_context_push_thread_default(context);
    GDBusConnection* connection = g_dbus_connection_new_for_address_sync(
        address_.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    int ok = connection ? 1 : -1;
    if (connection) {
      static const char* xml =
          "<node><interface name='org.freedesktop.portal.Documents'>"
          "<method name='GetMountPoint'><arg type='ay' direction='out'/></method>"
          "<method name='Add'><arg type='h' direction='in'/><arg type='b' direction='in'/>"
          "<arg type='b' direction='in'/><arg type='s' direction='out'/></method>"
          "<method name='Info'><arg type='s' direction='in'/><arg type='ay' direction='out'/>"
          "<arg type='a{sas}' direction='out'/></method>"
          "</interface></node>";
      GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(xml, nullptr);
      static const GDBusInterfaceVTable table = {&FakePortal::call, nullptr, nullptr, {}};
      if (!g_dbus_connection_register_object(connection, "/org/freedesktop/portal/documents", node->interfaces[0],
                                             &table, this, nullptr, nullptr))
        ok = -1;
      g_dbus_node_info_unref(node);
      GVariant* owned = g_dbus_connection_call_sync(
          connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
          g_variant_new("(su)", "org.freedesktop.portal.Documents", 0u), nullptr, G_DBUS_CALL_FLAGS_NONE, 5000,
          nullptr, nullptr);
      if (owned) g_variant_unref(owned);
      else ok = -1;
    }
    loop_ = g_main_loop_new(context, FALSE);
    {
      std::lock_guard lock(mutex_);
      state_ = ok;
    }
    ready_.notify_all();
    if (ok == 1) g_main_loop_run(loop_);
    if (connection) g_object_unref(connection);
    g_main_context_pop_thread_default(context);
    g_main_context_unref(context);
  }

  static void call(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                   GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self) {
    auto* portal = static_cast<FakePortal*>(self);
    const std::string name = method;
    if (name == "GetMountPoint") {
      g_dbus_method_invocation_return_value(invocation,
                                            g_variant_new("(^ay)", portal->mount_.c_str()));
    } else if (name == "Add") {
      gint32 handle = 0;
      gboolean reuse = FALSE, persistent = FALSE;
      g_variant_get(parameters, "(hbb)", &handle, &reuse, &persistent);
      GUnixFDList* fds = g_dbus_message_get_unix_fd_list(g_dbus_method_invocation_get_message(invocation));
      int fd = fds ? g_unix_fd_list_get(fds, handle, nullptr) : -1;
      std::error_code ec;
      const fs::path item = fd >= 0 ? fs::read_symlink("/proc/self/fd/" + std::to_string(fd), ec) : fs::path();
      if (fd >= 0) ::close(fd);
      if (item.empty()) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.InvalidArgument",
                                                   "no file descriptor");
        return;
      }
      ++portal->adds_;
      std::string id;
      for (const auto& [known, path] : portal->documents_)
        if (reuse && path == item) id = known;
      if (id.empty()) {
        id = "d" + std::to_string(portal->documents_.size() + 1);
        portal->documents_[id] = item;
        fs::create_directories(portal->mount_ / id);
        fs::create_directory_symlink(item, portal->mount_ / id / item.filename(), ec);
      }
      g_dbus_method_invocation_return_value(invocation, g_variant_new("(s)", id.c_str()));
    } else if (name == "Info") {
      const gchar* id = nullptr;
      g_variant_get(parameters, "(&s)", &id);
      auto found = portal->documents_.find(id);
      if (found == portal->documents_.end()) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.NotFound",
                                                   "no such document");
        return;
      }
      GVariantBuilder apps;
      g_variant_builder_init(&apps, G_VARIANT_TYPE("a{sas}"));
      g_dbus_method_invocation_return_value(invocation,
                                            g_variant_new("(^aya{sas})", found->second.c_str(), &apps));
    }
  }

  fs::path mount_;
  FILE* daemon_ = nullptr;
  int pid_ = 0;
  std::string address_;
  std::thread service_;
  GMainLoop* loop_ = nullptr;
  std::mutex mutex_;
  std::condition_variable ready_;
  int state_ = 0;
  std::map<std::string, fs::path> documents_;
  int adds_ = 0;
};

}  // namespace

TEST(DocumentPortal, BookmarksMadeInASandboxGoThroughThePortal) {
  const fs::path root = freshFolder("portal");
  FakePortal fake(root);
  ASSERT_TRUE(fake.running()) << "the private session bus or the fake portal did not start";
  MCDocumentPortal portal(fake.address());
  fs::create_directories(root / "library" / "Trips");

  std::string error;
  auto bookmark = MCBookmarkData::ofItemAtPath(root / "library" / "Trips", &error, &portal);
  ASSERT_TRUE(bookmark) << error;
  EXPECT_EQ(bookmark->documentIdentifier, "d1");
  // The bytes keep the document id.
  auto decoded = MCBookmarkData::decode(bookmark->encoded());
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->documentIdentifier, "d1");
  // Resolving asks the portal, and the path is the document's place under its mount point.
  auto resolved = decoded->resolve(&error, &portal);
  ASSERT_TRUE(resolved) << error;
  EXPECT_EQ(*resolved, fake.mountPoint() / "d1" / "Trips");
  EXPECT_TRUE(fs::is_directory(*resolved));

  // The same folder again is the same document.
  EXPECT_EQ(portal.addDocument(root / "library" / "Trips", &error), "d1");
  EXPECT_EQ(fake.adds(), 2);
  // A document the portal no longer has, and a bookmark with one but no portal: none, with reasons.
  MCBookmarkData unknown = *decoded;
  unknown.documentIdentifier = "d99";
  EXPECT_EQ(unknown.resolve(&error, &portal), std::nullopt);
  EXPECT_NE(error.find("no document d99"), std::string::npos) << error;
  EXPECT_EQ(decoded->resolve(&error, nullptr), std::nullopt);
  EXPECT_NE(error.find("needs the document portal"), std::string::npos) << error;
  // Nothing there to add.
  EXPECT_EQ(portal.addDocument(root / "missing", &error), std::nullopt);

  // A bus that is not there: a reason, no crash, no wait.
  MCDocumentPortal nowhere("unix:path=" + (root / "no-bus").string());
  EXPECT_EQ(nowhere.addDocument(root / "library", &error), std::nullopt);
  EXPECT_NE(error.find("no session bus"), std::string::npos) << error;
}
