#include <vesperon/pipeline/MCCache.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Cache = MCCache<std::string, std::shared_ptr<int>>;

std::shared_ptr<int> value(int v) { return std::make_shared<int>(v); }

// The keys from the most recently used to the oldest, walking the circular list once, and checking
// that the backward links mirror the forward ones.
std::vector<std::string> order(const Cache& cache) {
  std::vector<std::string> keys;
  auto head = cache.cacheHead();
  if (!head) return keys;
  auto item = head;
  do {
    keys.push_back(item->key);
    EXPECT_EQ(item->nextItem->previousItem, item);
    item = item->nextItem;
  } while (item != head && keys.size() <= cache.count());
  EXPECT_EQ(keys.size(), cache.count());
  return keys;
}

using Keys = std::vector<std::string>;

}  // namespace

TEST(Cache, EvictsTheLeastRecentlyUsed) {
  Cache cache(2);
  cache.setObject(value(1), "a");
  cache.setObject(value(2), "b");
  cache.setObject(value(3), "c");
  EXPECT_EQ(order(cache), (Keys{"c", "b"}));
  EXPECT_FALSE(cache.objectForKey("a"));

  EXPECT_EQ(*cache.objectForKey("b"), 2);
  cache.setObject(value(4), "d");
  EXPECT_EQ(order(cache), (Keys{"d", "b"}));
  EXPECT_EQ(cache.cacheTail()->key, "b");

  // An existing key at full capacity evicts nothing and becomes young.
  cache.setObject(value(5), "b");
  EXPECT_EQ(order(cache), (Keys{"b", "d"}));
  EXPECT_EQ(*cache.objectForKey("b"), 5);
}

TEST(Cache, MovingItemsKeepsTheListCircular) {
  Cache cache(8);
  for (const char* k : {"a", "b", "c", "d", "e"}) cache.setObject(value(0), k);
  EXPECT_EQ(order(cache), (Keys{"e", "d", "c", "b", "a"}));
  cache.objectForKey("a");  // the oldest: only the head moves
  EXPECT_EQ(order(cache), (Keys{"a", "e", "d", "c", "b"}));
  cache.objectForKey("d");  // from the middle
  EXPECT_EQ(order(cache), (Keys{"d", "a", "e", "c", "b"}));
  cache.objectForKey("d");  // already the head
  EXPECT_EQ(order(cache), (Keys{"d", "a", "e", "c", "b"}));
  cache.removeObjectForKey("d");  // the head
  EXPECT_EQ(order(cache), (Keys{"a", "e", "c", "b"}));
  cache.removeObjectForKey("c");
  EXPECT_EQ(order(cache), (Keys{"a", "e", "b"}));
  cache.removeObjectForKey("b");  // the tail
  EXPECT_EQ(order(cache), (Keys{"a", "e"}));
  EXPECT_EQ(cache.cacheTail()->key, "e");
}

TEST(Cache, SmallCapacities) {
  Cache one(1);
  for (int i = 0; i < 4; ++i) {
    one.setObject(value(i), std::to_string(i));
    EXPECT_EQ(one.count(), 1u);
    EXPECT_EQ(*one.objectForKey(std::to_string(i)), i);
  }

  // Capacity 0 still keeps the newest object: eviction makes room before each insertion.
  Cache zero(0);
  zero.setObject(value(1), "a");
  EXPECT_EQ(zero.count(), 1u);
  zero.setObject(value(2), "b");
  EXPECT_EQ(zero.count(), 1u);
  EXPECT_FALSE(zero.objectForKey("a"));
  EXPECT_EQ(*zero.objectForKey("b"), 2);
}

TEST(Cache, ShrinkingTakesEffectAtTheNextNewKey) {
  Cache cache(5);
  for (const char* k : {"a", "b", "c", "d", "e"}) cache.setObject(value(0), k);
  cache.setCacheSize(2);
  EXPECT_EQ(cache.count(), 5u);
  cache.setObject(value(9), "c");  // existing key: still nothing evicted
  EXPECT_EQ(cache.count(), 5u);
  cache.setObject(value(1), "f");  // 5 - 2 + 1 = 4 removed, then f goes in
  EXPECT_EQ(order(cache), (Keys{"f", "c"}));
}

TEST(Cache, EmptiesAndStartsOver) {
  Cache cache(3);
  cache.setObject(value(1), "only");
  cache.removeObjectForKey("only");
  EXPECT_EQ(cache.count(), 0u);
  EXPECT_FALSE(cache.cacheHead());
  EXPECT_FALSE(cache.cacheTail());
  cache.setObject(value(2), "again");
  EXPECT_EQ(order(cache), (Keys{"again"}));
  EXPECT_EQ(cache.cacheTail(), cache.cacheHead());

  // An item without an object takes a place but looks like a miss.
  cache.setObject(nullptr, "none");
  EXPECT_EQ(cache.count(), 2u);
  EXPECT_FALSE(cache.objectForKey("none"));

  std::weak_ptr<Cache::Item> held = cache.cacheHead();
  std::weak_ptr<int> object = cache.objectForKey("again");
  cache.removeAllObjects();
  EXPECT_EQ(cache.count(), 0u);
  EXPECT_FALSE(cache.cacheHead());
  EXPECT_TRUE(held.expired());  // the strong cycle is broken
  EXPECT_TRUE(object.expired());
  cache.setObject(value(3), "x");
  EXPECT_EQ(order(cache), (Keys{"x"}));
}

TEST(Cache, DestructionReleasesEveryItem) {
  std::weak_ptr<int> object;
  std::weak_ptr<Cache::Item> item;
  {
    Cache cache;
    EXPECT_EQ(cache.cacheSize(), 64u);
    auto v = value(7);
    object = v;
    cache.setObject(v, "a");
    cache.setObject(value(8), "b");
    item = cache.cacheTail();
  }
  EXPECT_TRUE(object.expired());
  EXPECT_TRUE(item.expired());
}
