#include <vesperon/platform/MCProcessActivity.h>

#include <gio/gio.h>
#include <gio/gunixfdlist.h>
#include <unistd.h>

std::shared_ptr<MCProcessActivity> MCProcessActivity::begin(uint64_t options, const std::string& reason) {
  GError* error = nullptr;
  GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error);
  if (!bus) {
    g_clear_error(&error);
    return nullptr;
  }
  std::string what;
  if (options & NSActivityIdleSystemSleepDisabled) what = "sleep";
  if (options & NSActivityIdleDisplaySleepDisabled) what += what.empty() ? "idle" : ":idle";
  if (what.empty()) {
    // Nothing to inhibit on this system; the activity is still a valid token.
    g_object_unref(bus);
    return std::make_shared<MCProcessActivity>(-1);
  }
  GUnixFDList* fds = nullptr;
  GVariant* reply = g_dbus_connection_call_with_unix_fd_list_sync(
      bus, "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Inhibit",
      g_variant_new("(ssss)", what.c_str(), g_get_prgname() ? g_get_prgname() : "vesperon", reason.c_str(), "block"),
      G_VARIANT_TYPE("(h)"), G_DBUS_CALL_FLAGS_NONE, 2000, nullptr, &fds, nullptr, &error);
  g_object_unref(bus);
  if (!reply) {
    g_clear_error(&error);
    return nullptr;
  }
  gint32 handle = -1;
  g_variant_get(reply, "(h)", &handle);
  g_variant_unref(reply);
  int fd = fds ? g_unix_fd_list_get(fds, handle, nullptr) : -1;
  if (fds) g_object_unref(fds);
  if (fd < 0) return nullptr;
  return std::make_shared<MCProcessActivity>(fd);
}

void MCProcessActivity::end() {
  if (ended_) return;
  ended_ = true;
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}
