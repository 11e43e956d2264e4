#include "PhotoTree.h"

#include <vesperon/trees/MCTreeController.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <stdexcept>
#include <string>

using namespace phototree;

namespace {

TEST(TreeBuilder, GroupsItemsLevelByLevelInRuleOrder) {
  auto builder = dateBuilder();
  auto a = photo("a", 2021, 3, 9), b = photo("b", 2020, 7, 1), c = photo("c", 2021, 3, 2), d = photo("d", 2021, 1, 9),
       e = photo("e", 2021, 3, 9);
  auto root = builder->nodeWithItems({a, b, c, d, e});
  // The root keeps the order given; each level below is in rule order, and items equal under a
  // rule keep their order.
  EXPECT_EQ(outline(root, false), "(a,b,c,d,e {(b {(b {(b)})})(a,c,d,e {(d {(d)})(a,c,e {(c)(a,e)})})})");

  auto first = builder->nodesWithItems({a, b});
  ASSERT_EQ(first.size(), 2u);
  EXPECT_EQ(outline(first[0], false), "(b {(b {(b)})})");
}

TEST(TreeBuilder, EdgeShapes) {
  auto a = photo("a", 2020, 1, 1), b = photo("b", 2021, 2, 2);

  // No rules: the root holds everything and has no children.
  Builder plain;
  EXPECT_EQ(outline(plain.nodeWithItems({b, a}), false), "(b,a)");
  EXPECT_TRUE(plain.nodesWithItems({a, b}).empty());

  // Rules under which everything is equal: one chain, each node with all the items.
  auto same = std::make_shared<KeyRule>([](const Photo&) { return 0; });
  Builder chain(Builder::Rules{same, same});
  EXPECT_EQ(outline(chain.nodeWithItems({a, b}), false), "(a,b {(a,b {(a,b)})})");

  // No items: an empty root without children.
  auto empty = dateBuilder()->nodeWithItems({});
  EXPECT_EQ(empty->countOfItems(), 0u);
  EXPECT_EQ(empty->countOfNodes(), 0u);
}

// A rule that forgets compareNode(): building works, the first update through a controller that
// has to merge children fails.
class HalfRule : public Rule {
 public:
  int compare(const PhotoPtr& a, const PhotoPtr& b) const override { return MCCompareValues(a->year, b->year); }
};

// A node class of its own, to see that rules and builders make the nodes they say.
class TaggedNode : public Node {};
class TaggedRule : public HalfRule {
 public:
  NodePtr makeNode() const override { return std::make_shared<TaggedNode>(); }
};

TEST(TreeBuilder, AbstractComparisonsFailAtFirstUseOnly) {
  auto builder = std::make_shared<Builder>(Builder::Rules{std::make_shared<HalfRule>()});
  auto a = photo("a", 2020, 1, 1), b = photo("b", 2021, 1, 1);
  MCTreeController<PhotoPtr> controller(builder, {a});
  EXPECT_EQ(outline(controller.root(), false), "(a {(a)})");
  EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { controller.insertItems({b}); }),
            "*** MCTreeBuilderRule::compareNode: unrecognized selector sent to instance");

  Rule bare;
  EXPECT_TRUE(bare.nodesWithItems({a}).size() == 1);  // one item needs no comparison
  EXPECT_THROW(bare.nodesWithItems({a, b}), std::invalid_argument);
}

TEST(TreeBuilder, RulesMakeTheirOwnNodeClass) {
  Builder builder(Builder::Rules{std::make_shared<TaggedRule>()});
  auto root = builder.nodeWithItems({photo("a", 2020, 1, 1)});
  EXPECT_EQ(dynamic_cast<TaggedNode*>(root.get()), nullptr);
  ASSERT_EQ(root->countOfNodes(), 1u);
  EXPECT_NE(dynamic_cast<TaggedNode*>(root->nodes()[0].get()), nullptr);
}

}  // namespace
