#include "PhotoTree.h"

#include <vesperon/trees/MCTreeController.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace phototree;

namespace {

using Controller = MCTreeController<PhotoPtr>;
using Calls = std::vector<std::string>;

// Names every node by the path of its first item's date at its depth, so that calls read as
// "+items e @3 in 2021/3".
class Recorder : public MCTreeControllerDelegate<PhotoPtr> {
 public:
  Calls calls;

  void controllerWillChangeContent(Controller&) override { calls.push_back("will"); }
  void controllerDidChangeContent(Controller&) override { calls.push_back("did"); }
  void didInsertNodes(Controller& c, const Nodes& nodes, const MCIndexSet& at, const NodePtr& parent) override {
    calls.push_back("+nodes " + nodeNames(nodes) + " @" + indexes(at) + " in " + name(c, parent));
  }
  void didRemoveNodes(Controller& c, const Nodes& nodes, const MCIndexSet& at, const NodePtr& parent) override {
    calls.push_back("-nodes " + std::to_string(nodes.size()) + " @" + indexes(at) + " in " + name(c, parent));
  }
  void didInsertItems(Controller& c, const Items& items, const MCIndexSet& at, const NodePtr& parent) override {
    calls.push_back("+items " + names(items) + " @" + indexes(at) + " in " + name(c, parent));
  }
  void didRemoveItems(Controller& c, const Items& items, const MCIndexSet& at, const NodePtr& parent) override {
    calls.push_back("-items " + names(items) + " @" + indexes(at) + " in " + name(c, parent));
  }

