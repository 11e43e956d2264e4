#pragma once
// MCSmartTreeNode<T>: a self-building tree of items. A list of MCSmartTreeRule says how items are
// grouped at each level: the first rule groups the root's items into children, the second groups
// each child's items into grandchildren, and so on. Items can be added, removed, filtered and
// sorted, and the tree keeps its shape by merging like nodes instead of rebuilding.
//
//   auto tree = MCSmartTreeNode<PhotoPtr>::nodeWithRules(rules, photos);
//   tree->addItems({newPhoto});       // merged into the groups it falls in
//   tree->removeItems({oldPhoto});    // a group that empties goes; the root stays
//
// Shape. A root has no rule; every node below has the rule that made its group, and a
// `prototype`: the head of a chain of item-less nodes, one per remaining rule, shared by all nodes
// of a level, from which the next level's nodes are made. The items of a node's children together
// are the node's items; children stand in the order of the next rule on their first items.
// A node's own items keep the order they were given in; a child's items are in its rule's order.
//
// Failures. setRules, setItems, addItems and removeItems on a node with a rule raise
// std::logic_error "*** MCSmartTreeNode::<operation>: must be called on the root node".
// unionNode and minusNode raise std::invalid_argument for a null node ("node must not be nil"),
// for a node of another rule ("node's _rule must be equal to the receiver's") and for a node of
// another prototype ("node's _prototype must be equal to the receiver's"); rules and prototypes
// are compared by identity.
//
// Items are matched with == and std::hash<T> (for shared pointers: identity). No locks: a tree
// belongs to one thread at a time.

#include <vesperon/core/MCArrayExtensions.h>
#include <vesperon/core/MCSortDescriptor.h>
#include <vesperon/trees/MCItemPredicate.h>
#include <vesperon/trees/MCSmartTreeRule.h>
#include <vesperon/trees/MCTreeItemSet.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

template <typename T>
class MCSmartTreeNode {
 public:
  /// A shared node.
  using NodePtr = std::shared_ptr<MCSmartTreeNode>;
  /// A list of nodes.
  using Nodes = std::vector<NodePtr>;
  /// A list of items.
  using Items = std::vector<T>;
  /// The rule type.
  using Rule = MCSmartTreeRule<T>;
  /// A shared rule.
  using RulePtr = std::shared_ptr<Rule>;
  /// A list of rules, one per level.
  using Rules = std::vector<RulePtr>;
  /// How items are sorted within a node.
  using SortDescriptors = std::vector<MCSortDescriptor<T>>;

  /// A root without rules, items or children.
  MCSmartTreeNode() = default;

  /// A root of class `Node` (this class or a subclass) made from `args`, then given the prototype
  /// chain of `rules` and `items`, with its tree built:
  ///
  ///   auto tree = MCSmartTreeNode<PhotoPtr>::nodeWithRules(rules, photos);
  ///   auto mine = MCSmartTreeNode<PhotoPtr>::nodeWithRules<AlbumNode>(rules, photos, albumName);
  ///
  /// The prototypes and every child come from newNode(), which is virtual; a constructor cannot
  /// build them, because while the base constructor runs the object is not yet of the subclass
  /// and newNode() would give plain MCSmartTreeNode. So a tree with rules is always made whole
  /// first and built afterwards, here.
  template <typename Node = MCSmartTreeNode, typename... Args>
  static std::shared_ptr<Node> nodeWithRules(const Rules& rules, Items items = {}, Args&&... args) {
    static_assert(std::is_base_of_v<MCSmartTreeNode, Node>, "a smart tree node class");
    auto node = std::make_shared<Node>(std::forward<Args>(args)...);
    MCSmartTreeNode& root = *node;
    root.prototype_ = root.prototypeWithRules(rules);
    root.items_ = std::move(items);
    root.buildTree();
    return node;
  }

  MCSmartTreeNode(const MCSmartTreeNode&) = delete;
  MCSmartTreeNode& operator=(const MCSmartTreeNode&) = delete;
  virtual ~MCSmartTreeNode() = default;

  // --- Reading

