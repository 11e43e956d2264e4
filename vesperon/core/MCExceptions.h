#pragma once
// The exceptions that containers and trees raise for broken preconditions. Their messages begin
// with three asterisks and the qualified name of the operation, as callers and logs expect.

#include <fmt/format.h>

#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace mc_detail {

/// std::invalid_argument "*** <operation>: object must not be nil".
[[noreturn]] inline void throwNilObject(std::string_view operation) {
  throw std::invalid_argument(fmt::format("*** {}: object must not be nil", operation));
}

/// std::invalid_argument "*** <operation>: block must not be nil".
[[noreturn]] inline void throwNilBlock(std::string_view operation) {
  throw std::invalid_argument(fmt::format("*** {}: block must not be nil", operation));
}

/// std::out_of_range "*** <operation>: index <index> is out of range [0..<count>]". Indexes are
/// printed signed, so that not-found reads as 9223372036854775807.
[[noreturn]] inline void throwIndexOutOfRange(std::string_view operation, uint64_t index, uint64_t count) {
  throw std::out_of_range(fmt::format("*** {}: index {} is out of range [0..{}]", operation,
                                      static_cast<int64_t>(index), static_cast<int64_t>(count)));
}

}  // namespace mc_detail
