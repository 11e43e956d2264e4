#pragma once
// MCTreeControllerDelegate<T>: what an MCTreeController tells about the changes it makes, in the
// order an outline view applies them.
//
// A batch (one insertItems, removeItems or updateItems call) is framed by
// controllerWillChangeContent() and controllerDidChangeContent(). Inside it the controller reports
// each change right after making it, depth first: the changes within a child come before those of
// its parent. In one node, inserted child nodes come first (their indexes are positions after the
// insertion), then removed child nodes (indexes as they stood before the removal, which is after
// the insertion), then appended items, then removed items (indexes as before the removal).
//
// A node inserted as a whole already holds its items and subtree when it is reported; the changes
// reported inside it beforehand have a parent that is not yet in the tree, and a view may skip them.
//
// Every operation has an empty default, so a delegate overrides only what it needs.

#include <vesperon/core/MCIndexSet.h>
#include <vesperon/trees/MCTreeNode.h>

#include <memory>
#include <vector>

template <typename T>
class MCTreeController;

template <typename T>
class MCTreeControllerDelegate {
 public:
  /// The controller type.
  using Controller = MCTreeController<T>;
  /// A shared node.
  using NodePtr = std::shared_ptr<MCTreeNode<T>>;
  /// A list of nodes.
  using Nodes = std::vector<NodePtr>;
  /// A list of items.
  using Items = std::vector<T>;

  virtual ~MCTreeControllerDelegate() = default;

  /// Before a batch.
  virtual void controllerWillChangeContent(Controller& /*controller*/) {}
  /// `controller:didInsertNodes:atIndexes:inParent:` — child nodes were inserted in `parent`.
  virtual void didInsertNodes(Controller& /*controller*/, const Nodes& /*nodes*/, const MCIndexSet& /*indexes*/,
                              const NodePtr& /*parent*/) {}
  /// `controller:didRemoveNodes:atIndexes:inParent:` — child nodes were removed from `parent`.
  virtual void didRemoveNodes(Controller& /*controller*/, const Nodes& /*nodes*/, const MCIndexSet& /*indexes*/,
                              const NodePtr& /*parent*/) {}
  /// `controller:didInsertItems:atIndexes:inParent:` — items were added to `parent`.
  virtual void didInsertItems(Controller& /*controller*/, const Items& /*items*/, const MCIndexSet& /*indexes*/,
                              const NodePtr& /*parent*/) {}
  /// `controller:didRemoveItems:atIndexes:inParent:` — items were removed from `parent`.
  virtual void didRemoveItems(Controller& /*controller*/, const Items& /*items*/, const MCIndexSet& /*indexes*/,
                              const NodePtr& /*parent*/) {}
  /// After a batch.
  virtual void controllerDidChangeContent(Controller& /*controller*/) {}
};
