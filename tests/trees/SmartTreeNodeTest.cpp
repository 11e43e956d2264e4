#include <vesperon/core/MCTypes.h>
#include <vesperon/trees/MCSmartTreeNode.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
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
  auto root = Tree::nodeWithRules({first, second}, {23, 4, 21, 8, 12});
  Tree& tree = *root;
  EXPECT_EQ(outline(tree), "(23,4,21,8,12 {(4,8 {(4,8)})(12 {(12)})(23,21 {(23,21)})})");
  EXPECT_EQ(tree.rules(), (Tree::Rules{first, second}));
  ASSERT_EQ(tree.nodes().size(), 3u);
  EXPECT_EQ(tree.nodes()[0]->rule(), first);
  EXPECT_EQ(tree.nodes()[0]->rules(), (Tree::Rules{second}));
  EXPECT_EQ(tree.nodes()[0]->prototype(), tree.nodes()[2]->prototype());  // one prototype per level

  // Without rules the root keeps its items and has no children, also after additions.
  auto plain = Tree::nodeWithRules({}, {3, 1});
  plain->addItems({2});
  EXPECT_EQ(outline(plain), "(3,1,2)");

  // An empty rule list clears the chain and leaves the children as they were.
  tree.setRules({});
  EXPECT_TRUE(tree.rules().empty());
  EXPECT_EQ(tree.nodes().size(), 3u);
  tree.setRules({second});
  EXPECT_EQ(outline(tree), "(23,4,21,8,12 {(4,8,12)(23,21)})");
}

TEST(SmartTreeNode, SetItemsIgnoresTheArrayItHoldsAndRebuildsForAnyOther) {
  auto tree = Tree::nodeWithRules({tens(), parity()}, {23, 4, 21});
  const Tree::Nodes before = tree->nodes();
  const int* held = tree->items().data();

  // The very array the tree holds: nothing happens, the children are the same objects.
  tree->setItems(tree->items());
  EXPECT_EQ(tree->nodes(), before);
  EXPECT_EQ(tree->items().data(), held);

  // An equal array that is another array is new items: the tree is built anew.
  const std::vector<int> equal = tree->items();
  tree->setItems(equal);
  EXPECT_EQ(outline(*tree), "(23,4,21 {(4 {(4)})(23,21 {(23,21)})})");
  ASSERT_EQ(tree->nodes().size(), 2u);
  EXPECT_NE(tree->nodes()[0], before[0]);
  EXPECT_NE(tree->nodes()[1], before[1]);

  tree->setItems({7});
  EXPECT_EQ(outline(*tree), "(7 {(7 {(7)})})");
}

TEST(SmartTreeNode, AddAndRemoveMergeLikeNodes) {
  auto root = Tree::nodeWithRules({tens(), parity()}, {1, 31});
  Tree& tree = *root;
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
  auto root = Tree::nodeWithRules(rules);
  Tree& tree = *root;
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
    ASSERT_EQ(outline(tree, true), outline(*Tree::nodeWithRules(rules, present), true)) << round;
  }
}

TEST(SmartTreeNode, FilterAndSortInPlaceAndAsNewNodes) {
  auto root = Tree::nodeWithRules({tens()}, {13, 2, 11, 5});
  Tree& tree = *root;
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

  auto otherRoot = Tree::nodeWithRules({tens()}, {13, 2, 11, 5});
  Tree& other = *otherRoot;
  other.sortItemsWithDescriptors({MCSortDescriptor<int>::sortDescriptorWithKey([](const int& i) { return i; }, false)});
  EXPECT_EQ(outline(other), "(13,11,5,2 {(5,2)(13,11)})");  // the children keep their order
  auto ascending = other.sortedNodeWithDescriptors(
      {MCSortDescriptor<int>([](const int& a, const int& b) { return MCCompareValues(a, b); })}, false);
  EXPECT_EQ(outline(ascending), "(2,5,11,13)");
  EXPECT_EQ(text(other.items()), "13,11,5,2");

  other.filterItemsWithPredicate(odd);
  EXPECT_EQ(outline(other), "(13,11,5 {(5)(13,11)})");

  // The recursive sorted node shares the children and prototype and sorts those children in
  // place, as the recursive filter does; the receiver's own items keep their order.
  auto third = Tree::nodeWithRules({tens(), parity()}, {13, 2, 11, 5, 14});
  auto deepSorted = third->sortedNodeWithDescriptors(
      {MCSortDescriptor<int>::sortDescriptorWithKey([](const int& i) { return i; }, false)}, true);
  EXPECT_EQ(outline(deepSorted), "(14,13,11,5,2 {(5,2 {(2)(5)})(14,13,11 {(14)(13,11)})})");
  EXPECT_EQ(deepSorted->nodes(), third->nodes());
  EXPECT_EQ(deepSorted->prototype(), third->prototype());
  EXPECT_EQ(deepSorted->rule(), nullptr);
  EXPECT_EQ(text(third->items()), "13,2,11,5,14");
  EXPECT_EQ(text(third->nodes()[1]->items()), "14,13,11") << "the shared child was sorted";
  EXPECT_EQ(text(third->nodes()[1]->nodes()[1]->items()), "13,11") << "and so were its children";
}

