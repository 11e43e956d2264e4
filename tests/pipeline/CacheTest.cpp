#include <vesperon/pipeline/MCCache.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
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

TEST(Cache, RandomOperationsMatchAReferenceList) {
  // The reference keeps the keys from the youngest to the oldest. A new key, with n objects at
  // capacity s and n at least s, first removes the n - s + 1 oldest; so capacity 0 keeps the
  // newest, and a smaller capacity takes effect at the next new key. Reads make a key the youngest.
  std::mt19937 random(7);
  for (int round = 0; round < 40; ++round) {
    uint64_t capacity = random() % 5;
    Cache cache(capacity);
    Keys expected;
    std::map<std::string, int> values;
    for (int step = 0; step < 60; ++step) {
      const std::string key(1, char('a' + random() % 7));
      auto at = std::find(expected.begin(), expected.end(), key);
      const unsigned operation = random() % 8;
      if (operation < 4) {
        if (at != expected.end()) expected.erase(at);
        else if (expected.size() >= capacity) expected.resize(capacity == 0 ? 0 : capacity - 1);
        expected.insert(expected.begin(), key);
        values[key] = int(random() % 100);
        cache.setObject(value(values[key]), key);
      } else if (operation < 6) {
        auto got = cache.objectForKey(key);
        ASSERT_EQ(bool(got), at != expected.end());
        if (got) {
          EXPECT_EQ(*got, values[key]);
          expected.erase(at);
          expected.insert(expected.begin(), key);
        }
      } else if (operation == 6) {
        cache.removeObjectForKey(key);
        if (at != expected.end()) expected.erase(at);
      } else {
        capacity = random() % 5;
        cache.setCacheSize(capacity);
      }
      ASSERT_EQ(order(cache), expected) << "round " << round << ", step " << step;
      if (!expected.empty()) { EXPECT_EQ(cache.cacheTail()->key, expected.back()); }
    }
  }
}

TEST(Cache, EmptiesAndStartsOver) {
  Cache cache(3);
  cache.setObject(value(2), "again");
  // An item without an object takes a place but looks like a miss.
  cache.setObject(nullptr, "none");
  EXPECT_EQ(cache.count(), 2u);
  EXPECT_FALSE(cache.objectForKey("none"));

  std::weak_ptr<Cache::Item> held = cache.cacheHead();
  std::weak_ptr<int> object = cache.objectForKey("again");
  cache.removeAllObjects();
  EXPECT_EQ(cache.count(), 0u);
  EXPECT_FALSE(cache.cacheHead());
  EXPECT_FALSE(cache.cacheTail());
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
