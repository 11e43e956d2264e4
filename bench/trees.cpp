// Trees: keeping a tree of 100,000 photos (year / month / day) up to date, against rebuilding it.
//
// Ours: MCTreeController inserting, removing and updating 1,000 photos, and MCSmartTreeNode
// addItems / removeItems of 1,000 photos. Peer, in the same run: a full rebuild of the same tree
// from all the photos (MCTreeBuilder::nodeWithItems, MCSmartTreeNode::setItems), diffing nothing.
// Goal: the incremental change at least 10x faster than the rebuild.

#include <vesperon/core/MCTypes.h>
#include <vesperon/trees/MCSmartTreeNode.h>
#include <vesperon/trees/MCTreeBuilder.h>
#include <vesperon/trees/MCTreeController.h>

#include "BenchTimes.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

struct Photo {
  int year, month, day;
};
using PhotoPtr = std::shared_ptr<Photo>;
using Node = MCTreeNode<PhotoPtr>;
using NodePtr = std::shared_ptr<Node>;

constexpr int kPhotos = 100000;
constexpr int kBatch = 1000;

class KeyedNode : public Node {
 public:
  explicit KeyedNode(int k) : key(k) {}
  const int key;
};

template <int Photo::*Field>
class FieldRule : public MCTreeBuilderRule<PhotoPtr> {
 public:
  NodePtr nodeWithItems(Items items) const override {
    auto node = std::make_shared<KeyedNode>((*items.front()).*Field);
    node->setItems(std::move(items));
    return node;
  }
  int compare(const PhotoPtr& a, const PhotoPtr& b) const override { return MCCompareValues((*a).*Field, (*b).*Field); }
  int compareNode(const NodePtr& a, const NodePtr& b) const override {
    return MCCompareValues(static_cast<KeyedNode&>(*a).key, static_cast<KeyedNode&>(*b).key);
  }
};

std::vector<PhotoPtr> makePhotos(int count, std::mt19937& random) {
  std::vector<PhotoPtr> photos;
  photos.reserve(size_t(count));
  for (int i = 0; i < count; ++i)
    photos.push_back(std::make_shared<Photo>(
        Photo{2000 + int(random() % 20), 1 + int(random() % 12), 1 + int(random() % 28)}));
  return photos;
}

struct World {
  std::mt19937 random{2026};
  std::vector<PhotoPtr> photos = makePhotos(kPhotos, random);
  std::vector<PhotoPtr> extra = makePhotos(kBatch, random);
  std::vector<PhotoPtr> some{photos.begin(), photos.begin() + kBatch};
  std::shared_ptr<MCTreeBuilder<PhotoPtr>> builder = std::make_shared<MCTreeBuilder<PhotoPtr>>(
      MCTreeBuilder<PhotoPtr>::Rules{std::make_shared<FieldRule<&Photo::year>>(),
                                     std::make_shared<FieldRule<&Photo::month>>(),
                                     std::make_shared<FieldRule<&Photo::day>>()});
  MCTreeController<PhotoPtr> controller{builder, photos};

  using Smart = MCSmartTreeNode<PhotoPtr>;
  static std::shared_ptr<MCSmartTreeRule<PhotoPtr>> rule(int Photo::*field) {
    return std::make_shared<MCSmartTreeRule<PhotoPtr>>(
        [field](const PhotoPtr& a, const PhotoPtr& b) { return MCCompareValues((*a).*field, (*b).*field); });
  }
  Smart::Rules smartRules{rule(&Photo::year), rule(&Photo::month), rule(&Photo::day)};
  std::shared_ptr<Smart> smart = Smart::nodeWithRules(smartRules, photos);
};

World& world() {
  static World w;
  return w;
}

void Ours_ControllerInsert1000(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) {
    w.controller.insertItems(w.extra);
    state.PauseTiming();
    w.controller.removeItems(w.extra);
    state.ResumeTiming();
  }
}
BENCHMARK(Ours_ControllerInsert1000)->Unit(benchmark::kMillisecond);

void Ours_ControllerRemove1000(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) {
    w.controller.removeItems(w.some);
    state.PauseTiming();
    w.controller.insertItems(w.some);
    state.ResumeTiming();
  }
}
BENCHMARK(Ours_ControllerRemove1000)->Unit(benchmark::kMillisecond);

void Ours_ControllerUpdate1000(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) {
    state.PauseTiming();
    for (auto& p : w.some) p->day = p->day % 28 + 1;  // every photo moves to the next day
    state.ResumeTiming();
    w.controller.updateItems(w.some);
  }
}
BENCHMARK(Ours_ControllerUpdate1000)->Unit(benchmark::kMillisecond);

void Peer_BuilderRebuild(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) benchmark::DoNotOptimize(w.builder->nodeWithItems(w.photos));
}
BENCHMARK(Peer_BuilderRebuild)->Unit(benchmark::kMillisecond);

void Ours_SmartAdd1000(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) {
    w.smart->addItems(w.extra);
    state.PauseTiming();
    w.smart->removeItems(w.extra);
    state.ResumeTiming();
  }
}
BENCHMARK(Ours_SmartAdd1000)->Unit(benchmark::kMillisecond);

void Ours_SmartRemove1000(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) {
    w.smart->removeItems(w.some);
    state.PauseTiming();
    w.smart->addItems(w.some);
    state.ResumeTiming();
  }
}
BENCHMARK(Ours_SmartRemove1000)->Unit(benchmark::kMillisecond);

void Peer_SmartSetItems(benchmark::State& state) {
  auto& w = world();
  for (auto _ : state) w.smart->setItems(w.photos);
}
BENCHMARK(Peer_SmartSetItems)->Unit(benchmark::kMillisecond);


}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  BenchTimes find(BenchTimes::Clock::CPU);
  benchmark::RunSpecifiedBenchmarks(&find);
  std::printf("\nTrees, %d photos in year / month / day, batches of %d (CPU time, goal >= 10x):\n", kPhotos, kBatch);
  auto ratio = [&](const char* ours, const char* peer, const char* what) {
    const double a = find(ours), b = find(peer);
    if (a > 0 && b > 0) std::printf("  %-44s %8.2f ms vs %8.2f ms rebuild: %6.1fx faster\n", what, a, b, b / a);
  };
  ratio("Ours_ControllerInsert1000", "Peer_BuilderRebuild", "MCTreeController insertItems");
  ratio("Ours_ControllerRemove1000", "Peer_BuilderRebuild", "MCTreeController removeItems");
  ratio("Ours_ControllerUpdate1000", "Peer_BuilderRebuild", "MCTreeController updateItems");
  ratio("Ours_SmartAdd1000", "Peer_SmartSetItems", "MCSmartTreeNode addItems");
  ratio("Ours_SmartRemove1000", "Peer_SmartSetItems", "MCSmartTreeNode removeItems");
  benchmark::Shutdown();
  return 0;
}
