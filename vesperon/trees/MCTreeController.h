#pragma once
// MCTreeController<T>: keeps a rule-built tree up to date as items come, go and change, with the
// smallest set of node and item changes, and tells a delegate of each change so that an outline
// view can animate them instead of reloading.
//
//   auto controller = std::make_shared<MCTreeController<PhotoPtr>>(builder, photos);
//   controller->setDelegate(outline);          // held weakly
//   controller->insertItems({newPhoto});       // reports the changes, deepest first
//   photo->takenAt = later;                    // a sort key changed…
//   controller->updateItems({photo});          // …so the photo moves to its new groups
//
// The tree is the builder's tree of the items (MCTreeBuilder::nodeWithItems) and stays equal to a
// fresh build of the present items, with one exception: an item keeps its place in every node it
// stays in, and new items are appended, so the item lists of existing nodes are in the order the
// items arrived rather than sorted.
//
// Items are matched with == and std::hash<T> (for shared pointers: the object's identity). No
// locks: the controller and its nodes belong to one thread. The delegate must not change the tree
// from inside a notification.

#include <vesperon/core/MCIndexSet.h>
#include <vesperon/trees/MCMergeController.h>
#include <vesperon/trees/MCTreeBuilder.h>
#include <vesperon/trees/MCTreeControllerDelegate.h>
#include <vesperon/trees/MCTreeItemSet.h>
#include <vesperon/trees/MCTreeNode.h>

#include <algorithm>
#include <memory>
#include <span>
#include <unordered_set>
#include <utility>
#include <vector>

template <typename T>
class MCTreeController {
 public:
  /// The node type.
  using Node = MCTreeNode<T>;
  /// A shared node.
  using NodePtr = std::shared_ptr<Node>;
  /// A list of items.
  using Items = std::vector<T>;
  /// A list of nodes.
  using Nodes = std::vector<NodePtr>;
  /// A set of items.
  using ItemSet = std::unordered_set<T>;
  /// The builder that makes subtrees by rules.
  using Builder = MCTreeBuilder<T>;
  /// A shared rule.
  using RulePtr = typename Builder::RulePtr;
  /// The delegate type.
  using Delegate = MCTreeControllerDelegate<T>;

  /// `initWithBuilder:items:` — the root becomes the builder's tree of `items`.
  MCTreeController(std::shared_ptr<Builder> builder, Items items)
      : builder_(std::move(builder)), root_(builder_->nodeWithItems(std::move(items))) {}
  MCTreeController(const MCTreeController&) = delete;
  MCTreeController& operator=(const MCTreeController&) = delete;

  /// The root node.
  const NodePtr& root() const { return root_; }
  /// Replaces the root node.
  void setRoot(NodePtr root) { root_ = std::move(root); }
  /// The builder.
  const std::shared_ptr<Builder>& builder() const { return builder_; }
  /// Replaces the builder.
  void setBuilder(std::shared_ptr<Builder> builder) { builder_ = std::move(builder); }
  /// The delegate, held weakly; none when it is gone.
  std::shared_ptr<Delegate> delegate() const { return delegate_.lock(); }
  /// Held weakly: a delegate that has gone gets no calls, and updates go on without it.
  void setDelegate(const std::shared_ptr<Delegate>& delegate) { delegate_ = delegate; }

  /// Adds items, which must not be in the tree yet. Nothing at all happens for none.
  void insertItems(const Items& items) {
    if (items.empty()) return;
    runBatch(FastSet(), items);
  }

  /// Takes items out of the tree; items it does not hold are ignored. Nothing happens for none.
  void removeItems(const Items& items) {
    if (items.empty()) return;
    runBatch(FastSet(items.begin(), items.end()), Items());
  }

  /// Moves items whose sort keys changed to the groups they now fall in. Nothing happens for none.
  void updateItems(const Items& items) {
    if (items.empty()) return;
    runBatch(FastSet(items.begin(), items.end()), items);
  }

  /// `update:removing:inserting:withRules:` — the recursive update of `node`, whose levels below
  /// are made by `rules`: takes out the items of `removing` that are not in `inserting`, adds the
  /// items of `inserting` that the node does not hold, and does the same in its children, making
  /// and dropping child nodes as groups appear and empty. Every change goes to the delegate.
  void update(const NodePtr& node, const ItemSet& removing, const Items& inserting, std::span<const RulePtr> rules) {
    updateNode(node, FastSet(removing.begin(), removing.end()), inserting, rules, nullptr);
  }

 private:
  using FastSet = mc_detail::MCTreeItemSet<T>;

  void runBatch(const FastSet& removing, const Items& inserting) {
    if (auto delegate = delegate_.lock()) delegate->controllerWillChangeContent(*this);
    updateNode(root_, removing, inserting, builder_->rules(), nullptr);
    if (auto delegate = delegate_.lock()) delegate->controllerDidChangeContent(*this);
  }