 private:
  // The path from the root to `node` by identity; "new" for a node not yet in the tree.
  static bool pathTo(const NodePtr& from, const NodePtr& node, std::vector<NodePtr>& path) {
    if (from == node) return true;
    for (const auto& child : from->nodes()) {
      path.push_back(child);
      if (pathTo(child, node, path)) return true;
      path.pop_back();
    }
    return false;
  }
  static std::string name(Controller& c, const NodePtr& node) {
    std::vector<NodePtr> path;
    if (!pathTo(c.root(), node, path)) return "new";
    if (path.empty()) return "root";
    std::string text;
    for (size_t i = 0; i < path.size(); ++i) text += (i ? "/" : "") + std::to_string(keyOf(path[i]));
    return text;
  }
  static std::string nodeNames(const Nodes& nodes) {
    std::string text;
    for (const auto& n : nodes) text += (text.empty() ? "[" : ",[") + names(n->items()) + "]";
    return text;
  }
};

struct Fixture {
  PhotoPtr a = photo("a", 2020, 5, 1), b = photo("b", 2020, 5, 1), c = photo("c", 2020, 5, 3),
           d = photo("d", 2021, 2, 2);
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  Controller controller{dateBuilder(), {a, b, c, d}};
  Fixture() { controller.setDelegate(recorder); }
};

TEST(TreeController, EmptyListsAreNoOps) {
  Fixture f;
  f.controller.insertItems({});
  f.controller.removeItems({});
  f.controller.updateItems({});
  EXPECT_TRUE(f.recorder->calls.empty());
}

TEST(TreeController, InsertionWithANewGroupInsertsTheNodeAtItsMergedPosition) {
  Fixture f;
  auto e = photo("e", 2020, 5, 2);  // a new day between the 1st and the 3rd
  auto g = photo("g", 2019, 1, 1);  // a new year before all others
  f.controller.insertItems({e, g});
  EXPECT_EQ(f.recorder->calls, (Calls{"will",
                                      // the new year's subtree is built before it is inserted, and the
                                      // root inserts its new child after all its children are done
                                      "+nodes [g] @0 in new", "+nodes [g] @0 in new",
                                      "+nodes [e] @1 in 2020/5", "+items e @3 in 2020/5", "+items e @3 in 2020",
                                      "+nodes [g] @0 in root", "+items e,g @4,5 in root", "did"}));
}

TEST(TreeController, RemovalOfTheLastItemOfAGroupRemovesItsNodes) {
  Fixture f;
  f.controller.removeItems({f.c});
  EXPECT_EQ(f.recorder->calls, (Calls{"will", "-items c @0 in 2020/5/3", "-nodes 1 @1 in 2020/5",
                                      "-items c @2 in 2020/5", "-items c @2 in 2020", "-items c @2 in root", "did"}));
  // A whole year goes; the root stays, even when it ends up empty.
  f.recorder->calls.clear();
  f.controller.removeItems({f.a, f.b, f.d, photo("stranger", 2020, 5, 1)});
  EXPECT_EQ(outline(f.controller.root(), false), "()");
  EXPECT_EQ(f.recorder->calls.back(), "did");
  EXPECT_EQ(f.recorder->calls[f.recorder->calls.size() - 3], "-nodes 2 @0,1 in root");
}

TEST(TreeController, UpdateMovesAnItemBetweenGroupsAndKeepsItInPlaceWhereItStays) {
  Fixture f;
  f.a->day = 3;  // from 2020/5/1 (shared with b) to 2020/5/3 (shared with c)
  f.controller.updateItems({f.a});
  EXPECT_EQ(f.recorder->calls, (Calls{"will", "-items a @0 in 2020/5/1", "+items a @1 in 2020/5/3", "did"}));
  EXPECT_EQ(outline(f.controller.root(), false), "(a,b,c,d {(a,b,c {(a,b,c {(b)(c,a)})})(d {(d {(d)})})})");

  // Moving the only item of a group to a new group: the old node goes, a new one comes.
  f.recorder->calls.clear();
  f.d->month = 12;
  f.controller.updateItems({f.d});
  EXPECT_EQ(f.recorder->calls, (Calls{"will", "-items d @0 in 2021/2/2", "-nodes 1 @0 in 2021/2", "-items d @0 in 2021/2",
                                      "+nodes [d] @0 in new", "+nodes [d] @1 in 2021", "-nodes 1 @0 in 2021", "did"}));
}

TEST(TreeController, AGoneDelegateHearsNothingAndTheUpdateGoesOn) {
  Fixture f;
  f.recorder.reset();
  auto e = photo("e", 2022, 1, 1);
  f.controller.insertItems({e});
  EXPECT_EQ(f.controller.delegate(), nullptr);
  EXPECT_EQ(f.controller.root()->countOfNodes(), 3u);
}

// What an outline view keeps: its own copy of the tree, changed only by the reported changes.
struct Replica {
  struct Row {
    std::vector<PhotoPtr> rowItems;
    std::vector<std::shared_ptr<Row>> rows;
    const std::vector<PhotoPtr>& items() const { return rowItems; }
    const std::vector<std::shared_ptr<Row>>& nodes() const { return rows; }
  };
  std::shared_ptr<Row> root;
  std::map<const Node*, std::shared_ptr<Row>> rowOf;

  std::shared_ptr<Row> copy(const NodePtr& node) {
    auto row = std::make_shared<Row>();
    row->rowItems = node->items();
    for (const auto& child : node->nodes()) row->rows.push_back(copy(child));
    rowOf[node.get()] = row;
    return row;
  }
};

class ReplayingDelegate : public MCTreeControllerDelegate<PhotoPtr> {
 public:
  explicit ReplayingDelegate(Replica& replica) : replica_(replica) {}
  int skipped = 0;

