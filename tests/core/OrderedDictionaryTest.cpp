#include <vesperon/core/MCOrderedDictionary.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {
using Dict = MCMutableOrderedDictionary<std::string, int>;
using Keys = std::vector<std::string>;

Dict make(const Keys& keys, const std::vector<int>& objects) { return Dict(objects, keys); }

// The two containers must always agree: every key once in the order, and in the map.
void expectConsistent(const Dict& d) {
  auto keys = d.allKeys();
  EXPECT_EQ(keys.size(), d.count());
  for (size_t i = 0; i < keys.size(); ++i) {
    EXPECT_TRUE(d.containsKey(keys[i]));
    EXPECT_EQ(d.indexOfKey(keys[i]), i) << "key " << keys[i] << " appears twice";
  }
}
}  // namespace

TEST(MCOrderedDictionary, SetKeepsThePlaceAddMovesLastInsertFollowsTheRules) {
  Dict d = make({"a", "b", "c"}, {1, 2, 3});
  d.setObject(20, "b");
  EXPECT_EQ(d.allKeys(), (Keys{"a", "b", "c"}));
  EXPECT_EQ(d.objectForKey("b"), 20);
  d.addObject(21, "b");
  EXPECT_EQ(d.allKeys(), (Keys{"a", "c", "b"}));
  EXPECT_EQ(d.allObjects(), (std::vector<int>{1, 3, 21}));

  d.insertObject(4, "d", 3);  // index == count: appended
  EXPECT_EQ(d.allKeys(), (Keys{"a", "c", "b", "d"}));
  d.insertObject(5, "a", 4);  // present key at count: lands last
  EXPECT_EQ(d.allKeys(), (Keys{"c", "b", "d", "a"}));
  EXPECT_EQ(d.objectForKey("a"), 5);
  d.insertObject(6, "d", 0);  // moves forward to the index itself
  EXPECT_EQ(d.allKeys(), (Keys{"d", "c", "b", "a"}));
  d.insertObject(7, "c", 1);  // its own index: stays, object set
  EXPECT_EQ(d.allKeys(), (Keys{"d", "c", "b", "a"}));
  EXPECT_EQ(d.objectForKey("c"), 7);
  d.insertObject(8, "c", 3);  // moves back: index - 1
  EXPECT_EQ(d.allKeys(), (Keys{"d", "b", "c", "a"}));
  d.insertObject(9, "z", 5);  // above count: nothing at all
  EXPECT_FALSE(d.containsKey("z"));
  EXPECT_EQ(d.objectForKey("c"), 8);
  expectConsistent(d);

  using PtrDict = MCMutableOrderedDictionary<std::string, std::shared_ptr<int>>;
  EXPECT_THROW(PtrDict().setObject(nullptr, "k"), std::invalid_argument);
}

TEST(MCOrderedDictionary, ReadsAnswerNoneOrShorterResultsInsteadOfRaising) {
  Dict d = make({"a", "b", "c"}, {1, 2, 1});
  EXPECT_EQ(d.keyAtIndex(3), std::nullopt);
  EXPECT_EQ(d.objectAtIndex(NSNotFound), std::nullopt);
  EXPECT_EQ(d.keyAtIndex(2), "c");
  EXPECT_EQ(d.indexOfKey("zz"), NSNotFound);
  EXPECT_EQ(d.indexOfObject(7), NSNotFound);
  uint64_t ofOne = d.indexOfObject(1);
  EXPECT_TRUE(ofOne == 0 || ofOne == 2);
  EXPECT_EQ(d.objectsForKeys({"c", "x", "a"}), (std::vector<int>{1, 1}));
  EXPECT_EQ(d.indexesOfKeys({"c", "x", "a"}), (MCIndexSet{0, 2}));
  EXPECT_EQ(d.indexesOfObjects({1}), (MCIndexSet{0, 2}));
  EXPECT_EQ(d.keysAtIndexes(MCIndexSet{0, 2}), (Keys{"a", "c"}));
  EXPECT_THROW(d.keysAtIndexes(MCIndexSet{3}), std::out_of_range);
  EXPECT_EQ(*d.firstKey(), "a");
  EXPECT_EQ(*d.lastObject(), 1);
  EXPECT_EQ(Dict().firstObject(), std::nullopt);

  auto sub = d.orderedDictionaryWithRange({1, 2});
  static_assert(std::is_same_v<decltype(sub), MCOrderedDictionary<std::string, int>>, "always immutable");
  EXPECT_EQ(sub.allKeys(), (Keys{"b", "c"}));
  EXPECT_THROW(d.orderedDictionaryWithRange({2, 2}), std::out_of_range);

  std::vector<std::string> reversed;
  d.enumerateKeysWithOptions(MCEnumerationReverse, [&](const std::string& k, uint64_t, bool& stop) {
    reversed.push_back(k);
    stop = reversed.size() == 2;
  });
  EXPECT_EQ(reversed, (Keys{"c", "b"}));
  EXPECT_EQ(d.filteredObjectsUsingBlock([](const std::string& k, int, bool&) { return k != "b"; }),
            (std::vector<int>{1, 1}));
  EXPECT_NE(d.description().find("\nKeys: a, b, c\nObjects:1, 2, 1"), std::string::npos) << d.description();
}

