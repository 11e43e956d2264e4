#pragma once
// Operations added to MCIndexSet: set difference, the n-th index, and the search for indexes the
// set does not hold.

#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCTypes.h>

#include <cstdint>
#include <string>

/// A copy less the indexes of `other`; a plain copy when either is empty.
MCIndexSet indexSetByRemovingIndexSet(const MCIndexSet& set, const MCIndexSet& other);

/// The n-th index in ascending order, by walking the ranges (not the indexes). At or past count
/// raises std::out_of_range "*** indexAtIndex: index %ld is out of range [0..%ld]".
uint64_t indexAtIndex(const MCIndexSet& set, uint64_t n);

/// The first index at or after `index`, within `range`, that the set does not hold; NSNotFound
/// when every index from there to the end of the range is held. A start outside the range raises
/// std::out_of_range "*** missedIndexGreaterThanOrEqualToIndex: index %ld is out of range {loc, len}".
uint64_t missedIndexGreaterThanOrEqualToIndex(const MCIndexSet& set, uint64_t index, MCRange range);
/// The mirror: the last index at or before `index`, within `range`, that the set does not hold.
uint64_t missedIndexLessThanOrEqualToIndex(const MCIndexSet& set, uint64_t index, MCRange range);

/// The platform's text of a range: "{location, length}".
std::string MCStringFromRange(MCRange range);
