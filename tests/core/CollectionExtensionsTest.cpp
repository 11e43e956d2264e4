#include <vesperon/core/MCArrayExtensions.h>
#include <vesperon/core/MCDictionaryExtensions.h>
#include <vesperon/core/MCIndexSetExtensions.h>
#include <vesperon/core/MCMutableArrayExtensions.h>
#include <vesperon/core/MCSetExtensions.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;

TEST(MCArrayExtensions, CopiesInsertAndRemoveWithoutTouchingTheReceiver) {
  const Strings abc{"a", "b", "c"};
  EXPECT_EQ(arrayByInsertingObjects(abc, Strings{"x", "y"}, MCIndexSet{0, 3}), (Strings{"x", "a", "b", "y", "c"}));
  EXPECT_EQ(arrayByInsertingObjects(abc, Strings{"z"}, MCIndexSet{3}), (Strings{"a", "b", "c", "z"}));
  EXPECT_EQ(arrayByInsertingObjects(abc, Strings{}, MCIndexSet{}), abc);
  EXPECT_EQ(arrayByInsertingObjects(abc, Strings{}, MCIndexSet{1, 7}), abc) << "no objects: a copy, whatever the indexes";
  EXPECT_EQ(arrayByInsertingObjects(Strings{}, Strings{}, MCIndexSet{0}), Strings{});
  EXPECT_THROW(arrayByInsertingObjects(abc, Strings{"x"}, MCIndexSet{5}), std::out_of_range);
  EXPECT_THROW(arrayByInsertingObjects(abc, Strings{"x"}, MCIndexSet{0, 1}), std::invalid_argument);
  EXPECT_EQ(arrayByInsertingUniqueObjects(abc, Strings{"c", "d", "a", "d", "e"}), (Strings{"a", "b", "c", "d", "e"}));
  EXPECT_EQ(arrayByRemovingFirstObject(abc), (Strings{"b", "c"}));
  EXPECT_EQ(arrayByRemovingLastObject(abc), (Strings{"a", "b"}));
  EXPECT_TRUE(arrayByRemovingFirstObject(Strings{}).empty());
  EXPECT_EQ(arrayByRemovingObject(Strings{"a", "b", "a"}, std::string("a")), (Strings{"b"}));
  EXPECT_EQ(arrayByRemovingObjectsInArray(abc, Strings{}), abc);
  EXPECT_TRUE(arrayByRemovingObjectsInArray(Strings{}, abc).empty());
  EXPECT_EQ(arrayByRemovingObjectsInArray(Strings{"a", "b", "c", "a"}, Strings{"a", "c"}), (Strings{"b"}));
  EXPECT_EQ(arrayByRemovingObjectsAtIndexes(abc, MCIndexSet{0, 2}), (Strings{"b"}));
  EXPECT_THROW(arrayByRemovingObjectsAtIndexes(abc, MCIndexSet{3}), std::out_of_range);
  EXPECT_EQ(abc, (Strings{"a", "b", "c"}));

  EXPECT_EQ(filteredArrayUsingBlock(Strings{"a", "bb", "c", "dd", "ee"}, [](const std::string& s, uint64_t i, bool& stop) {
              stop = i == 3;
              return s.size() == 2;
            }),
            (Strings{"bb", "dd"}));
}

