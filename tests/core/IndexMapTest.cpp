#include <vesperon/core/MCBinarySearch.h>
#include <vesperon/core/MCIndexMap.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <algorithm>
#include <random>
#include <vector>

TEST(MCIndexMap, RepeatsAValueAndRefusesOutOfRangeReads) {
  MCIndexMap map;
  map.addIndex(7, 3);
  map.addIndex(9);
  map.addIndex(1, 0);
  ASSERT_EQ(map.count(), 4u);
  EXPECT_EQ(map.indexAtIndex(0), 7u);
  EXPECT_EQ(map.indexAtIndex(2), 7u) << "the same value, not 7, 8, 9";
  EXPECT_EQ(map.indexAtIndex(3), 9u);
  EXPECT_EQ(thrownMessage<std::out_of_range>([&] { map.indexAtIndex(4); }),
            "*** MCIndexMap::indexAtIndex: index 4 is out of range [0..4]");
  EXPECT_THROW(map.indexAtIndex(NSNotFound), std::out_of_range);
  map.removeAllIndexes();
  EXPECT_EQ(map.count(), 0u);
}

TEST(MCBinarySearchInsertionIndex, AgreesWithLowerBoundOnHitsAndMisses) {
  std::mt19937 rng(7);
  for (int trial = 0; trial < 300; ++trial) {
    std::vector<int> values(rng() % 40);
    for (auto& v : values) v = int(rng() % 100) * 2;  // even values: odd probes always miss
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    const int64_t offset = 5;  // search a window that does not start at 0
    for (int probe = -1; probe < 202; ++probe) {
      int64_t got = MCBinarySearchInsertionIndex(offset, int64_t(values.size()), [&](int64_t i) {
        int v = values[size_t(i - offset)];
        return probe > v ? 1 : probe < v ? -1 : 0;
      });
      int64_t want = offset + (std::lower_bound(values.begin(), values.end(), probe) - values.begin());
      ASSERT_EQ(got, want) << "probe " << probe << " in " << values.size();
    }
  }
  EXPECT_EQ(MCBinarySearchInsertionIndex(12, 0, [](int64_t) { return 0; }), 12);
}
