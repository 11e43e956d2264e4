#pragma once
// MCProcessActivity: the platform's activity token — a sleep inhibitor taken from systemd-logind
// over the system D-Bus, held as a file descriptor until the activity ends.
//
// The options word is the platform's activity options value: the bit NSActivityIdleSystemSleepDisabled
// (1 << 20) inhibits "sleep", NSActivityIdleDisplaySleepDisabled (1 << 40) inhibits "idle".

#include <cstdint>
#include <memory>
#include <string>

class MCProcessActivity {
 public:
  /// The system does not sleep while the activity lasts.
  static constexpr uint64_t NSActivityIdleSystemSleepDisabled = 1ull << 20;
  /// The display does not sleep while the activity lasts.
  static constexpr uint64_t NSActivityIdleDisplaySleepDisabled = 1ull << 40;

  /// Takes an inhibitor from logind. None when there is no system bus or logind refuses.
  static std::shared_ptr<MCProcessActivity> begin(uint64_t activityOptions, const std::string& reason);

  /// A token holding `fd` (-1 for a token that inhibits nothing). The token owns the descriptor.
  explicit MCProcessActivity(int fd) : fd_(fd) {}
  ~MCProcessActivity() { end(); }
  MCProcessActivity(const MCProcessActivity&) = delete;
  MCProcessActivity& operator=(const MCProcessActivity&) = delete;

  /// Releases the inhibitor. A second call does nothing.
  void end();
  /// Whether the activity has not ended.
  bool isActive() const { return !ended_; }

 private:
  int fd_;
  bool ended_ = false;
};