TEST(MCArrayExtensions, CountedAndPlainIndexLookupsMatchByValue) {
  EXPECT_EQ(indexesOfObjects(Strings{"A", "A", "B"}, Strings{"A"}), MCIndexSet{0});
  EXPECT_EQ(indexesOfObjects(Strings{"A", "B", "A", "A"}, Strings{"A", "A", "C"}), (MCIndexSet{0, 2}));
  EXPECT_EQ(indexesOfObjectsInArray(Strings{"A", "B", "A"}, Strings{"A"}), (MCIndexSet{0, 2}));

  // Shared objects match by what they point at, as isEqual: does.
  using P = std::shared_ptr<std::string>;
  std::vector<P> ps{std::make_shared<std::string>("x"), std::make_shared<std::string>("y")};
  EXPECT_EQ(indexesOfObjectsInArray(ps, std::vector<P>{std::make_shared<std::string>("y")}), MCIndexSet{1});
  EXPECT_TRUE(isEqualArray(&ps, &ps));
  std::vector<P> copies{std::make_shared<std::string>("x"), std::make_shared<std::string>("y")};
  EXPECT_TRUE(isEqualArray(&ps, &copies));
  EXPECT_FALSE(isEqualArray<P>(&ps, nullptr));
  EXPECT_TRUE(isEqualArray<P>(nullptr, nullptr));
}

TEST(MCMutableArrayExtensions, GroupAndFilterInPlace) {
  Strings s{"A", "B", "A", "C", "B"};
  groupEqualObjects(s);
  EXPECT_EQ(s, (Strings{"A", "A", "B", "B", "C"}));

  // Against a brute-force grouping: first occurrences in order, each followed by its equals.
  std::mt19937 rng(9);
  for (int trial = 0; trial < 200; ++trial) {
    std::vector<int> v(rng() % 30);
    for (auto& x : v) x = int(rng() % 6);
    std::vector<int> expected;
    for (size_t i = 0; i < v.size(); ++i) {
      if (std::find(v.begin(), v.begin() + long(i), v[i]) != v.begin() + long(i)) continue;
      for (int x : v)
        if (x == v[i]) expected.push_back(x);
    }
    groupEqualObjects(v);
    ASSERT_EQ(v, expected);
  }

  std::vector<int> numbers{1, 2, 3, 4, 5, 6};
  groupEqualObjectsUsingComparator(numbers, [](int a, int b) { return a % 3 == b % 3; });
  EXPECT_EQ(numbers, (std::vector<int>{1, 4, 2, 5, 3, 6}));
  filterUsingBlock(numbers, [](int x, uint64_t, bool& stop) {
    stop = x == 5;
    return x % 2 == 0;
  });
  EXPECT_EQ(numbers, (std::vector<int>{4, 2, 3, 6})) << "1 and 5 fail; after the stop the rest stays";
}

TEST(MCIndexSetExtensions, NthIndexAndMissedIndexes) {
  MCIndexSet s{2, 3, 7};
  EXPECT_EQ(indexAtIndex(s, 0), 2u);
  EXPECT_EQ(indexAtIndex(s, 2), 7u);
  EXPECT_EQ(thrownMessage<std::out_of_range>([&] { indexAtIndex(s, 3); }),
            "*** indexAtIndex: index 3 is out of range [0..3]");
  MCIndexSet big(MCRange{1000, 1000000});
  big.addIndexesInRange({5000000, 10});
  EXPECT_EQ(indexAtIndex(big, 1000003), 5000003u);

  MCIndexSet held{3, 4};
  EXPECT_EQ(missedIndexGreaterThanOrEqualToIndex(held, 3, {0, 10}), 5u);
  EXPECT_EQ(missedIndexGreaterThanOrEqualToIndex(held, 1, {0, 10}), 1u);
  EXPECT_EQ(missedIndexGreaterThanOrEqualToIndex(held, 3, {0, 5}), NSNotFound);
  EXPECT_EQ(missedIndexLessThanOrEqualToIndex(held, 4, {0, 10}), 2u);
  EXPECT_EQ(missedIndexLessThanOrEqualToIndex(held, 4, {3, 5}), NSNotFound);
  EXPECT_EQ(missedIndexLessThanOrEqualToIndex(held, 6, {0, 10}), 6u);
  EXPECT_EQ(missedIndexLessThanOrEqualToIndex(MCIndexSet{0, 1}, 1, {0, 10}), NSNotFound);
  EXPECT_EQ(thrownMessage<std::out_of_range>([&] { missedIndexGreaterThanOrEqualToIndex(held, 12, {0, 10}); }),
            "*** missedIndexGreaterThanOrEqualToIndex: index 12 is out of range {0, 10}");
  // Against a walk index by index.
  std::mt19937 rng(4);
  for (int trial = 0; trial < 300; ++trial) {
    MCIndexSet set;
    for (int k = 0; k < 8; ++k) set.addIndexesInRange({rng() % 40, rng() % 5});
    MCRange range{rng() % 20, 1 + rng() % 30};
    uint64_t start = range.location + rng() % range.length;
    uint64_t up = NSNotFound, down = NSNotFound;
    for (uint64_t i = start; i < range.end(); ++i)
      if (!set.containsIndex(i)) {
        up = i;
        break;
      }
    for (uint64_t i = start + 1; i-- > range.location;)
      if (!set.containsIndex(i)) {
        down = i;
        break;
      }
    ASSERT_EQ(missedIndexGreaterThanOrEqualToIndex(set, start, range), up);
    ASSERT_EQ(missedIndexLessThanOrEqualToIndex(set, start, range), down);
  }
  EXPECT_EQ(indexSetByRemovingIndexSet(MCIndexSet{1, 2, 3}, MCIndexSet{2}), (MCIndexSet{1, 3}));
  EXPECT_EQ(indexSetByRemovingIndexSet(MCIndexSet{1}, MCIndexSet{}), MCIndexSet{1});
}

