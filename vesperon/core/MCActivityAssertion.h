#pragma once
// MCActivityAssertion: declares to the system that the process is busy, so that it does not
// sleep. The assertion holds a platform activity token until `endActivity` or destruction.
//
// Options word: bit value 2 also prevents idle display sleep; bit value 4 prevents idle system
// sleep. Other bits are ignored.

#include <vesperon/platform/MCProcessActivity.h>

#include <cstdint>
#include <memory>
#include <string>

class MCActivityAssertion {
 public:
  /// Keeps the display awake.
  static constexpr uint64_t MCActivityOptionDisplaySleepDisabled = 2;
  /// Keeps the system awake.
  static constexpr uint64_t MCActivityOptionSystemSleepDisabled = 4;

  /// None when the platform gave no token (for example, no system bus).
  static std::shared_ptr<MCActivityAssertion> beginActivityWithReason(const std::string& reason, uint64_t options);
  /// The same with options word 4.
  static std::shared_ptr<MCActivityAssertion> beginActivityWithReason(const std::string& reason);
  /// Ends the activity (none does nothing).
  static void endActivity(const std::shared_ptr<MCActivityAssertion>& assertion);

  /// The platform's options value for an options word: 0xEFFFFF, 0xFFFFFF, 0x10000EFFFFF or 0x10000FFFFFF.
  static uint64_t platformOptionsForOptions(uint64_t options);

  /// None when `token` is none.
  static std::shared_ptr<MCActivityAssertion> create(std::shared_ptr<MCProcessActivity> token);

  ~MCActivityAssertion() { endActivity(); }
  MCActivityAssertion(const MCActivityAssertion&) = delete;
  MCActivityAssertion& operator=(const MCActivityAssertion&) = delete;

  /// Ends the activity; a second call does nothing.
  void endActivity();

 private:
  explicit MCActivityAssertion(std::shared_ptr<MCProcessActivity> token) : processActivity_(std::move(token)) {}
  std::shared_ptr<MCProcessActivity> processActivity_;
};
