#include "DecodeBudget.h"

#include <vesperon/core/MCLog.h>

#include <fmt/format.h>

namespace mc_detail {

bool withinDecodeBudget(const std::string& file, std::size_t width, std::size_t height, uint64_t limit, const char* what) {
  if (uint64_t(width) * height <= limit) return true;
  MCLog::sdkGraphics()->logError(fmt::format("Refused to decode {} of {}: {} x {} pixels is beyond the limit of {}", what,
                                             file, width, height, limit));
  return false;
}

}  // namespace mc_detail