TEST(MCDictionaryExtensions, RecursiveMergeAndTypedReads) {
  MCDictionary first{{"a", 1}, {"nested", MCDictionary{{"x", 1}, {"y", 2}}}, {"only1", "one"}};
  MCDictionary second{{"a", 2}, {"nested", MCDictionary{{"y", 20}, {"z", 30}}}, {"only2", "two"}};
  std::vector<std::string> asked;
  auto preferSecond = [&](const std::string& key, const MCValue&, const MCValue& b) {
    asked.push_back(key);
    return b;
  };
  MCDictionary deep = merge(first, second, true, preferSecond);
  EXPECT_EQ(deep.at("a"), MCValue(2));
  EXPECT_EQ(deep.at("only1"), MCValue("one"));
  EXPECT_EQ(deep.at("only2"), MCValue("two"));
  EXPECT_EQ(deep.at("nested"), MCValue(MCDictionary{{"x", 1}, {"y", 20}, {"z", 30}}));
  EXPECT_EQ(asked, (std::vector<std::string>{"a", "y"}));

  MCDictionary flat = merge(first, second, false, [](const std::string&, const MCValue& a, const MCValue&) { return a; });
  EXPECT_EQ(flat.at("nested"), first.at("nested")) << "without recursion the resolver decides";

  MCDictionary receiver = first;
  mergeWithDictionary(receiver, second, true, preferSecond);
  EXPECT_EQ(receiver, deep);

  MCDictionary d{{"n", 3.5}, {"s", "text"}, {"arr", MCArray{1}}, {"dict", MCDictionary{}}};
  EXPECT_NE(safeNumberForKey(d, "n"), nullptr);
  EXPECT_EQ(safeNumberForKey(d, "s"), nullptr);
  EXPECT_EQ(*safeStringForKey(d, "s"), "text");
  EXPECT_EQ(safeStringForKey(d, "missing"), nullptr);
  EXPECT_NE(safeArrayForKey(d, "arr"), nullptr);
  EXPECT_EQ(safeDictionaryForKey(d, "arr"), nullptr);
  EXPECT_EQ(objectsForKeys(d, {"s", "nope", "n"}), (std::vector<MCValue>{"text", 3.5}));

  std::set<int> numbers{1, 2, 3, 4};
  EXPECT_EQ(filteredSetUsingBlock(numbers, [](int x, bool&) { return x % 2 == 0; }), (std::set<int>{2, 4}));
}
