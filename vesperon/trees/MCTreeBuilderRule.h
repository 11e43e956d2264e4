#pragma once
// MCTreeBuilderRule<T>: one level of a rule-built tree. A rule says which items belong together
// (compare() answers 0 for them) and in which order the groups, and so the nodes, stand.
//
// A concrete rule overrides both compare() and compareNode(), and the two must agree: the order
// of two nodes is the order of their items, since MCTreeController merges the present children of
// a node with freshly made ones by compareNode(). The base versions raise std::invalid_argument
// "*** MCTreeBuilderRule::compare: unrecognized selector sent to instance" (or `MCTreeBuilderRule::compareNode`), so
// a rule that forgets compareNode() still builds trees and fails at the first update through a
// controller.
//
// Order nodes by a key they keep from when they were made, not by their present first item: when
// an item's sort key changes (MCTreeController::updateItems), the item still stands in its old
// nodes, and a node ordered by it would claim to be its new group. Override nodeWithItems() to
// make a node that remembers its key:
//
//   struct YearNode : MCTreeNode<PhotoPtr> { int year = 0; };
//   struct YearRule : MCTreeBuilderRule<PhotoPtr> {
//     NodePtr nodeWithItems(Items items) const override {
//       auto node = std::make_shared<YearNode>();
//       node->year = items.front()->year;
//       node->setItems(std::move(items));
//       return node;
//     }
//     int compare(const PhotoPtr& a, const PhotoPtr& b) const override {
//       return MCCompareValues(a->year, b->year);
//     }
//     int compareNode(const NodePtr& a, const NodePtr& b) const override {
//       return MCCompareValues(static_cast<YearNode&>(*a).year, static_cast<YearNode&>(*b).year);
//     }
//   };
//
// Rules have no state of their own here; subclasses may keep what they compare by.

#include <vesperon/core/MCArrayExtensions.h>
#include <vesperon/trees/MCTreeNode.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

template <typename T>
class MCTreeBuilderRule {
 public:
  /// The node type.
  using Node = MCTreeNode<T>;
  /// A shared node.
  using NodePtr = std::shared_ptr<Node>;
  /// A list of items.
  using Items = std::vector<T>;
  /// A list of nodes.
  using Nodes = std::vector<NodePtr>;

  virtual ~MCTreeBuilderRule() = default;

  /// `nodeClass`: makes an empty node of the class this rule's nodes have. Override to give the
  /// tree a subclass of MCTreeNode.
  virtual NodePtr makeNode() const { return std::make_shared<Node>(); }

  /// A new node holding `items`, with no children.
  virtual NodePtr nodeWithItems(Items items) const {
    NodePtr node = makeNode();
    node->setItems(std::move(items));
    return node;
  }

  /// One node per group of items that compare() finds equal, in compare() order; none for no items.
  virtual Nodes nodesWithItems(const Items& items) const {
    Nodes nodes;
    auto groups = splitArraysUsingComparator(items, [this](const T& a, const T& b) { return compare(a, b); });
    nodes.reserve(groups.size());
    for (auto& group : groups) nodes.push_back(nodeWithItems(std::move(group)));
    return nodes;
  }

  /// Compares two items: -1, 0 or 1. Abstract: the base raises.
  virtual int compare(const T& /*a*/, const T& /*b*/) const { unrecognized("compare"); }

  /// Compares two nodes of this level in the order compare() gives their items. Abstract: the
  /// base raises.
  virtual int compareNode(const NodePtr& /*a*/, const NodePtr& /*b*/) const { unrecognized("compareNode"); }

 private:
  [[noreturn]] static void unrecognized(const char* operation) {
    throw std::invalid_argument(std::string("*** MCTreeBuilderRule::") + operation +
                                ": unrecognized selector sent to instance");
  }
};