  // A node holds every item its children hold. So the items of `inserting` that a child may
  // already hold are among those its parent holds (`parentHeld`, null at the top), and the items
  // of `removing` a child may lose are among those its parent holds: the parent's look at its
  // own items narrows both before its children are visited, and a child with nothing left to
  // look for is not scanned at all. The parent's items do not change until its children are done.
  // Answers how many items of `removing` the node held.
  size_t updateNode(const NodePtr& node, const FastSet& removing, const Items& inserting, std::span<const RulePtr> rules,
                    const FastSet* parentHeld) {
    // With nothing to take out and nothing to add no node below can change.
    if (removing.empty() && inserting.empty()) return 0;

    const bool lookForInserted = !inserting.empty() && (!parentHeld || !parentHeld->empty());
    FastSet inserted;
    FastSet held;             // items of `inserting` this node holds: in an update, most of them
    if (lookForInserted) {
      inserted = FastSet(inserting.begin(), inserting.end());
      held.reserve(inserting.size());
    }
    FastSet removingBelow;    // items of `removing` this node holds
    MCIndexSet lostIndexes;
    Items lost;
    if (lookForInserted || !removing.empty()) {
      const Items& items = node->items();
      for (uint64_t i = 0; i < items.size(); ++i) {
        const T& item = items[i];
        const uint64_t h = FastSet::spread(item);
        if (lookForInserted && inserted.contains(item, h)) {
          held.insert(item);
          if (removing.contains(item, h)) removingBelow.insert(item);
        } else if (removing.contains(item, h)) {
          lostIndexes.addIndex(i);
          lost.push_back(item);
          removingBelow.insert(item);
        }
      }
    }

    if (!rules.empty()) updateChildren(node, removingBelow, inserting, rules, held);

    Items added;
    if (held.empty()) {
      added = inserting;
    } else {
      for (const T& item : inserting)
        if (!held.contains(item)) added.push_back(item);
    }
    if (!added.empty()) {
      MCIndexSet indexes(MCRange{node->countOfItems(), added.size()});
      node->insertItems(added, indexes);
      if (auto delegate = delegate_.lock()) delegate->didInsertItems(*this, added, indexes, node);
    }

    // Appended items stand after all of the lost ones, so the indexes found above still hold.
    if (!lost.empty()) {
      node->removeItemsAtIndexes(lostIndexes);
      if (auto delegate = delegate_.lock()) delegate->didRemoveItems(*this, lost, lostIndexes, node);
    }
    return removingBelow.size();
  }

  // Merges the node's children with the candidate nodes the first rule makes of `inserting`:
  // children and candidates that match are updated in place, candidates alone become new
  // children, and children left without items go.
  void updateChildren(const NodePtr& node, const FastSet& removing, const Items& inserting,
                      std::span<const RulePtr> rules, const FastSet& held) {
    const RulePtr& rule = rules.front();
    Nodes candidates = rule->nodesWithItems(inserting);
    std::span<const RulePtr> lower = rules.subspan(1);
    static const FastSet none;

    Nodes insertedNodes;
    MCIndexSet insertedIndexes;
    MCIndexSet removedIndexes;

    // The groups of one level are disjoint, so once the children passed hold every item of
    // `removing`, the children still to come have nothing to lose and need no scan for it.
    size_t toFind = removing.size();
    auto lookFor = [&]() -> const FastSet& { return toFind > 0 ? removing : none; };

    MCMergeController<NodePtr> merge;
    merge.setNewBlock([&](const NodePtr& candidate, uint64_t position) {
      // A new node holds exactly its items, none of which are to be taken out.
      updateNode(candidate, none, candidate->items(), lower, nullptr);
      insertedNodes.push_back(candidate);
      insertedIndexes.addIndex(position);
    });
    merge.setEqualBlock([&](const NodePtr& child, const NodePtr& candidate, uint64_t position) {
      toFind -= std::min(toFind, updateNode(child, lookFor(), candidate->items(), lower, &held));
      if (child->countOfItems() == 0) removedIndexes.addIndex(position);
    });
    merge.setOldBlock([&](const NodePtr& child, uint64_t position) {
      toFind -= std::min(toFind, updateNode(child, lookFor(), Items(), lower, &held));
      if (child->countOfItems() == 0) removedIndexes.addIndex(position);
    });
    merge.merge(node->nodes(), candidates,
                [&](const NodePtr& child, const NodePtr& candidate) { return rule->compareNode(child, candidate); });

    // Insertions first: the positions are those of the merged sequence, which is what the
    // children are once the candidates stand among them.
    if (!insertedNodes.empty()) {
      node->insertNodes(insertedNodes, insertedIndexes);
      if (auto delegate = delegate_.lock()) delegate->didInsertNodes(*this, insertedNodes, insertedIndexes, node);
    }
    if (!removedIndexes.empty()) {
      Nodes removedNodes;
      for (uint64_t index : removedIndexes) removedNodes.push_back(node->objectInNodesAtIndex(index));
      node->removeNodesAtIndexes(removedIndexes);
      if (auto delegate = delegate_.lock()) delegate->didRemoveNodes(*this, removedNodes, removedIndexes, node);
    }
  }

  std::shared_ptr<Builder> builder_;
  NodePtr root_;
  std::weak_ptr<Delegate> delegate_;
};
