#include <vesperon/core/MCRedBlackTree.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <cmath>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {
int compareInts(const int& a, const int& b) { return MCCompareValues(a, b); }

struct Tagged {
  int key;
  std::string tag;
};
using TaggedPtr = std::shared_ptr<Tagged>;
int compareTagged(const TaggedPtr& a, const TaggedPtr& b) { return MCCompareValues(a->key, b->key); }
}  // namespace

TEST(MCRedBlackTree, RefusesDuplicatesKeepingTheFirstAndHandlesEmptyTrees) {
  MCRedBlackTree<TaggedPtr> tree(compareTagged);
  EXPECT_EQ(tree.minObject(), nullptr);
  EXPECT_EQ(tree.maxObject(), nullptr);
  tree.removeMinObject();
  tree.removeMaxObject();
  EXPECT_EQ(tree.count(), 0u);

  auto first = std::make_shared<Tagged>(Tagged{1, "first"});
  auto second = std::make_shared<Tagged>(Tagged{1, "second"});
  EXPECT_TRUE(tree.insertObject(first));
  EXPECT_FALSE(tree.insertObject(second));
  EXPECT_EQ(tree.count(), 1u);
  EXPECT_EQ(tree.minObject()->tag, "first");
  EXPECT_EQ(second.use_count(), 1) << "the refused object is not held";

  EXPECT_FALSE(tree.removeObject(std::make_shared<Tagged>(Tagged{9, ""})));
  EXPECT_EQ(tree.count(), 1u);
  EXPECT_TRUE(tree.removeObject(second)) << "found by comparator, not by pointer";
  EXPECT_EQ(tree.count(), 0u);

  EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { tree.insertObject(nullptr); }),
            "*** MCRedBlackTree::insertObject: object must not be nil");
  EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { tree.removeObject(nullptr); }),
            "*** MCRedBlackTree::removeObject: object must not be nil");
  EXPECT_EQ(MCRedBlackTree<int>::create(nullptr), nullptr);
  EXPECT_FALSE(MCRedBlackTree<int>(compareInts).minObject().has_value());
}

TEST(MCRedBlackTree, MatchesStdSetThroughRandomInsertsAndRemovals) {
  MCRedBlackTree<int> tree(compareInts);
  std::set<int> model;
  std::mt19937 rng(1234);
  for (int step = 0; step < 20000; ++step) {
    int v = int(rng() % 2000);
    switch (rng() % 5) {
      case 0:
        EXPECT_EQ(tree.removeObject(v), model.erase(v) == 1);
        break;
      case 1:
        tree.removeMinObject();
        if (!model.empty()) model.erase(model.begin());
        break;
      case 2:
        tree.removeMaxObject();
        if (!model.empty()) model.erase(std::prev(model.end()));
        break;
      default:
        EXPECT_EQ(tree.insertObject(v), model.insert(v).second);
    }
    if (step % 1000 == 0) {
      ASSERT_TRUE(tree.isValid()) << "at step " << step;
    }
  }
  ASSERT_TRUE(tree.isValid());
  EXPECT_EQ(tree.array(), std::vector<int>(model.begin(), model.end()));
  EXPECT_EQ(std::vector<int>(tree.begin(), tree.end()), tree.array());
  if (!model.empty()) {
    ASSERT_TRUE(tree.minObject().has_value());
    EXPECT_EQ(*tree.minObject(), *model.begin());
    EXPECT_EQ(*tree.maxObject(), *model.rbegin());
  }
  for (int probe = 0; probe < 2000; probe += 7) {
    EXPECT_EQ(tree.containsObject(probe), model.count(probe) == 1);
  }
}

TEST(MCRedBlackTree, StaysBalancedUnderSortedInput) {
  for (bool ascending : {true, false}) {
    MCRedBlackTree<int> tree(compareInts);
    const int n = 1 << 14;
    for (int i = 0; i < n; ++i) tree.insertObject(ascending ? i : n - i);
    ASSERT_TRUE(tree.isValid());
    EXPECT_LE(tree.height(), uint64_t(2 * std::log2(n + 1))) << "a plain search tree would be " << n << " deep";
    // Draining from one end must keep it balanced too.
    for (int i = 0; i < n / 2; ++i) tree.removeMinObject();
    ASSERT_TRUE(tree.isValid());
    EXPECT_LE(tree.height(), uint64_t(2 * std::log2(n / 2 + 1)));
    EXPECT_EQ(tree.count(), uint64_t(n / 2));
  }
}

TEST(MCRedBlackTree, ReleasesObjectsInAscendingOrderOnDestruction) {
  std::vector<int> released;
  {
    MCRedBlackTree<std::shared_ptr<int>> tree(
        [](const std::shared_ptr<int>& a, const std::shared_ptr<int>& b) { return MCCompareValues(*a, *b); });
    for (int v : {5, 3, 9, 1, 7, 2, 8}) {
      tree.insertObject(std::shared_ptr<int>(new int(v), [&released](int* p) {
        released.push_back(*p);
        delete p;
      }));
    }
    EXPECT_TRUE(released.empty());
  }
  EXPECT_EQ(released, (std::vector<int>{1, 2, 3, 5, 7, 8, 9}));
}
