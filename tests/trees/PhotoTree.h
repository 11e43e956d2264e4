#pragma once
// Photos and the year / month / day rules the tree tests share.

#include <vesperon/trees/MCTreeBuilder.h>
#include <vesperon/trees/MCTreeBuilderRule.h>
#include <vesperon/trees/MCTreeNode.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace phototree {

struct Photo {
  std::string name;
  int year = 0, month = 0, day = 0;
};
using PhotoPtr = std::shared_ptr<Photo>;
using Node = MCTreeNode<PhotoPtr>;
using NodePtr = std::shared_ptr<Node>;
using Rule = MCTreeBuilderRule<PhotoPtr>;
using Builder = MCTreeBuilder<PhotoPtr>;

inline PhotoPtr photo(std::string name, int year, int month, int day) {
  return std::make_shared<Photo>(Photo{std::move(name), year, month, day});
}

// A node that remembers the key of its group. Nodes must not be ordered by their first item: an
// updated item may already have left the group it still stands in.
class KeyedNode : public Node {
 public:
  explicit KeyedNode(int k) : key(k) {}
  const int key;
};

inline int keyOf(const NodePtr& node) { return static_cast<const KeyedNode&>(*node).key; }

// Groups by one key of the photo.
class KeyRule : public Rule {
 public:
  explicit KeyRule(std::function<int(const Photo&)> key) : key_(std::move(key)) {}
  NodePtr nodeWithItems(Items items) const override {
    auto node = std::make_shared<KeyedNode>(items.empty() ? 0 : key_(*items.front()));
    node->setItems(std::move(items));
    return node;
  }
  int compare(const PhotoPtr& a, const PhotoPtr& b) const override { return MCCompareValues(key_(*a), key_(*b)); }
  int compareNode(const NodePtr& a, const NodePtr& b) const override { return MCCompareValues(keyOf(a), keyOf(b)); }

 private:
  std::function<int(const Photo&)> key_;
};

inline std::shared_ptr<Builder> dateBuilder() {
  return std::make_shared<Builder>(Builder::Rules{
      std::make_shared<KeyRule>([](const Photo& p) { return p.year; }),
      std::make_shared<KeyRule>([](const Photo& p) { return p.month; }),
      std::make_shared<KeyRule>([](const Photo& p) { return p.day; }),
  });
}

inline std::string names(const std::vector<PhotoPtr>& photos) {
  std::string text;
  for (const auto& p : photos) text += (text.empty() ? "" : ",") + p->name;
  return text;
}

inline std::string indexes(const MCIndexSet& set) {
  std::string text;
  for (uint64_t i : set) text += (text.empty() ? "" : ",") + std::to_string(i);
  return text;
}

// The tree as one line: each node's items (sorted by name when `sortItems`) and its children in
// braces. Two trees with the same outline hold the same items in the same shape. Any node type
// with items() and nodes() will do.
template <typename N>
std::string outline(const std::shared_ptr<N>& node, bool sortItems) {
  auto items = node->items();
  if (sortItems)
    std::sort(items.begin(), items.end(), [](const PhotoPtr& a, const PhotoPtr& b) { return a->name < b->name; });
  std::string text = "(" + names(items);
  if (!node->nodes().empty()) {
    text += " {";
    for (const auto& child : node->nodes()) text += outline(child, sortItems);
    text += "}";
  }
  return text + ")";
}

}  // namespace phototree
