#include "DecodeBudget.h"

#include <vesperon/core/MCLog.h>

#include <fmt/format.h>

#include <limits>

namespace mc_detail {

bool withinDecodeBudget(const std::string& file, std::size_t width, std::size_t height, uint64_t limit, const char* what,
                        uint64_t workingPixels) {
  const bool fits = (height == 0 || uint64_t(width) <= std::numeric_limits<uint64_t>::max() / height) &&
                    uint64_t(width) * height <= limit && workingPixels <= limit - uint64_t(width) * height;
  if (!fits) logDecodeRefusal(file, width, height, workingPixels, limit, what);
  return fits;
}

void logDecodeRefusal(const std::string& file, std::size_t width, std::size_t height, uint64_t workingPixels,
                      uint64_t limit, const char* what) {
  const std::string working = workingPixels ? fmt::format(" and {} more to work in", workingPixels) : std::string();
  MCLog::sdkGraphics()->logError(fmt::format("Refused to decode {} of {}: {} x {} pixels{} is beyond the limit of {}", what,
                                             file, width, height, working, limit));
}

}  // namespace mc_detail
