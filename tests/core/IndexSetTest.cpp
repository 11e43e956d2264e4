#include <vesperon/core/MCIndexSet.h>

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <set>

namespace {
std::set<uint64_t> asSet(const MCIndexSet& s) {
  std::set<uint64_t> out;
  for (uint64_t i : s) out.insert(i);
  return out;
}
}  // namespace

TEST(MCIndexSet, RandomRangeEditsAndNeighbourQueriesMatchABruteForceSet) {
  std::mt19937_64 rng(42);
  MCIndexSet set;
  std::set<uint64_t> model;
  for (int step = 0; step < 3000; ++step) {
    uint64_t loc = rng() % 200, len = rng() % 12;
    switch (rng() % 4) {
      case 0:
      case 1:
        set.addIndexesInRange({loc, len});
        for (uint64_t i = loc; i < loc + len; ++i) model.insert(i);
        break;
      case 2:
        set.removeIndexesInRange({loc, len});
        for (uint64_t i = loc; i < loc + len; ++i) model.erase(i);
        break;
      case 3: {
        int64_t delta = int64_t(rng() % 9) - 4;
        set.shiftIndexesStartingAtIndex(loc, delta);
        std::set<uint64_t> shifted;
        for (uint64_t i : model) {
          if (i < loc) {
            if (delta < 0 && int64_t(i) >= int64_t(loc) + delta) continue;  // the closed gap
            shifted.insert(i);
          } else if (int64_t(i) + delta >= 0) {
            shifted.insert(uint64_t(int64_t(i) + delta));
          }
        }
        model = shifted;
        break;
      }
    }
    ASSERT_EQ(asSet(set), model) << "step " << step;
    ASSERT_EQ(set.count(), model.size());
    // The neighbours of a probe, against the model's bounds.
    uint64_t probe = rng() % 220;
    auto above = model.upper_bound(probe), atOrAbove = model.lower_bound(probe);
    ASSERT_EQ(set.indexGreaterThanIndex(probe), above == model.end() ? NSNotFound : *above);
    ASSERT_EQ(set.indexGreaterThanOrEqualToIndex(probe), atOrAbove == model.end() ? NSNotFound : *atOrAbove);
    ASSERT_EQ(set.indexLessThanIndex(probe), atOrAbove == model.begin() ? NSNotFound : *std::prev(atOrAbove));
    ASSERT_EQ(set.indexLessThanOrEqualToIndex(probe), above == model.begin() ? NSNotFound : *std::prev(above));
    ASSERT_EQ(set.countOfIndexesInRange({probe, 10}), uint64_t(std::distance(atOrAbove, model.lower_bound(probe + 10))));
  }
  // Ranges are kept disjoint and never adjacent.
  const auto& ranges = set.ranges();
  for (std::size_t i = 1; i < ranges.size(); ++i) EXPECT_LT(ranges[i - 1].end(), ranges[i].location);
}

TEST(MCIndexSet, EndsAndRangeQueries) {
  MCIndexSet set;
  set.addIndexesInRange({10, 5});  // 10..14
  set.addIndex(20);
  EXPECT_EQ(set.firstIndex(), 10u);
  EXPECT_EQ(set.lastIndex(), 20u);
  EXPECT_EQ(set.indexLessThanOrEqualToIndex(NSNotFound), 20u);
  EXPECT_TRUE(set.containsIndexesInRange({10, 5}));
  EXPECT_FALSE(set.containsIndexesInRange({10, 6}));
  EXPECT_TRUE(set.intersectsIndexesInRange({0, 11}));
  EXPECT_FALSE(set.intersectsIndexesInRange({15, 5}));
  EXPECT_TRUE(set.containsIndexes(MCIndexSet{11, 20}));

  MCIndexSet empty;
  EXPECT_EQ(empty.firstIndex(), NSNotFound);
  EXPECT_EQ(empty.lastIndex(), NSNotFound);
  EXPECT_EQ(empty.indexLessThanOrEqualToIndex(5), NSNotFound);
}

TEST(MCIndexSet, NotFoundAndHugeRangesDoNotWrap) {
  MCIndexSet set;
  set.addIndex(NSNotFound);
  EXPECT_TRUE(set.empty());
  set.addIndexesInRange({NSNotFound - 2, 100});  // clamped below NSNotFound
  EXPECT_EQ(set.count(), 2u);
  EXPECT_EQ(set.lastIndex(), NSNotFound - 1);
  set.shiftIndexesStartingAtIndex(0, 5);  // pushed past the top: dropped
  EXPECT_TRUE(set.empty());
  set.addIndexesInRange({0, 3});
  set.shiftIndexesStartingAtIndex(2, INT64_MIN);
  EXPECT_EQ(set.count(), 0u) << "everything from 0 up to the start index is the gap";
}
