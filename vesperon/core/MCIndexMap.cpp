#include <vesperon/core/MCIndexMap.h>

#include <fmt/format.h>

#include <stdexcept>

uint64_t MCIndexMap::indexAtIndex(uint64_t position) const {
  if (position >= indexes_.size())
    throw std::out_of_range(fmt::format("*** {}: index {} is out of range [0..{}]", "MCIndexMap::indexAtIndex",
                                        static_cast<int64_t>(position), static_cast<int64_t>(indexes_.size())));
  return indexes_[position];
}