  /// The rule of this node's group; null on a root.
  const RulePtr& rule() const { return rule_; }
  /// The node's items.
  const Items& items() const { return items_; }
  /// The child nodes.
  const Nodes& nodes() const { return nodes_; }
  /// Head of the chain for the next level down; null when no rules are left.
  const NodePtr& prototype() const { return prototype_; }
  /// The rules of the chain from the prototype on: on a root the rules given, below the rest.
  Rules rules() const {
    Rules rules;
    for (const MCSmartTreeNode* p = prototype_.get(); p; p = p->prototype_.get()) rules.push_back(p->rule_);
    return rules;
  }
  /// Whether this is the root (it has no rule).
  bool isRoot() const { return rule_ == nullptr; }

  // --- Root operations

  /// A new prototype chain, and the tree rebuilt by it. With no rules the children stay as they are.
  void setRules(const Rules& rules) {
    requireRoot("setRules");
    prototype_ = prototypeWithRules(rules);
    buildTree();
  }
  /// New items, and the tree rebuilt. Given the very array the tree holds (`setItems(items())`)
  /// it does nothing; an equal array that is another array is new items and rebuilds the tree.
  void setItems(const Items& items) {
    requireRoot("setItems");
    if (&items == &items_) return;
    items_ = items;
    buildTree();
  }
  /// New items, moved in, and the tree rebuilt.
  void setItems(Items&& items) {
    requireRoot("setItems");
    if (&items == &items_) return;
    items_ = std::move(items);
    buildTree();
  }
  /// Merges the tree of `items` into this one. An item given again stands twice.
  void addItems(const Items& items) {
    requireRoot("addItems");
    unionNode(copyWithItems(items));
  }
  /// Takes every item equal to one of `items` out of the tree; groups left empty go.
  void removeItems(const Items& items) {
    requireRoot("removeItems");
    minusNode(copyWithItems(items));
  }

  // --- Building

  /// Groups the items by the prototype's rule into children, each with its subtree. Does nothing
  /// without a prototype.
  void buildTree() {
    if (!prototype_) return;
    auto groups = splitArraysUsingComparator(items_, prototype_->rule_->comparator());
    Nodes children;
    children.reserve(groups.size());
    for (auto& group : groups) children.push_back(prototype_->copyWithItems(std::move(group)));
    nodes_ = std::move(children);
  }

  /// The chain of item-less nodes for `rules`, last rule first; null for no rules.
  NodePtr prototypeWithRules(const Rules& rules) const {
    NodePtr next;
    for (auto it = rules.rbegin(); it != rules.rend(); ++it) {
      NodePtr node = newNode();
      node->rule_ = *it;
      node->prototype_ = next;
      next = node;
    }
    return next;
  }

  /// A node of this node's rule and prototype holding `items`, with its tree built.
  NodePtr copyWithItems(Items items) const {
    NodePtr node = newNode();
    node->rule_ = rule_;
    node->prototype_ = prototype_;
    node->items_ = std::move(items);
    node->buildTree();
    return node;
  }

  // --- Union and minus

  /// Merges a node of the same rule and prototype into this one, level by level.
  void unionNode(const NodePtr& node) {
    checkShape(node, "unionNode");
    unionItems(node->items_);
    unionNodes(node->nodes_);
  }
  /// Appends the items, without a duplicate check.
  void unionItems(const Items& items) { items_.insert(items_.end(), items.begin(), items.end()); }
  /// Merges each node into the child of its group, or inserts it in order as a new child.
  void unionNodes(const Nodes& nodes) {
    if (nodes.empty()) return;
    if (!prototype_) throw std::logic_error("*** MCSmartTreeNode::unionNodes: the node has no rules for children");
    const auto& compare = prototype_->rule_->comparator();
    auto nodeCompare = [&](const NodePtr& a, const NodePtr& b) { return compare(a->items_.front(), b->items_.front()); };
    Nodes working = nodes_;
    for (const auto& node : nodes) {
      if (node->items_.empty()) continue;
      uint64_t hit = binarySearchWithBlock(working, [&](const NodePtr& candidate) {
        return compare(node->items_.front(), candidate->items_.front());
      });
      if (hit != NSNotFound) {
        working[hit]->unionNode(node);
      } else {
        working.insert(working.begin() + insertionIndexForObject(working, node, nodeCompare), node);
      }
    }
    nodes_ = std::move(working);
  }

