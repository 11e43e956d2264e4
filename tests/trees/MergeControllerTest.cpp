#include <vesperon/core/MCTypes.h>
#include <vesperon/trees/MCMergeController.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace {

// The calls of one merge as text. Old and new elements may be of different types.
int compareInts(const int& a, const int& b) { return MCCompareValues(a, b); }

template <typename Old = int, typename New = Old, typename Compare = int (*)(const Old&, const New&)>
std::vector<std::string> mergeCalls(const std::vector<Old>& oldList, const std::vector<New>& newList,
                                    Compare compare = compareInts) {
  std::vector<std::string> calls;
  MCMergeController<Old, New> merge;
  merge.setOldBlock([&](const Old& o, uint64_t p) { calls.push_back(fmt::format("old {} @{}", o, p)); });
  merge.setNewBlock([&](const New& n, uint64_t p) { calls.push_back(fmt::format("new {} @{}", n, p)); });
  merge.setEqualBlock([&](const Old& o, const New& n, uint64_t p) {
    calls.push_back(fmt::format("equal {}={} @{}", o, n, p));
  });
  merge.merge(oldList, newList, compare);
  return calls;
}

using Calls = std::vector<std::string>;

TEST(MergeController, ReportsEachElementAtItsMergedPosition) {
  EXPECT_EQ(mergeCalls({1, 3}, {2, 3}), (Calls{"old 1 @0", "new 2 @1", "equal 3=3 @2"}));
  EXPECT_EQ(mergeCalls({}, {}), Calls{});
  EXPECT_EQ(mergeCalls({}, {4, 5, 6}), (Calls{"new 4 @0", "new 5 @1", "new 6 @2"}));
  EXPECT_EQ(mergeCalls({4, 5}, {}), (Calls{"old 4 @0", "old 5 @1"}));
  // The tails after one list runs out keep counting on from the merged position.
  EXPECT_EQ(mergeCalls({2, 7, 8}, {1, 2}), (Calls{"new 1 @0", "equal 2=2 @1", "old 7 @2", "old 8 @3"}));
  EXPECT_EQ(mergeCalls({5}, {1, 5, 9, 10}), (Calls{"new 1 @0", "equal 5=5 @1", "new 9 @2", "new 10 @3"}));
}

TEST(MergeController, ComparesOldAgainstNewAndCountsAnyPositiveAsLater) {
  // Old and new elements of different types; a comparator answering a plain difference must not
  // stall the walk.
  auto calls = mergeCalls(std::vector<int>{10, 30}, std::vector<std::string>{"5", "30", "40"},
                          [](const int& o, const std::string& n) { return o - std::stoi(n); });
  EXPECT_EQ(calls, (Calls{"new 5 @0", "old 10 @1", "equal 30=30 @2", "new 40 @3"}));
}

TEST(MergeController, RefusesToMergeWithoutAllThreeBlocks) {
  MCMergeController<int> merge;
  merge.setOldBlock([](const int&, uint64_t) {});
  merge.setNewBlock([](const int&, uint64_t) {});
  EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { merge.merge({1}, {1}, compareInts); }),
            "*** MCMergeController::merge: block must not be nil");
}

}  // namespace
