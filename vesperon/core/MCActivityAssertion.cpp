#include <vesperon/core/MCActivityAssertion.h>

uint64_t MCActivityAssertion::platformOptionsForOptions(uint64_t options) {
  uint64_t value = (options & MCActivityOptionSystemSleepDisabled) ? 0xFFFFFFull : 0xEFFFFFull;
  if (options & MCActivityOptionDisplaySleepDisabled) value |= MCProcessActivity::NSActivityIdleDisplaySleepDisabled;
  return value;
}

std::shared_ptr<MCActivityAssertion> MCActivityAssertion::beginActivityWithReason(const std::string& reason,
                                                                                  uint64_t options) {
  return create(MCProcessActivity::begin(platformOptionsForOptions(options), reason));
}

std::shared_ptr<MCActivityAssertion> MCActivityAssertion::beginActivityWithReason(const std::string& reason) {
  return beginActivityWithReason(reason, MCActivityOptionSystemSleepDisabled);
}

void MCActivityAssertion::endActivity(const std::shared_ptr<MCActivityAssertion>& assertion) {
  if (assertion) assertion->endActivity();
}

std::shared_ptr<MCActivityAssertion> MCActivityAssertion::create(std::shared_ptr<MCProcessActivity> token) {
  if (!token) return nullptr;
  return std::shared_ptr<MCActivityAssertion>(new MCActivityAssertion(std::move(token)));
}

void MCActivityAssertion::endActivity() {
  if (!processActivity_) return;
  processActivity_->end();
  processActivity_.reset();
}
