#include <vesperon/core/MCBimap.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

TEST(MCBimap, ReadsBothWaysAndKeepsAStaleReverseEntry) {
  MCBimap<std::string, int> map;
  map.setObject(1, "one");
  map.setObject(2, "two");
  EXPECT_EQ(map.count(), 2u);
  EXPECT_EQ(map.objectForKey("one"), 1);
  EXPECT_EQ(map.keyForObject(2), "two");
  EXPECT_EQ(map.objectForKey("three"), std::nullopt);
  EXPECT_EQ(map.objectsForKeys({"two", "x", "one"}, -1), (std::vector<int>{2, -1, 1})) << "keeps the length";
  EXPECT_EQ(map.keysForObjects({3, 1}, "?"), (std::vector<std::string>{"?", "one"}));

  map.setObject(10, "one");
  EXPECT_EQ(map.objectForKey("one"), 10);
  EXPECT_EQ(map.keyForObject(1), "one") << "the older reverse entry stays";
  EXPECT_EQ(map.count(), 2u);

  EXPECT_EQ(map.removeObjectForKey("one"), 10);
  EXPECT_FALSE(map.containsObject(10));
  EXPECT_TRUE(map.containsObject(1));
  EXPECT_EQ(map.removeObjectForKey("one"), std::nullopt);
  EXPECT_EQ(map.removeKeyForObject(2), "two");
  EXPECT_FALSE(map.containsKey("two"));
  EXPECT_EQ(map.removeKeyForObject(2), std::nullopt);
}

TEST(MCBimap, RemovingManyDropsMissesAndChangesNothingWhenNoneIsFound) {
  MCBimap<std::string, int> map;
  map.setObject(1, "a");
  map.setObject(2, "b");
  map.setObject(3, "c");
  EXPECT_TRUE(map.removeObjectsForKeys({"x", "y"}).empty());
  EXPECT_EQ(map.count(), 3u);
  EXPECT_EQ(map.removeObjectsForKeys({"c", "x", "a"}), (std::vector<int>{3, 1}));
  EXPECT_EQ(map.count(), 1u);
  EXPECT_FALSE(map.containsObject(3));
  EXPECT_FALSE(map.containsObject(1));
  EXPECT_TRUE(map.removeKeysForObjects({7}).empty());
  EXPECT_EQ(map.removeKeysForObjects({7, 2}), (std::vector<std::string>{"b"}));
  EXPECT_EQ(map.count(), 0u);
  EXPECT_FALSE(map.containsObject(2));

  MCBimap<int, std::shared_ptr<std::string>> shared;
  auto s = std::make_shared<std::string>("s");
  shared.setObject(s, 1);
  EXPECT_EQ(shared.keyForObject(s), 1);
  EXPECT_EQ(shared.objectForKey(2), nullptr);
  shared.removeAllObjects();
  EXPECT_EQ(shared.count(), 0u);
  EXPECT_FALSE(shared.containsObject(s));
}