TEST(MCOrderedDictionary, ConstructionFromListsAndTheSharedEmptyInstance) {
  auto d = MCOrderedDictionary<std::string, std::string>::orderedDictionaryWithObjectsAndKeys(
      "one", "1", "two", "2", nullptr, "3", "four", "4");
  EXPECT_EQ(d.allKeys(), (Keys{"1", "2"})) << "stops at the first nil";
  const char* none = nullptr;
  auto e = MCOrderedDictionary<std::string, std::string>::orderedDictionaryWithObjectsAndKeys("one", "1", "x", none);
  EXPECT_EQ(e.count(), 1u);
  using Frozen = MCOrderedDictionary<std::string, int>;
  EXPECT_EQ(Frozen(std::vector<int>{1, 2, 3}, Keys{"a", "b"}).count(), 2u);
  EXPECT_EQ(Frozen::orderedDictionaryWithOrderedDictionary(nullptr).count(), 0u);

  std::shared_ptr<const Frozen> a, b;
  std::thread t([&] { a = Frozen::orderedDictionary(); });
  b = Frozen::orderedDictionary();
  t.join();
  EXPECT_EQ(a, b) << "one shared empty instance";
  EXPECT_NE(Dict::orderedDictionary(), Dict::orderedDictionary()) << "the mutable class makes a new one";

  Dict m = make({"a"}, {1});
  auto frozen = m.copy();
  m.setObject(2, "b");
  EXPECT_EQ(frozen.count(), 1u);
  auto thawed = frozen.mutableCopy();
  thawed.addEntriesFromOrderedDictionary(m);
  EXPECT_EQ(thawed.allKeys(), (Keys{"a", "b"}));
}

TEST(MCOrderedDictionary, RemovalsAndSortsKeepBothContainersInStep) {
  Dict d = make({"e", "d", "c", "b", "a"}, {1, 2, 1, 3, 1});
  d.removeObject(1);
  EXPECT_EQ(d.allKeys(), (Keys{"d", "b"}));
  d.removeObjectAtIndex(9);
  d.removeObjectForKey("zz");
  d.removeLastObject();
  EXPECT_EQ(d.allKeys(), (Keys{"d"}));
  d.removeAllObjects();
  d.removeLastObject();
  EXPECT_TRUE(d.empty());

  Dict s = make({"c", "a", "d", "b"}, {1, 2, 3, 4});
  s.sortKeys();
  EXPECT_EQ(s.allKeys(), (Keys{"a", "b", "c", "d"}));
  EXPECT_EQ(s.objectForKey("c"), 1);
  s.sortKeysAndObjectsUsingComparator(
      [](const std::string&, int o1, const std::string&, int o2) { return MCCompareValues(o2, o1); });
  EXPECT_EQ(s.allKeys(), (Keys{"b", "d", "a", "c"}));
  s.sortKeysUsingDescriptors({MCSortDescriptor<std::string>::sortDescriptorWithKey(
      [](const std::string& k) { return k; }, false)});
  EXPECT_EQ(s.allKeys(), (Keys{"d", "c", "b", "a"}));
  s.removeObjectsAtIndexes(MCIndexSet{0, 2});
  EXPECT_EQ(s.allKeys(), (Keys{"c", "a"}));
  s.addObject(5, "e");
  s.removeObjectsForKeys({"e", "zz", "c", "e"});
  EXPECT_EQ(s.allKeys(), (Keys{"a"}));
  expectConsistent(s);

  // Random changes against a simple model.
  std::mt19937 rng(5);
  Dict r;
  std::vector<std::pair<std::string, int>> model;
  for (int step = 0; step < 3000; ++step) {
    std::string key(1, char('a' + rng() % 12));
    int value = int(rng() % 5);
    auto it = std::find_if(model.begin(), model.end(), [&](auto& p) { return p.first == key; });
    switch (rng() % 4) {
      case 0:
        r.setObject(value, key);
        if (it != model.end()) it->second = value; else model.push_back({key, value});
        break;
      case 1:
        r.addObject(value, key);
        if (it != model.end()) model.erase(it);
        model.push_back({key, value});
        break;
      case 2:
        r.removeObjectForKey(key);
        if (it != model.end()) model.erase(it);
        break;
      default: {
        uint64_t index = rng() % (model.size() + 2);
        r.insertObject(value, key, index);
        if (index > model.size()) break;
        if (it == model.end()) {
          model.insert(model.begin() + index, {key, value});
        } else {
          uint64_t old = uint64_t(it - model.begin());
          model.erase(it);
          model.insert(model.begin() + (index > old ? index - 1 : index), {key, value});
        }
      }
    }
  }
  ASSERT_EQ(r.count(), model.size());
  for (size_t i = 0; i < model.size(); ++i) {
    EXPECT_EQ(r.keyAtIndex(i), model[i].first);
    EXPECT_EQ(r.objectAtIndex(i), model[i].second);
  }
  expectConsistent(r);
}

