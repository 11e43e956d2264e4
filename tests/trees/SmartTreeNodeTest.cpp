#include <vesperon/core/MCTypes.h>
#include <vesperon/trees/MCSmartTreeNode.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Items are numbers: the first rule groups by tens, the second by units parity.
using Tree = MCSmartTreeNode<int>;
using Rule = MCSmartTreeRule<int>;

std::shared_ptr<Rule> tens() {
  return std::make_shared<Rule>([](const int& a, const int& b) { return MCCompareValues(a / 10, b / 10); });
}
std::shared_ptr<Rule> parity() {
  return std::make_shared<Rule>([](const int& a, const int& b) { return MCCompareValues(a % 2, b % 2); });
}

std::string text(const std::vector<int>& items) {
  std::string s;
  for (int i : items) s += (s.empty() ? "" : ",") + std::to_string(i);
  return s;
}
// The tree as one line, each node's items in braces after it; items sorted when `sorted`.
std::string outline(const Tree& tree, bool sorted = false) {
  auto items = tree.items();
  if (sorted) std::sort(items.begin(), items.end());
  std::string s = "(" + text(items);
  if (!tree.nodes().empty()) {
    s += " {";
    for (const auto& child : tree.nodes()) s += outline(*child, sorted);
    s += "}";
  }
  return s + ")";
}
std::string outline(const Tree::NodePtr& node) { return outline(*node); }

TEST(SmartTreeNode, BuildsLevelsByTheRules) {
  auto first = tens(), second = parity();
  Tree tree({first, second}, {23, 4, 21, 8, 12});
  EXPECT_EQ(outline(tree), "(23,4,21,8,12 {(4,8 {(4,8)})(12 {(12)})(23,21 {(23,21)})})");
  EXPECT_EQ(tree.rules(), (Tree::Rules{first, second}));
  ASSERT_EQ(tree.nodes().size(), 3u);
  EXPECT_EQ(tree.nodes()[0]->rule(), first);
  EXPECT_EQ(tree.nodes()[0]->rules(), (Tree::Rules{second}));
  EXPECT_EQ(tree.nodes()[0]->prototype(), tree.nodes()[2]->prototype());  // one prototype per level

  // Without rules the root keeps its items and has no children, also after additions.
  Tree plain(Tree::Rules{}, {3, 1});
  plain.addItems({2});
  EXPECT_EQ(outline(plain), "(3,1,2)");

  // An empty rule list clears the chain and leaves the children as they were.
  tree.setRules({});
  EXPECT_TRUE(tree.rules().empty());
  EXPECT_EQ(tree.nodes().size(), 3u);
  tree.setRules({second});
  EXPECT_EQ(outline(tree), "(23,4,21,8,12 {(4,8,12)(23,21)})");
}

TEST(SmartTreeNode, AddAndRemoveMergeLikeNodes) {
  Tree tree({tens(), parity()}, {1, 31});
  tree.addItems({15, 2, 14, 2});  // a new group between two others; an item added twice stands twice
  EXPECT_EQ(outline(tree), "(1,31,15,2,14,2 {(1,2,2 {(2,2)(1)})(15,14 {(14)(15)})(31 {(31)})})");
  // Removal by equality takes both.
  tree.removeItems({2});
  EXPECT_EQ(outline(tree.nodes()[0]), "(1 {(1)})");

  // The last item of a group takes its node along; an unknown group changes nothing.
  tree.removeItems({15, 14, 77});
  EXPECT_EQ(outline(tree), "(1,31 {(1 {(1)})(31 {(31)})})");
  tree.removeItems({1, 31});
  EXPECT_EQ(outline(tree), "()");
}

TEST(SmartTreeNode, RandomAddsAndRemovesMatchAFreshBuild) {
  std::mt19937 random(7);
  auto rules = Tree::Rules{tens(), parity()};
  Tree tree(rules);
  std::vector<int> present;
  for (int round = 0; round < 200; ++round) {
    std::vector<int> batch;
    if (random() % 2 || present.empty()) {
      for (int i = 0; i < 3; ++i) batch.push_back(int(random() % 60));
      present.insert(present.end(), batch.begin(), batch.end());
      tree.addItems(batch);
    } else {
      batch.push_back(present[random() % present.size()]);
      std::erase(present, batch[0]);
      tree.removeItems(batch);
    }
    // The root keeps the order the items came in; below it, the same groups as a fresh build.
    ASSERT_EQ(tree.items(), present) << round;
    ASSERT_EQ(outline(tree, true), outline(Tree(rules, present), true)) << round;
  }
}

TEST(SmartTreeNode, FilterAndSortInPlaceAndAsNewNodes) {
  Tree tree({tens()}, {13, 2, 11, 5});
  auto odd = [](const int& i) { return i % 2 == 1; };

  auto flat = tree.filteredNodeWithPredicate(odd, false);
  EXPECT_EQ(outline(flat), "(13,11,5)");
  EXPECT_EQ(flat->prototype(), nullptr);
  EXPECT_EQ(outline(tree), "(13,2,11,5 {(2,5)(13,11)})");  // untouched

  auto deep = tree.filteredNodeWithPredicate([](const int& i) { return i > 10; }, true);
  EXPECT_EQ(outline(deep), "(13,11 {(13,11)})");
  // The recursive form shares the children and filters them in place; the receiver's own lists
  // stay as they were.
  EXPECT_EQ(text(tree.items()), "13,2,11,5");
  EXPECT_EQ(tree.nodes().size(), 2u);
  EXPECT_EQ(text(tree.nodes()[0]->items()), "");

  Tree other({tens()}, {13, 2, 11, 5});
  other.sortItemsWithDescriptors({MCSortDescriptor<int>::sortDescriptorWithKey([](const int& i) { return i; }, false)});
  EXPECT_EQ(outline(other), "(13,11,5,2 {(5,2)(13,11)})");  // the children keep their order
  auto ascending = other.sortedNodeWithDescriptors(
      {MCSortDescriptor<int>([](const int& a, const int& b) { return MCCompareValues(a, b); })}, false);
  EXPECT_EQ(outline(ascending), "(2,5,11,13)");
  EXPECT_EQ(text(other.items()), "13,11,5,2");

  other.filterItemsWithPredicate(odd);
  EXPECT_EQ(outline(other), "(13,11,5 {(5)(13,11)})");
}

TEST(SmartTreeNode, RefusesRootOperationsBelowTheRootAndMismatchedNodes) {
  auto rule = tens();
  Tree tree({rule}, {1, 12});
  auto child = tree.nodes()[0];
  EXPECT_EQ(thrownMessage([&] { child->addItems({3}); }), "*** MCSmartTreeNode::addItems: must be called on the root node");
  EXPECT_EQ(thrownMessage([&] { child->setRules({}); }), "*** MCSmartTreeNode::setRules: must be called on the root node");
  EXPECT_THROW(child->removeItems({1}), std::logic_error);
  EXPECT_THROW(child->setItems({1}), std::logic_error);
  EXPECT_EQ(thrownMessage([&] { tree.unionNode(nullptr); }), "*** MCSmartTreeNode::unionNode: node must not be nil");
  EXPECT_EQ(thrownMessage([&] { tree.minusNode(child); }), "*** MCSmartTreeNode::minusNode: node's _rule must be equal to the receiver's");
  Tree stranger({tens()}, {1});
  EXPECT_EQ(thrownMessage([&] { tree.unionNode(stranger.copyWithItems({5})); }),
            "*** MCSmartTreeNode::unionNode: node's _prototype must be equal to the receiver's");
  EXPECT_EQ(outline(tree), "(1,12 {(1)(12)})");
}

}  // namespace