// A subclass whose nodes carry the album they belong to; every node of its trees must be one.
class AlbumNode : public Tree {
 public:
  explicit AlbumNode(std::string album) : album(std::move(album)) {}
  const std::string album;

 protected:
  NodePtr newNode() const override { return std::make_shared<AlbumNode>(album); }
};

// Where a node, its prototype chain or any node below is not an AlbumNode of `album`; empty if none.
std::string foreignNode(const Tree::NodePtr& node, const std::string& album, const std::string& path = "root") {
  auto mine = std::dynamic_pointer_cast<AlbumNode>(node);
  if (!mine || mine->album != album) return path;
  int level = 0;
  for (auto p = node->prototype(); p; p = p->prototype(), ++level) {
    auto prototype = std::dynamic_pointer_cast<AlbumNode>(p);
    if (!prototype || prototype->album != album) return path + " prototype " + std::to_string(level);
  }
  for (size_t i = 0; i < node->nodes().size(); ++i) {
    std::string where = foreignNode(node->nodes()[i], album, path + "/" + std::to_string(i));
    if (!where.empty()) return where;
  }
  return "";
}

TEST(SmartTreeNode, SubclassTreesAreOfTheSubclassAtEveryLevel) {
  auto tree = Tree::nodeWithRules<AlbumNode>({tens(), parity()}, {23, 4, 21, 8, 12}, "trip");
  static_assert(std::is_same_v<decltype(tree), std::shared_ptr<AlbumNode>>);
  EXPECT_EQ(outline(*tree), "(23,4,21,8,12 {(4,8 {(4,8)})(12 {(12)})(23,21 {(23,21)})})");
  ASSERT_EQ(tree->rules().size(), 2u);
  EXPECT_EQ(foreignNode(tree, "trip"), "");

  // Nodes made later come from the same class: new groups merged in, rebuilt trees, copies.
  tree->addItems({35, 36, 7});
  EXPECT_EQ(foreignNode(tree, "trip"), "");
  tree->setRules({parity(), tens()});
  EXPECT_EQ(foreignNode(tree, "trip"), "");
  tree->setItems({1, 2, 3, 40});
  EXPECT_EQ(foreignNode(tree, "trip"), "");
  EXPECT_EQ(foreignNode(tree->copyWithItems({5, 50}), "trip"), "");
  EXPECT_EQ(foreignNode(tree->filteredNodeWithPredicate([](const int&) { return true; }, true), "trip"), "");
  EXPECT_EQ(foreignNode(tree->filteredNodeWithPredicate([](const int&) { return true; }, false), "trip"), "");
  EXPECT_EQ(foreignNode(tree->sortedNodeWithDescriptors({}, true), "trip"), "");

  // A subclass root with rules and no items, filled afterwards.
  auto empty = Tree::nodeWithRules<AlbumNode>({tens()}, {}, "home");
  empty->addItems({1, 11});
  EXPECT_EQ(outline(*empty), "(1,11 {(1)(11)})");
  EXPECT_EQ(foreignNode(empty, "home"), "");
}

TEST(SmartTreeNode, RefusesRootOperationsBelowTheRootAndMismatchedNodes) {
  auto rule = tens();
  auto root = Tree::nodeWithRules({rule}, {1, 12});
  Tree& tree = *root;
  auto child = tree.nodes()[0];
  EXPECT_EQ(thrownMessage([&] { child->addItems({3}); }), "*** MCSmartTreeNode::addItems: must be called on the root node");
  EXPECT_EQ(thrownMessage([&] { child->setRules({}); }), "*** MCSmartTreeNode::setRules: must be called on the root node");
  EXPECT_THROW(child->removeItems({1}), std::logic_error);
  EXPECT_THROW(child->setItems({1}), std::logic_error);
  EXPECT_EQ(thrownMessage([&] { tree.unionNode(nullptr); }), "*** MCSmartTreeNode::unionNode: node must not be nil");
  EXPECT_EQ(thrownMessage([&] { tree.minusNode(child); }), "*** MCSmartTreeNode::minusNode: node's _rule must be equal to the receiver's");
  auto stranger = Tree::nodeWithRules({tens()}, {1});
  EXPECT_EQ(thrownMessage([&] { tree.unionNode(stranger->copyWithItems({5})); }),
            "*** MCSmartTreeNode::unionNode: node's _prototype must be equal to the receiver's");
  EXPECT_EQ(outline(tree), "(1,12 {(1)(12)})");
}

}  // namespace
