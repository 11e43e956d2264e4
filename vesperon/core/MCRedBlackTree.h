#pragma once
// MCRedBlackTree: a balanced ordered set driven by a comparator. Insert, find and remove are
// logarithmic; the smallest and largest objects are cached, so minObject/maxObject are constant
// time. Comparator-equal objects do not coexist: inserting an object equal to one already held
// keeps the old one and drops the new.
//
// The comparator returns -1, 0 or 1 for (a, b). When the tree compares a stored node with a key,
// the node's object comes first; when it places a new node, the new object comes first. Do not
// give it a new comparator while it holds objects unless the new order agrees with the old.
//
// Nil objects are refused with std::invalid_argument "*** MCRedBlackTree::<operation>: object must
// not be nil". Destruction releases the objects in ascending order. Not thread-safe.

#include <vesperon/core/MCExceptions.h>
#include <vesperon/core/MCNullable.h>
#include <vesperon/core/MCObjectExtensions.h>
#include <vesperon/core/MCTypes.h>

#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

template <typename T, typename Compare = std::function<int(const T&, const T&)>>
class MCRedBlackTree {
  struct Node {
    explicit Node(T&& o) : object(std::move(o)) {}
    Node* left = nullptr;
    Node* right = nullptr;
    Node* parent = nullptr;
    bool red = true;
    T object;
  };

 public:
  /// The ordering of the objects.
  using Comparator = Compare;

  /// `initWithComparator:`: none for a nil comparator.
  static std::shared_ptr<MCRedBlackTree> create(Comparator comparator) {
    if (mc_detail::isNilCallable(comparator)) return nullptr;
    return std::make_shared<MCRedBlackTree>(std::move(comparator));
  }

  /// Throws std::invalid_argument for a nil comparator; use create() to get none instead.
  explicit MCRedBlackTree(Comparator comparator) : comparator_(std::move(comparator)) {
    if (mc_detail::isNilCallable(comparator_))
      throw std::invalid_argument("*** MCRedBlackTree::initWithComparator: comparator must not be nil");
  }
  MCRedBlackTree(const MCRedBlackTree&) = delete;
  MCRedBlackTree& operator=(const MCRedBlackTree&) = delete;
  ~MCRedBlackTree() { removeAllObjects(); }

  /// How many objects the tree holds.
  uint64_t count() const { return count_; }
  /// Whether it holds none.
  bool empty() const { return count_ == 0; }

  /// The ordering.
  const Comparator& comparator() const { return comparator_; }
  /// Replaces the ordering (the tree is not re-sorted; set it while empty).
  void setComparator(Comparator comparator) { comparator_ = std::move(comparator); }

  /// Inserts `object`; answers false, and keeps the object already held, when an equal one is there.
  bool insertObject(T object) {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCRedBlackTree::insertObject");
    Node* parent = nullptr;
    Node** link = &root_;
    bool leftmost = true, rightmost = true;
    while (*link) {
      parent = *link;
      int result = comparator_(object, parent->object);
      if (result == 0) return false;
      if (result < 0) {
        link = &parent->left;
        rightmost = false;
      } else {
        link = &parent->right;
        leftmost = false;
      }
    }
    Node* node = new Node(std::move(object));
    node->parent = parent;
    *link = node;
    if (leftmost) min_ = node;
    if (rightmost) max_ = node;
    ++count_;
    insertFixup(node);
    return true;
  }

  /// Removes the object comparator-equal to `object`; answers false when there is none.
  bool removeObject(const T& object) {
    if (MCIsNil(object)) mc_detail::throwNilObject("MCRedBlackTree::removeObject");
    Node* node = findNode(object);
    if (!node) return false;
    removeNode(node);
    return true;
  }

  /// The held object comparator-equal to `object`, or none.
  MCNullable<T> member(const T& object) const {
    Node* node = findNode(object);
    if (!node) return {};
    return node->object;
  }
  /// Whether an object equal to `object` under the ordering is in the tree.
  bool containsObject(const T& object) const { return findNode(object) != nullptr; }

  /// Smallest and largest objects; none when empty.
  MCNullable<T> minObject() const { return min_ ? MCNullable<T>(min_->object) : MCNullable<T>(); }
  /// The largest object; none when empty.
  MCNullable<T> maxObject() const { return max_ ? MCNullable<T>(max_->object) : MCNullable<T>(); }
  /// Nothing when empty.
  void removeMinObject() {
    if (min_) removeNode(min_);
  }
  /// Removes the largest object; nothing when empty.
  void removeMaxObject() {
    if (max_) removeNode(max_);
  }

