#pragma once
// MCTreeBuilder<T>: turns a flat list of items into a tree of MCTreeNode by an ordered list of
// MCTreeBuilderRule, one rule a level.
//
// The root holds all the items; the first rule groups them into the root's children, the second
// groups each child's items into grandchildren, and so on. Every level comes in the order of its
// rule, and a node at any level holds the items of its group in that rule's sorted order (equal
// items keep the order they were given in). Without rules the root has no children.
//
//   auto builder = std::make_shared<MCTreeBuilder<PhotoPtr>>(
//       MCTreeBuilder<PhotoPtr>::Rules{std::make_shared<YearRule>(), std::make_shared<MonthRule>()});
//   auto root = builder->nodeWithItems(photos);
//
// MCTreeController keeps such a tree up to date with the same rules. Subclasses may override
// makeNode() (`nodeClass`) to give the root a subclass of MCTreeNode; the levels below are made by
// their rules.

#include <vesperon/trees/MCTreeBuilderRule.h>
#include <vesperon/trees/MCTreeNode.h>

#include <memory>
#include <span>
#include <utility>
#include <vector>

template <typename T>
class MCTreeBuilder {
 public:
  /// The node type.
  using Node = MCTreeNode<T>;
  /// A shared node.
  using NodePtr = std::shared_ptr<Node>;
  /// A list of items.
  using Items = std::vector<T>;
  /// A list of nodes.
  using Nodes = std::vector<NodePtr>;
  /// The rule type.
  using Rule = MCTreeBuilderRule<T>;
  /// A shared rule.
  using RulePtr = std::shared_ptr<Rule>;
  /// The rules, one per level.
  using Rules = std::vector<RulePtr>;

  /// A builder of these rules.
  explicit MCTreeBuilder(Rules rules = {}) : rules_(std::move(rules)) {}
  virtual ~MCTreeBuilder() = default;

  /// The rules, one per level.
  const Rules& rules() const { return rules_; }
  /// Replaces the rules.
  void setRules(Rules rules) { rules_ = std::move(rules); }

  /// `nodeClass`: makes the empty root. The base makes an MCTreeNode.
  virtual NodePtr makeNode() const { return std::make_shared<Node>(); }

  /// A new root holding all `items` in the order given, with the levels of the rules below it.
  NodePtr nodeWithItems(Items items) const {
    NodePtr root = makeNode();
    Nodes children = nodesWithItems(items);
    root->setItems(std::move(items));
    root->setNodes(std::move(children));
    return root;
  }

  /// The first level of the tree of `items` by the builder's rules, each node with its subtree.
  Nodes nodesWithItems(const Items& items) const { return nodesWithItems(items, rules_); }

  /// The first level of the tree of `items` by `rules`, each node with its subtree; no nodes for
  /// no rules.
  Nodes nodesWithItems(const Items& items, std::span<const RulePtr> rules) const {
    if (rules.empty()) return {};
    Nodes nodes = rules.front()->nodesWithItems(items);
    std::span<const RulePtr> lower = rules.subspan(1);
    if (!lower.empty())
      for (const auto& node : nodes) node->setNodes(nodesWithItems(node->items(), lower));
    return nodes;
  }

 private:
  Rules rules_;
};
