#pragma once
// MCTreeNode<T>: a node of a rule-built tree — a list of items and a list of child nodes.
//
// A node holds every item that any of its descendants holds; the root holds them all. Nodes have
// no parent link. MCTreeBuilder makes trees of them and MCTreeController keeps one up to date.
//
// Both lists are observable under the key paths "items" and "nodes": a change made through the
// accessors below reaches an MCValueObserver<std::vector<T>> on "items" or an
// MCValueObserver<MCTreeNode<T>::Nodes> on "nodes", with the four kinds of change of
// MCKeyValueChange (setItems / setNodes report a setting):
//
//   auto node = std::make_shared<MCTreeNode<Photo>>();
//   MCValueObserver<std::vector<Photo>> observer(node, MCTreeNode<Photo>::kItemsKeyPath);
//   observer.setOnInsert([](const auto& photos, const MCIndexSet& at) { … });
//   node->insertObjectInItems(photo, 0);   // onInsert({photo}, {0})
//
// Items are values of T (typically a shared pointer to the application's item); the trees match
// them with == and std::hash<T>, which for shared pointers is the identity of the object. A node
// has identity and is held by std::shared_ptr; it is neither copied nor moved. An index out of
// range raises std::out_of_range "*** MCObservableArray::<operation>: index … is out of range".
// No locks: one thread at a time.

#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCObservableArray.h>
#include <vesperon/core/MCObservableObject.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

template <typename T>
class MCTreeNode : public MCObservableObject {
 public:
  /// The type of the items.
  using Item = T;
  /// A list of items.
  using Items = std::vector<T>;
  /// A shared node.
  using NodePtr = std::shared_ptr<MCTreeNode>;
  /// A list of nodes.
  using Nodes = std::vector<NodePtr>;

  /// The key path observers name the items by.
  static constexpr const char* kItemsKeyPath = "items";
  /// The key path observers name the child nodes by.
  static constexpr const char* kNodesKeyPath = "nodes";

  /// Both lists empty.
  MCTreeNode() = default;
  ~MCTreeNode() override = default;

  // --- The lists as a whole

  /// The items this node holds, itself and below.
  const Items& items() const { return items_.array(); }
  /// Replaces the items (a setting change).
  void setItems(Items items) { items_.setArray(std::move(items)); }
  /// The child nodes, in the order of the rule that made them.
  const Nodes& nodes() const { return nodes_.array(); }
  /// Replaces the child nodes (a setting change).
  void setNodes(Nodes nodes) { nodes_.setArray(std::move(nodes)); }

  // --- Observable accessors of `items`

  /// How many items the node holds.
  uint64_t countOfItems() const { return items_.count(); }
  /// The item at `index`; past the end raises std::out_of_range.
  const T& objectInItemsAtIndex(uint64_t index) const { return items_.objectAtIndex(index); }
  /// `insertObject:inItemsAtIndex:`.
  void insertObjectInItems(T item, uint64_t index) { items_.insertObject(std::move(item), index); }
  /// Inserts the items so that they stand at `indexes` afterwards (one index per item).
  void insertItems(Items items, const MCIndexSet& indexes) { items_.insertObjects(std::move(items), indexes); }
  /// Removes the items at `indexes` (one removal change).
  void removeItemsAtIndexes(const MCIndexSet& indexes) { items_.removeObjectsAtIndexes(indexes); }
  /// Replaces the items at `indexes` (one replacement change).
  void replaceItemsAtIndexes(const MCIndexSet& indexes, Items items) {
    items_.replaceObjectsAtIndexes(indexes, std::move(items));
  }

  // --- Observable accessors of `nodes`

  /// How many child nodes there are.
  uint64_t countOfNodes() const { return nodes_.count(); }
  /// The child node at `index`; past the end raises std::out_of_range.
  const NodePtr& objectInNodesAtIndex(uint64_t index) const { return nodes_.objectAtIndex(index); }
  /// `insertObject:inNodesAtIndex:`.
  void insertObjectInNodes(NodePtr node, uint64_t index) { nodes_.insertObject(std::move(node), index); }
  /// Inserts child nodes so that they stand at `indexes` afterwards.
  void insertNodes(Nodes nodes, const MCIndexSet& indexes) { nodes_.insertObjects(std::move(nodes), indexes); }
  /// Removes the child nodes at `indexes`.
  void removeNodesAtIndexes(const MCIndexSet& indexes) { nodes_.removeObjectsAtIndexes(indexes); }
  /// Replaces the child nodes at `indexes`.
  void replaceNodesAtIndexes(const MCIndexSet& indexes, Nodes nodes) {
    nodes_.replaceObjectsAtIndexes(indexes, std::move(nodes));
  }

  // --- Structure

  /// True when `node` is this very node (a node counts as its own descendant) or when this node
  /// lies somewhere below `node`, searched depth first.
  bool isDescendantOf(const MCTreeNode* node) const {
    if (!node) return false;
    if (node == this) return true;
    for (const auto& child : node->nodes())
      if (isDescendantOf(child.get())) return true;
    return false;
  }
  /// Whether `node` is this node or one of its ancestors.
  bool isDescendantOf(const NodePtr& node) const { return isDescendantOf(node.get()); }

 private:
  MCObservableArray<T> items_{*this, kItemsKeyPath};
  MCObservableArray<NodePtr> nodes_{*this, kNodesKeyPath};
};