  /// Releases every object, smallest first.
  void removeAllObjects() {
    std::vector<Node*> nodes;
    nodes.reserve(count_);
    for (Node* n = min_; n; n = successor(n)) nodes.push_back(n);
    root_ = min_ = max_ = nullptr;
    count_ = 0;
    for (Node* n : nodes) delete n;
  }

  /// All objects in ascending order.
  std::vector<T> array() const {
    std::vector<T> result;
    result.reserve(count_);
    for (Node* n = min_; n; n = successor(n)) result.push_back(n->object);
    return result;
  }

  /// Longest path from the root to a leaf, in nodes. For checking balance: never above
  /// 2 log2(count + 1).
  uint64_t height() const { return heightOf(root_); }

  /// Walks the whole tree and checks the red-black rules, the parent links, the order, the count
  /// and the cached extremes. For tests; linear time.
  bool isValid() const {
    uint64_t seen = 0;
    if (root_ && (root_->red || root_->parent)) return false;
    if (blackHeight(root_, seen) < 0 || seen != count_) return false;
    Node* first = root_;
    Node* last = root_;
    while (first && first->left) first = first->left;
    while (last && last->right) last = last->right;
    if (first != min_ || last != max_) return false;
    for (Node* n = min_; n; n = successor(n)) {
      Node* next = successor(n);
      if (next && comparator_(n->object, next->object) >= 0) return false;
    }
    return true;
  }

  /// Walks the objects from the smallest.
  class const_iterator {
   public:
    /// The standard iterator type of the objects.
    using value_type = T;
    /// The standard iterator difference type.
    using difference_type = std::ptrdiff_t;
    /// A forward iterator.
    using iterator_category = std::forward_iterator_tag;
    /// A pointer to an object.
    using pointer = const T*;
    /// A reference to an object.
    using reference = const T&;
    const_iterator() = default;
    /// The object at hand.
    const T& operator*() const { return node_->object; }
    /// The object at hand.
    const T* operator->() const { return &node_->object; }
    /// Steps to the next larger object.
    const_iterator& operator++() {
      node_ = successor(node_);
      return *this;
    }
    /// Steps on, answering the iterator as it was.
    const_iterator operator++(int) {
      auto copy = *this;
      node_ = successor(node_);
      return copy;
    }
    friend bool operator==(const const_iterator&, const const_iterator&) = default;

   private:
    friend class MCRedBlackTree;
    explicit const_iterator(const Node* node) : node_(node) {}
    const Node* node_ = nullptr;
  };
  /// The smallest object.
  const_iterator begin() const { return const_iterator(min_); }
  /// Past the largest object.
  const_iterator end() const { return const_iterator(nullptr); }

 private:
  Node* findNode(const T& key) const {
    Node* node = root_;
    while (node) {
      int result = comparator_(node->object, key);
      if (result == 0) return node;
      node = result < 0 ? node->right : node->left;
    }
    return nullptr;
  }

  template <typename N>
  static N* successor(N* node) {
    if (node->right) {
      node = node->right;
      while (node->left) node = node->left;
      return node;
    }
    N* parent = node->parent;
    while (parent && node == parent->right) {
      node = parent;
      parent = parent->parent;
    }
    return parent;
  }
  static Node* predecessor(Node* node) {
    if (node->left) {
      node = node->left;
      while (node->right) node = node->right;
      return node;
    }
    Node* parent = node->parent;
    while (parent && node == parent->left) {
      node = parent;
      parent = parent->parent;
    }
    return parent;
  }
  static uint64_t heightOf(const Node* node) {
    if (!node) return 0;
    uint64_t l = heightOf(node->left), r = heightOf(node->right);
    return 1 + (l > r ? l : r);
  }
  // Black height of the subtree, or -1 when a rule is broken below it.
  static int blackHeight(const Node* node, uint64_t& seen) {
    if (!node) return 1;
    ++seen;
    if (node->red && (isRed(node->left) || isRed(node->right))) return -1;
    if ((node->left && node->left->parent != node) || (node->right && node->right->parent != node)) return -1;
    int l = blackHeight(node->left, seen), r = blackHeight(node->right, seen);
    if (l < 0 || r < 0 || l != r) return -1;
    return l + (node->red ? 0 : 1);
  }
  static bool isRed(const Node* node) { return node && node->red; }