TEST(MCOrderedDictionary, GroupingPullsEqualObjectsBehindTheirFirstOccurrence) {
  Dict d = make({"k1", "k2", "k3", "k4", "k5"}, {'A', 'B', 'A', 'C', 'B'});
  d.groupEqualObjects();
  EXPECT_EQ(d.allObjects(), (std::vector<int>{'A', 'A', 'B', 'B', 'C'}));
  EXPECT_EQ(d.allKeys(), (Keys{"k1", "k3", "k2", "k5", "k4"})) << "keys move with their objects";

  // Shared objects group by value, not by pointer.
  MCMutableOrderedDictionary<int, std::shared_ptr<std::string>> p;
  for (auto [k, v] : std::vector<std::pair<int, const char*>>{{1, "x"}, {2, "y"}, {3, "x"}, {4, "y"}})
    p.setObject(std::make_shared<std::string>(v), k);
  p.groupEqualObjects();
  EXPECT_EQ(p.allKeys(), (std::vector<int>{1, 3, 2, 4}));

  Dict byParity = make({"a", "b", "c", "d", "e"}, {1, 2, 3, 4, 5});
  byParity.groupEqualObjectsUsingComparator([](int pivot, int candidate) { return pivot % 2 == candidate % 2; });
  EXPECT_EQ(byParity.allObjects(), (std::vector<int>{1, 3, 5, 2, 4}));
  Dict one = make({"a"}, {1});
  one.groupEqualObjects();
  EXPECT_EQ(one.count(), 1u);
}

TEST(MCOrderedDictionary, AddIntoASortedRangeUsesTheNewObjectForTheNewKey) {
  Dict d;
  auto byObject = [](const std::string&, int o1, const std::string&, int o2) { return MCCompareValues(o1, o2); };
  std::mt19937 rng(11);
  for (int i = 0; i < 200; ++i) {
    int value = int(rng() % 1000);
    d.addObject(value, "k" + std::to_string(i), MCRange{0, d.count()}, byObject);
  }
  auto objects = d.allObjects();
  EXPECT_TRUE(std::is_sorted(objects.begin(), objects.end()));
  // A present key keeps its place and takes the new object, even out of order.
  std::string key = *d.keyAtIndex(0);
  d.addObject(99999, key, MCRange{0, d.count()}, byObject);
  EXPECT_EQ(d.keyAtIndex(0), key);
  EXPECT_EQ(d.objectAtIndex(0), 99999);
  // Within a sub-range only.
  Dict w = make({"a", "b", "c", "d"}, {50, 10, 20, 30});
  w.addObject(25, "x", MCRange{1, 3}, byObject);
  EXPECT_EQ(w.allKeys(), (Keys{"a", "b", "c", "x", "d"}));
  EXPECT_THROW(w.addObject(1, "y", MCRange{3, 9}, byObject), std::out_of_range);
  expectConsistent(w);
}
