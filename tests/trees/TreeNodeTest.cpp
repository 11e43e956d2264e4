#include "PhotoTree.h"

#include <vesperon/core/MCValueObserver.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace phototree;

namespace {

TEST(TreeNode, ChangesThroughTheAccessorsReachObserversOfItemsAndNodes) {
  auto node = std::make_shared<Node>();
  auto a = photo("a", 2020, 1, 1), b = photo("b", 2020, 1, 2), c = photo("c", 2021, 5, 5);
  std::vector<std::string> calls;

  MCValueObserver<Node::Items> items(node, Node::kItemsKeyPath);
  items.setOnSet([&](const auto& o, const auto& n) { calls.push_back("set [" + names(o) + "] [" + names(n) + "]"); });
  items.setOnInsert([&](const auto& n, const MCIndexSet& i) { calls.push_back("insert " + names(n) + " @" + indexes(i)); });
  items.setOnRemove([&](const auto& o, const MCIndexSet& i) { calls.push_back("remove " + names(o) + " @" + indexes(i)); });
  items.setOnReplace([&](const auto& o, const auto& n, const MCIndexSet& i) {
    calls.push_back("replace " + names(o) + ">" + names(n) + " @" + indexes(i));
  });

  node->setItems({a});
  node->insertObjectInItems(c, 0);           // c a
  node->insertItems({b}, MCIndexSet(1));     // c b a
  node->insertItems({a, b}, MCIndexSet(MCRange{3, 2}));  // appended: c b a a b
  node->removeItemsAtIndexes(MCIndexSet{0, 3});          // b a b
  node->replaceItemsAtIndexes(MCIndexSet(2), {c});       // b a c
  EXPECT_EQ(names(node->items()), "b,a,c");
  EXPECT_EQ(node->countOfItems(), 3u);
  EXPECT_EQ(node->objectInItemsAtIndex(2), c);
  EXPECT_EQ(calls, (std::vector<std::string>{"set [] [a]", "insert c @0", "insert b @1", "insert a,b @3,4",
                                             "remove c,a @0,3", "replace b>c @2"}));

  // The children list is observed on its own key path; item observers hear nothing of it.
  calls.clear();
  std::vector<std::string> nodeCalls;
  MCValueObserver<Node::Nodes> nodes(node, Node::kNodesKeyPath);
  nodes.setOnInsert([&](const auto& n, const MCIndexSet& i) { nodeCalls.push_back(std::to_string(n.size()) + " @" + indexes(i)); });
  nodes.setOnRemove([&](const auto& o, const MCIndexSet& i) { nodeCalls.push_back("-" + std::to_string(o.size()) + " @" + indexes(i)); });
  auto x = std::make_shared<Node>(), y = std::make_shared<Node>(), z = std::make_shared<Node>();
  node->insertObjectInNodes(x, 0);
  node->insertNodes({y, z}, MCIndexSet{0, 2});  // y x z
  node->removeNodesAtIndexes(MCIndexSet(1));    // y z
  EXPECT_EQ(node->nodes(), (Node::Nodes{y, z}));
  EXPECT_EQ(node->objectInNodesAtIndex(1), z);
  EXPECT_EQ(nodeCalls, (std::vector<std::string>{"1 @0", "2 @0,2", "-1 @1"}));
  EXPECT_TRUE(calls.empty());

  EXPECT_THROW(node->objectInItemsAtIndex(3), std::out_of_range);
}

TEST(TreeNode, IsDescendantOfItselfAndOfEveryAncestor) {
  auto root = std::make_shared<Node>(), left = std::make_shared<Node>(), right = std::make_shared<Node>();
  auto leaf = std::make_shared<Node>(), stray = std::make_shared<Node>();
  root->setNodes({left, right});
  right->setNodes({leaf});
  EXPECT_TRUE(root->isDescendantOf(root));
  EXPECT_TRUE(leaf->isDescendantOf(root));
  EXPECT_TRUE(leaf->isDescendantOf(right));
  EXPECT_FALSE(leaf->isDescendantOf(left));
  EXPECT_FALSE(root->isDescendantOf(leaf));
  EXPECT_FALSE(stray->isDescendantOf(root));
  EXPECT_FALSE(root->isDescendantOf(NodePtr()));
}

}  // namespace
