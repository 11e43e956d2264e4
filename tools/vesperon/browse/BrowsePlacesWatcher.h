#pragma once
// Tells `vesperon browse` when the places its sidebar lists may have changed on the desktop's side:
// a volume mounted or unmounted (the mount table, and GIO's volume monitor for drives and shares
// mounted through GVfs). A mount usually comes as several signals; they are told once, after a
// short settling time, on the main queue.

#include <functional>
#include <memory>

typedef struct _GUnixMountMonitor GUnixMountMonitor;
typedef struct _GVolumeMonitor GVolumeMonitor;
typedef struct _GMount GMount;
class MCTimer;

class BrowsePlacesWatcher {
 public:
  explicit BrowsePlacesWatcher(std::function<void()> changed, double settle = 0.2);
  ~BrowsePlacesWatcher();
  BrowsePlacesWatcher(const BrowsePlacesWatcher&) = delete;
  BrowsePlacesWatcher& operator=(const BrowsePlacesWatcher&) = delete;

 private:
  void signalled();
  static void onMounts(GUnixMountMonitor*, void* watcher);
  static void onMount(GVolumeMonitor*, GMount*, void* watcher);

  std::function<void()> changed_;
  double settle_;
  GUnixMountMonitor* mounts_ = nullptr;
  GVolumeMonitor* volumes_ = nullptr;
  std::shared_ptr<MCTimer> timer_;
};
