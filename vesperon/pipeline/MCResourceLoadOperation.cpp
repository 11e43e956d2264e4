#include <vesperon/pipeline/MCResourceLoadOperation.h>

#include <vesperon/core/MCLog.h>
#include <vesperon/pipeline/MCImageDescriptor.h>
#include <vesperon/platform/MCMainQueue.h>

#include <exception>
#include <new>

namespace {

std::string describe(const std::shared_ptr<const MCResourceDescriptor>& descriptor) {
  if (auto image = std::dynamic_pointer_cast<const MCImageDescriptor>(descriptor)) return image->fileURL.string();
  return "a resource";
}

void logFailure(const std::shared_ptr<const MCResourceDescriptor>& descriptor, const char* reason) noexcept {
  try {
    MCLog::sdkGraphics()->logError("Couldn't load " + describe(descriptor) + ": " + reason);
  } catch (...) {
    // Out of memory even for the message: the answer still goes out.
  }
}

}  // namespace

void MCResourceLoadOperation::main() {
  // The answer and the work that delivers it exist before the load, so that whatever the load
  // does, delivering costs no allocation that could fail.
  auto result = std::make_shared<std::shared_ptr<MCResource>>();
  std::function<void()> deliver = [completion = completion, result] {
    if (completion) completion(std::move(*result));
  };
  try {
    if (options) {
      if (auto strategy = options->strategy()) *result = strategy->loadResourceForDescriptor(descriptor, options);
    }
  } catch (const std::bad_alloc&) {
    result->reset();
    logFailure(descriptor, "out of memory");
  } catch (const std::exception& e) {
    result->reset();
    logFailure(descriptor, e.what());
  } catch (...) {
    result->reset();
    logFailure(descriptor, "unknown exception");
  }
  MCMainQueue::async(std::move(deliver));
}
