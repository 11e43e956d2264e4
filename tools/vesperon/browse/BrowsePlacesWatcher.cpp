#include "BrowsePlacesWatcher.h"

#include <vesperon/toolkit/MCTimer.h>

#include <gio/gio.h>
#include <gio/gunixmounts.h>

BrowsePlacesWatcher::BrowsePlacesWatcher(std::function<void()> changed, double settle)
    : changed_(std::move(changed)), settle_(settle) {
  mounts_ = g_unix_mount_monitor_get();
  if (mounts_) g_signal_connect(mounts_, "mounts-changed", G_CALLBACK(&BrowsePlacesWatcher::onMounts), this);
  volumes_ = g_volume_monitor_get();
  if (volumes_)
    for (const char* signal : {"mount-added", "mount-removed", "mount-changed"})
      g_signal_connect(volumes_, signal, G_CALLBACK(&BrowsePlacesWatcher::onMount), this);
}

BrowsePlacesWatcher::~BrowsePlacesWatcher() {
  if (timer_) timer_->invalidate();
  if (mounts_) {
    g_signal_handlers_disconnect_by_data(mounts_, this);
    g_object_unref(mounts_);
  }
  if (volumes_) {
    g_signal_handlers_disconnect_by_data(volumes_, this);
    g_object_unref(volumes_);
  }
}

void BrowsePlacesWatcher::onMounts(GUnixMountMonitor*, void* watcher) {
  static_cast<BrowsePlacesWatcher*>(watcher)->signalled();
}

void BrowsePlacesWatcher::onMount(GVolumeMonitor*, GMount*, void* watcher) {
  static_cast<BrowsePlacesWatcher*>(watcher)->signalled();
}

void BrowsePlacesWatcher::signalled() {
  if (timer_) timer_->invalidate();
  timer_ = MCTimer::scheduledTimer(settle_, false, [this](MCTimer&) {
    if (changed_) changed_();
  });
}