  /// Takes a node of the same rule and prototype out of this one, level by level.
  void minusNode(const NodePtr& node) {
    checkShape(node, "minusNode");
    minusItems(node->items_);
    minusNodes(node->nodes_);
  }
  /// Removes every item equal to one of `items`.
  void minusItems(const Items& items) {
    if (items.empty() || items_.empty()) return;
    mc_detail::MCTreeItemSet<T> gone(items.begin(), items.end());
    std::erase_if(items_, [&](const T& item) { return gone.contains(item); });
  }
  /// Takes each node out of the child of its group; children left without items go.
  void minusNodes(const Nodes& nodes) {
    if (nodes.empty() || !prototype_) return;
    const auto& compare = prototype_->rule_->comparator();
    Nodes working = nodes_;
    for (const auto& node : nodes) {
      if (node->items_.empty()) continue;
      uint64_t hit = binarySearchWithBlock(working, [&](const NodePtr& candidate) {
        return compare(node->items_.front(), candidate->items_.front());
      });
      if (hit == NSNotFound) continue;
      working[hit]->minusNode(node);
      if (working[hit]->items_.empty()) working.erase(working.begin() + hit);
    }
    nodes_ = std::move(working);
  }

  // --- Filter and sort

  /// Keeps the items that pass, here and below; children left without items go.
  void filterItemsWithPredicate(const MCItemPredicate<T>& predicate) {
    std::erase_if(items_, [&](const T& item) { return !predicate(item); });
    for (const auto& child : nodes_) child->filterItemsWithPredicate(predicate);
    std::erase_if(nodes_, [](const NodePtr& child) { return child->items_.empty(); });
  }
  /// A new node of this rule with the items that pass. Recursively, it shares this node's children
  /// and prototype and filters those children in place (this node's own lists stay as they are);
  /// otherwise it has no children and no prototype.
  NodePtr filteredNodeWithPredicate(const MCItemPredicate<T>& predicate, bool recursively) const {
    NodePtr node = shallowCopy(recursively);
    node->filterItemsWithPredicate(predicate);
    return node;
  }

  /// Sorts the items here and below by the descriptors; the order of the children stays.
  void sortItemsWithDescriptors(const SortDescriptors& descriptors) {
    auto compare = MCComparatorWithSortDescriptors(descriptors);
    sortItems(compare);
  }
  /// A new node sorted by the descriptors, sharing children as filteredNodeWithPredicate does.
  NodePtr sortedNodeWithDescriptors(const SortDescriptors& descriptors, bool recursively) const {
    NodePtr node = shallowCopy(recursively);
    node->sortItemsWithDescriptors(descriptors);
    return node;
  }

 protected:
  /// `the receiver's class`: makes an empty node of the same class. Subclasses override it so
  /// that the prototypes and nodes of their trees are of their class (and carry whatever state the
  /// subclass gives its nodes); their roots come from nodeWithRules<Subclass>.
  virtual NodePtr newNode() const { return std::make_shared<MCSmartTreeNode>(); }

 private:
  void requireRoot(const char* operation) const {
    if (rule_) throw std::logic_error(std::string("*** MCSmartTreeNode::") + operation + ": must be called on the root node");
  }
  void checkShape(const NodePtr& node, const char* operation) const {
    auto fail = [&](const char* what) {
      throw std::invalid_argument(std::string("*** MCSmartTreeNode::") + operation + ": " + what);
    };
    if (!node) fail("node must not be nil");
    if (node->rule_ != rule_) fail("node's _rule must be equal to the receiver's");
    if (node->prototype_ != prototype_) fail("node's _prototype must be equal to the receiver's");
  }
  NodePtr shallowCopy(bool recursively) const {
    NodePtr node = newNode();
    node->rule_ = rule_;
    node->items_ = items_;
    if (recursively) {
      node->nodes_ = nodes_;
      node->prototype_ = prototype_;
    }
    return node;
  }
  template <typename Compare>
  void sortItems(const Compare& compare) {
    std::stable_sort(items_.begin(), items_.end(), [&](const T& a, const T& b) { return compare(a, b) < 0; });
    for (const auto& child : nodes_) child->sortItems(compare);
  }

  RulePtr rule_;
  Items items_;
  Nodes nodes_;
  NodePtr prototype_;
};
