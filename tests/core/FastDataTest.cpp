#include <vesperon/core/MCFastData.h>

#include <gtest/gtest.h>

TEST(MCFastData, SizesCopiesAndCompares) {
  const uint8_t abc[3] = {'a', 'b', 'c'};
  MCFastData data(abc, 3);
  EXPECT_EQ(data.length(), 3u);
  EXPECT_EQ(data.bytes()[2], 'c');
  const uint8_t* buffer = data.bytes();
  const uint8_t xyz[3] = {'x', 'y', 'z'};
  data.setBytes(xyz, 3);
  EXPECT_EQ(data.bytes(), buffer) << "same length keeps the allocation";
  EXPECT_EQ(data.bytes()[0], 'x');
  data.setBytes(nullptr, 5);
  EXPECT_EQ(data.length(), 5u);
  data.setBytes(nullptr, 0);
  EXPECT_EQ(data.length(), 0u);

  MCFastData ab(abc, 2), abcd(abc, 3), xy(xyz, 2), empty(std::size_t(0)), ab2(abc, 2);
  EXPECT_TRUE(ab.isEqualToData(ab2));
  EXPECT_FALSE(ab.isEqualToData(abcd));
  EXPECT_TRUE(MCFastData::isEqualData(nullptr, nullptr));
  EXPECT_FALSE(MCFastData::isEqualData(&ab, nullptr));
  EXPECT_EQ(ab.compareToData(&ab), 0);
  EXPECT_EQ(ab.compareToData(nullptr), 1);
  EXPECT_EQ(ab.compareToData(&abcd), -1) << "a prefix is smaller";
  EXPECT_EQ(abcd.compareToData(&xy), -1) << "bytes before lengths";
  EXPECT_EQ(empty.compareToData(&ab), -1);
  EXPECT_EQ(ab.compareToData(&ab2), 0);
  EXPECT_EQ(MCFastData::compareData(nullptr, &empty), -1);
  EXPECT_EQ(MCFastData::compareData(nullptr, nullptr), 0);
}
