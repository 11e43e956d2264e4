#include <vesperon/core/MCArrayExtensions.h>
#include <vesperon/core/MCBinarySearch.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {
int compareInts(const int& a, const int& b) { return MCCompareValues(a, b); }

std::vector<int> randomSorted(std::mt19937& rng, size_t maxCount, int maxValue) {
  std::vector<int> v(rng() % (maxCount + 1));
  for (auto& x : v) x = int(rng() % uint32_t(maxValue));
  std::sort(v.begin(), v.end());
  return v;
}
}  // namespace

TEST(MCBinarySearchInArray, FindsHitsAndAnswersNotFoundOnMissesAndEmptyRanges) {
  std::vector<int> values{1, 3, 5, 7, 9, 11};
  auto seek = [](int target) { return [target](int element) { return MCCompareValues(target, element); }; };
  for (size_t i = 0; i < values.size(); ++i) EXPECT_EQ(MCBinarySearchInArray(values, 0, values.size(), seek(values[i])), i);
  EXPECT_EQ(MCBinarySearchInArray(values, 0, values.size(), seek(4)), NSNotFound);
  EXPECT_EQ(MCBinarySearchInArray(values, 0, values.size(), seek(0)), NSNotFound);
  EXPECT_EQ(MCBinarySearchInArray(values, 0, values.size(), seek(12)), NSNotFound);
  EXPECT_EQ(MCBinarySearchInArray(values, 2, 4, seek(1)), NSNotFound) << "outside the window";
  EXPECT_EQ(MCBinarySearchInArray(values, 3, 3, seek(7)), NSNotFound);
  EXPECT_EQ(MCBinarySearchInArray(values, 5, 2, seek(7)), NSNotFound) << "end before first";

  EXPECT_EQ(binarySearchWithBlock(values, seek(9)), 4u);
  EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { binarySearchWithBlock(values, std::function<int(int)>()); }),
            "*** binarySearchWithBlock: block must not be nil");
}

TEST(MCBinarySearchInsertionIndex, EmptyAndOneSidedSearches) {
  int calls = 0;
  EXPECT_EQ(MCBinarySearchInsertionIndex(5, 0, [&](int64_t) { return ++calls; }), 5);
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(MCBinarySearchInsertionIndex(5, 10, [](int64_t) { return 1; }), 15);
  EXPECT_EQ(MCBinarySearchInsertionIndex(5, 10, [](int64_t) { return -1; }), 5);
  // Large positions near not-found do not overflow.
  const int64_t big = int64_t(NSNotFound) - 100;
  EXPECT_EQ(MCBinarySearchInsertionIndex(big, 50, [](int64_t) { return 1; }), big + 50);
}

TEST(MCArrayExtensions, InsertionIndexesMatchABruteForceMerge) {
  std::mt19937 rng(3);
  for (int trial = 0; trial < 300; ++trial) {
    auto receiver = randomSorted(rng, 20, 30);
    auto objects = randomSorted(rng, 20, 30);
    // Brute force: a stable merge where receiver elements go first among equals.
    std::vector<std::pair<int, bool>> merged;
    for (int r : receiver) merged.push_back({r, false});
    for (int o : objects) merged.push_back({o, true});
    std::stable_sort(merged.begin(), merged.end(), [](auto& a, auto& b) { return a.first < b.first; });
    MCIndexSet expected;
    for (size_t i = 0; i < merged.size(); ++i)
      if (merged[i].second) expected.addIndex(i);
    auto got = insertionIndexesForObjects(receiver, objects, compareInts);
    ASSERT_EQ(got, expected) << "trial " << trial;
    ASSERT_EQ(got.count(), objects.size());

    // Inserting there must give a sorted array.
    std::vector<int> result;
    size_t r = 0, o = 0;
    for (size_t i = 0; i < receiver.size() + objects.size(); ++i)
      result.push_back(got.containsIndex(i) ? objects[o++] : receiver[r++]);
    ASSERT_TRUE(std::is_sorted(result.begin(), result.end()));

    // insertionIndexForObject lands inside the run of equal elements.
    int probe = int(rng() % 32);
    uint64_t at = insertionIndexForObject(receiver, probe, compareInts);
    auto lo = std::lower_bound(receiver.begin(), receiver.end(), probe) - receiver.begin();
    auto hi = std::upper_bound(receiver.begin(), receiver.end(), probe) - receiver.begin();
    ASSERT_GE(int64_t(at), lo);
    ASSERT_LE(int64_t(at), hi);
  }
}

TEST(MCArrayExtensions, IndexesOfSortedObjectsUseUpOneElementPerMatch) {
  EXPECT_EQ(indexesOfSortedObjects(std::vector<int>{1, 2, 3}, std::vector<int>{2, 5}, compareInts), MCIndexSet{1});
  EXPECT_TRUE(indexesOfSortedObjects(std::vector<int>{}, std::vector<int>{1}, compareInts).empty());
  EXPECT_EQ(indexesOfSortedObjects(std::vector<int>{1, 2, 2, 2, 3}, std::vector<int>{2, 2, 3}, compareInts),
            (MCIndexSet{1, 2, 4}));
  std::vector<MCSortDescriptor<int>> descending{MCSortDescriptor<int>(compareInts, false)};
  EXPECT_EQ(indexesOfSortedObjects(std::vector<int>{9, 5, 1}, std::vector<int>{5, 1}, descending), (MCIndexSet{1, 2}));
  EXPECT_EQ(insertionIndexesForObjects(std::vector<int>{9, 5, 1}, std::vector<int>{7}, descending), MCIndexSet{1});
}

TEST(MCArrayExtensions, SplitArraysGroupsRunsAndKeepsTheFinerOrderInside) {
  int calls = 0;
  auto counting = [&](const int& a, const int& b) {
    ++calls;
    return compareInts(a, b);
  };
  EXPECT_TRUE(splitArraysUsingComparator(std::vector<int>{}, counting).empty());
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(splitArraysUsingComparator(std::vector<int>{4}, counting), (std::vector<std::vector<int>>{{4}}));

  std::vector<std::string> words{"pear", "avocado", "plum", "apple", "banana", "apricot"};
  auto byInitial = [](const std::string& a, const std::string& b) { return MCCompareValues(a[0], b[0]); };
  auto byLength = [](const std::string& a, const std::string& b) { return MCCompareValues(a.size(), b.size()); };
  auto groups = splitArraysUsingComparator(words, byInitial);
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(groups[0], (std::vector<std::string>{"avocado", "apple", "apricot"})) << "stable within a group";
  EXPECT_EQ(groups[2], (std::vector<std::string>{"pear", "plum"}));
  // Sorted by initial then length: the grouping by initial keeps the length order inside.
  auto fine = splitArraysUsingComparator(words, byInitial, [&](const std::string& a, const std::string& b) {
    int r = byInitial(a, b);
    return r != 0 ? r : byLength(a, b);
  });
  ASSERT_EQ(fine.size(), 3u);
  EXPECT_EQ(fine[0], (std::vector<std::string>{"apple", "avocado", "apricot"}));
}