  void rotateLeft(Node* x) {
    Node* y = x->right;
    x->right = y->left;
    if (y->left) y->left->parent = x;
    y->parent = x->parent;
    replaceChild(x, y);
    y->left = x;
    x->parent = y;
  }
  void rotateRight(Node* x) {
    Node* y = x->left;
    x->left = y->right;
    if (y->right) y->right->parent = x;
    y->parent = x->parent;
    replaceChild(x, y);
    y->right = x;
    x->parent = y;
  }
  // Points the link of `old`'s parent (or the root) at `replacement`.
  void replaceChild(Node* old, Node* replacement) {
    Node* parent = old->parent;
    if (!parent)
      root_ = replacement;
    else if (parent->left == old)
      parent->left = replacement;
    else
      parent->right = replacement;
  }
  void transplant(Node* u, Node* v) {
    replaceChild(u, v);
    if (v) v->parent = u->parent;
  }

  void insertFixup(Node* z) {
    while (isRed(z->parent)) {
      Node* p = z->parent;
      Node* g = p->parent;  // exists: a red node is never the root
      if (p == g->left) {
        Node* u = g->right;
        if (isRed(u)) {
          p->red = u->red = false;
          g->red = true;
          z = g;
        } else {
          if (z == p->right) {
            z = p;
            rotateLeft(z);
            p = z->parent;
          }
          p->red = false;
          g->red = true;
          rotateRight(g);
        }
      } else {
        Node* u = g->left;
        if (isRed(u)) {
          p->red = u->red = false;
          g->red = true;
          z = g;
        } else {
          if (z == p->left) {
            z = p;
            rotateRight(z);
            p = z->parent;
          }
          p->red = false;
          g->red = true;
          rotateLeft(g);
        }
      }
    }
    root_->red = false;
  }

  void removeNode(Node* z) {
    if (z == min_) min_ = successor(z);
    if (z == max_) max_ = predecessor(z);
    Node* y = z;
    bool removedBlack = !y->red;
    Node* x;
    Node* xParent;
    if (!z->left) {
      x = z->right;
      xParent = z->parent;
      transplant(z, z->right);
    } else if (!z->right) {
      x = z->left;
      xParent = z->parent;
      transplant(z, z->left);
    } else {
      y = z->right;
      while (y->left) y = y->left;
      removedBlack = !y->red;
      x = y->right;
      if (y->parent == z) {
        xParent = y;
      } else {
        xParent = y->parent;
        transplant(y, y->right);
        y->right = z->right;
        y->right->parent = y;
      }
      transplant(z, y);
      y->left = z->left;
      y->left->parent = y;
      y->red = z->red;
    }
    --count_;
    delete z;
    if (removedBlack) removeFixup(x, xParent);
  }

  void removeFixup(Node* x, Node* parent) {
    while (x != root_ && !isRed(x)) {
      if (x == parent->left) {
        Node* w = parent->right;
        if (isRed(w)) {
          w->red = false;
          parent->red = true;
          rotateLeft(parent);
          w = parent->right;
        }
        if (!isRed(w->left) && !isRed(w->right)) {
          w->red = true;
          x = parent;
          parent = x->parent;
        } else {
          if (!isRed(w->right)) {
            w->left->red = false;
            w->red = true;
            rotateRight(w);
            w = parent->right;
          }
          w->red = parent->red;
          parent->red = false;
          if (w->right) w->right->red = false;
          rotateLeft(parent);
          x = root_;
        }
      } else {
        Node* w = parent->left;
        if (isRed(w)) {
          w->red = false;
          parent->red = true;
          rotateRight(parent);
          w = parent->left;
        }
        if (!isRed(w->left) && !isRed(w->right)) {
          w->red = true;
          x = parent;
          parent = x->parent;
        } else {
          if (!isRed(w->left)) {
            w->right->red = false;
            w->red = true;
            rotateLeft(w);
            w = parent->left;
          }
          w->red = parent->red;
          parent->red = false;
          if (w->left) w->left->red = false;
          rotateRight(parent);
          x = root_;
        }
      }
    }
    if (x) x->red = false;
  }

  Node* root_ = nullptr;
  Node* min_ = nullptr;
  Node* max_ = nullptr;
  uint64_t count_ = 0;
  Comparator comparator_;
};