  void didInsertNodes(Controller&, const Nodes& nodes, const MCIndexSet& at, const NodePtr& parent) override {
    if (auto row = rowFor(parent)) {
      std::vector<std::shared_ptr<Replica::Row>> rows;
      for (const auto& node : nodes) rows.push_back(replica_.copy(node));
      insertAt(row->rows, rows, at);
    }
  }
  void didRemoveNodes(Controller&, const Nodes& nodes, const MCIndexSet& at, const NodePtr& parent) override {
    auto row = rowFor(parent);
    ASSERT_TRUE(row) << "removal from a node the view never saw";
    std::vector<std::shared_ptr<Replica::Row>> rows;
    for (const auto& node : nodes) rows.push_back(replica_.rowOf[node.get()]);
    removeAt(row->rows, rows, at);
  }
  void didInsertItems(Controller&, const Items& items, const MCIndexSet& at, const NodePtr& parent) override {
    if (auto row = rowFor(parent)) insertAt(row->rowItems, items, at);
  }
  void didRemoveItems(Controller&, const Items& items, const MCIndexSet& at, const NodePtr& parent) override {
    auto row = rowFor(parent);
    ASSERT_TRUE(row) << "removal from a node the view never saw";
    removeAt(row->rowItems, items, at);
  }

 private:
  template <typename E>
  static void insertAt(std::vector<E>& list, const std::vector<E>& values, const MCIndexSet& at) {
    size_t k = 0;
    for (uint64_t index : at) {
      ASSERT_LE(index, list.size());
      list.insert(list.begin() + long(index), values[k++]);
    }
  }
  template <typename E>
  static void removeAt(std::vector<E>& list, const std::vector<E>& values, const MCIndexSet& at) {
    auto all = at.allIndexes();
    for (size_t k = all.size(); k-- > 0;) {
      ASSERT_LT(all[k], list.size());
      EXPECT_EQ(list[all[k]], values[k]) << "removed value is not the one at its index";
      list.erase(list.begin() + long(all[k]));
    }
  }
  std::shared_ptr<Replica::Row> rowFor(const NodePtr& node) {
    auto it = replica_.rowOf.find(node.get());
    if (it != replica_.rowOf.end()) return it->second;
    ++skipped;  // a node still being built, reported whole when it is inserted
    return nullptr;
  }
  Replica& replica_;
};

TEST(TreeController, RandomChangesMatchAFreshBuildAndReplayOntoACopyOfTheTree) {
  std::mt19937 random(20261123);
  auto randomPhoto = [&](int serial) {
    return photo("p" + std::to_string(serial), 2018 + int(random() % 4), 1 + int(random() % 4), 1 + int(random() % 5));
  };
  int serial = 0;
  std::vector<PhotoPtr> present;
  for (int i = 0; i < 60; ++i) present.push_back(randomPhoto(serial++));

  auto builder = dateBuilder();
  Controller controller(builder, present);
  Replica replica;
  replica.root = replica.copy(controller.root());
  auto replayer = std::make_shared<ReplayingDelegate>(replica);
  controller.setDelegate(replayer);

  for (int round = 0; round < 300; ++round) {
    std::vector<PhotoPtr> batch;
    int count = 1 + int(random() % 6);
    switch (random() % 3) {
      case 0:
        for (int i = 0; i < count; ++i) batch.push_back(randomPhoto(serial++));
        present.insert(present.end(), batch.begin(), batch.end());
        controller.insertItems(batch);
        break;
      case 1:
        for (int i = 0; i < count && !present.empty(); ++i) {
          size_t at = random() % present.size();
          batch.push_back(present[at]);
          present.erase(present.begin() + long(at));
        }
        controller.removeItems(batch);
        break;
      default:
        for (int i = 0; i < count && !present.empty(); ++i) {
          auto p = present[random() % present.size()];
          if (std::find(batch.begin(), batch.end(), p) != batch.end()) continue;
          switch (random() % 3) {
            case 0: p->year = 2018 + int(random() % 4); break;
            case 1: p->month = 1 + int(random() % 4); break;
            default: p->day = 1 + int(random() % 5); break;
          }
          batch.push_back(p);
        }
        controller.updateItems(batch);
        break;
    }
    ASSERT_EQ(outline(controller.root(), true), outline(builder->nodeWithItems(present), true)) << "round " << round;
    ASSERT_EQ(outline(replica.root, false), outline(controller.root(), false)) << "round " << round;
  }
  EXPECT_GT(replayer->skipped, 0);  // new subtrees did come up
}

}  // namespace
