#include <vesperon/core/MCSortedArray.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <algorithm>
#include <memory>
#include <random>
#include <set>
#include <string>

namespace {
int compareInts(const int& a, const int& b) { return MCCompareValues(a, b); }
}  // namespace

TEST(MCSortedArray, StaysInOrderThroughRandomInsertsAndRemovalsLikeAMultiset) {
  EXPECT_EQ(MCSortedArray<int>::create(nullptr), nullptr);
  EXPECT_NE(MCSortedArray<int>::create(compareInts), nullptr);
  // Compare by value / 4 so that many distinct values are comparator-equal.
  MCSortedArray<int> array([](const int& a, const int& b) { return MCCompareValues(a / 4, b / 4); });
  std::multiset<int> model;
  std::mt19937 rng(42);
  for (int step = 0; step < 4000; ++step) {
    int v = int(rng() % 400);
    if (rng() % 3 == 0) {
      array.removeObject(v);
      std::erase_if(model, [&](int m) { return m / 4 == v / 4; });
    } else {
      array.insertObject(v);
      model.insert(v);
    }
  }
  ASSERT_EQ(array.count(), model.size());
  std::multiset<int> held(array.begin(), array.end());
  EXPECT_EQ(held, model) << "no entry lost or duplicated";
  for (uint64_t i = 1; i < array.count(); ++i) EXPECT_LE(array[i - 1] / 4, array[i] / 4);
  // indexOfObject answers the first of a run of comparator-equal objects, or not-found for none.
  for (int key = 0; key < 100; ++key) {
    uint64_t index = array.indexOfObject(key * 4);
    bool held = std::any_of(model.begin(), model.end(), [&](int m) { return m / 4 == key; });
    ASSERT_EQ(index != NSNotFound, held) << key;
    if (!held) continue;
    EXPECT_EQ(array[index] / 4, key);
    if (index > 0) {
      EXPECT_LT(array[index - 1] / 4, key);
    }
  }
}

TEST(MCSortedArray, RefusesNilAndDistinguishesEqualFromIdentical) {
  using Ptr = std::shared_ptr<std::string>;
  MCSortedArray<Ptr> array([](const Ptr& a, const Ptr& b) { return MCCompareValues(a->size(), b->size()); });
  EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { array.insertObject(nullptr); }),
            "*** MCSortedArray::insertObject: object must not be nil");
  EXPECT_THROW(array.removeObject(nullptr), std::invalid_argument);
  EXPECT_THROW(array.removeObjectEqualTo(nullptr), std::invalid_argument);
  EXPECT_THROW(array.removeObjectIdenticalTo(nullptr), std::invalid_argument);
  EXPECT_THROW(array.indexOfObject(nullptr), std::invalid_argument);

  auto a1 = std::make_shared<std::string>("ab");
  auto a2 = std::make_shared<std::string>("ab");
  auto b = std::make_shared<std::string>("xy");  // comparator-equal to "ab", not equal
  array.insertObject(a1);
  array.insertObject(a2);
  array.insertObject(b);
  array.removeObjectIdenticalTo(a1);
  EXPECT_EQ(array.count(), 2u);
  array.removeObjectEqualTo(std::make_shared<std::string>("ab"));  // a fresh pointer, equal text
  ASSERT_EQ(array.count(), 1u);
  EXPECT_EQ(array[0], b);
  EXPECT_EQ(thrownMessage<std::out_of_range>([&] { array.objectAtIndex(3); }),
            "*** MCSortedArray::objectAtIndex: index 3 is out of range [0..1]");
  int calls = 0;
  array.enumerateObjectsUsingBlock([&](const Ptr&, uint64_t, bool& stop) {
    ++calls;
    stop = true;
  });
  EXPECT_EQ(calls, 1);
  array.removeAllObjects();
  EXPECT_TRUE(array.empty());
}
