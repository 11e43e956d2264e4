#pragma once
// Options of the enumerations that take them, with the platform's values.

#include <cstdint>

/// Options of the enumerations that take them.
enum MCEnumerationOptions : uint64_t {
  /// A hint that the calls may run at the same time. The library's containers honour the order
  /// instead: one thread at a time owns a container, so their enumerations run serially.
  MCEnumerationConcurrent = 1u << 0,
  /// Walk from the last element to the first.
  MCEnumerationReverse = 1u << 1,
};

/// Options of the sorts that take them. Every sort of the library is stable, with or without them.
enum MCSortOptions : uint64_t {
  MCSortConcurrent = 1u << 0,
  MCSortStable = 1u << 4,
};
