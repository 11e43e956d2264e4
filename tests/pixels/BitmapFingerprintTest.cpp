#include <vesperon/pixels/MCBitmapCompare.h>
#include <vesperon/pixels/MCBitmapCounting.h>
#include <vesperon/pixels/MCBitmapHistograms.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

TEST(BitmapHistograms, NormalisedCountsPerChannel) {
  const uint8_t gray[4] = {0, 0, 255, 7};
  auto one = MCBitmapCalculateHistograms_1C_8(gray, MCMakeSize(2, 2));
  ASSERT_TRUE(one);
  ASSERT_EQ(one->size(), 1u);
  ASSERT_EQ((*one)[0].size(), 256u);
  EXPECT_EQ((*one)[0][0], 0.5f);
  EXPECT_EQ((*one)[0][7], 0.25f);
  EXPECT_EQ((*one)[0][255], 0.25f);
  EXPECT_EQ((*one)[0][1], 0.0f);

  const uint8_t rgba[8] = {1, 2, 3, 4, 1, 9, 3, 4};
  auto four = MCBitmapCalculateHistograms_4C_8(rgba, MCMakeSize(2, 1));
  ASSERT_TRUE(four);
  ASSERT_EQ(four->size(), 4u);
  EXPECT_EQ((*four)[0][1], 1.0f);
  EXPECT_EQ((*four)[1][2], 0.5f);
  EXPECT_EQ((*four)[1][9], 0.5f);
  EXPECT_EQ((*four)[3][4], 1.0f);

  EXPECT_FALSE(MCBitmapCalculateHistograms_1C_8(gray, MCMakeSize(0, 2)));
  EXPECT_FALSE(MCBitmapCalculateHistograms_4C_8(nullptr, MCMakeSize(2, 2)));

  // Three pixels: the division is by the single-precision count, so 1/3 rounds as a float does.
  const uint8_t three[3] = {5, 6, 6};
  auto thirds = MCBitmapCalculateHistograms_1C_8(three, MCMakeSize(3, 1));
  EXPECT_EQ((*thirds)[0][5], 1.0f / 3.0f);
  EXPECT_EQ((*thirds)[0][6], 2.0f / 3.0f);
}

TEST(BitmapHistograms, HashBinsSumRunsOfCounters) {
  std::vector<uint8_t> gray(256);
  for (int i = 0; i < 256; ++i) gray[std::size_t(i)] = uint8_t(i < 128 ? i : 3);  // value 3 also 129 times
  auto bins = mc_detail::histogramHash(gray.data(), 1, 1, 2, MCMakeSize(16, 16));
  ASSERT_TRUE(bins);
  ASSERT_EQ(bins->size(), 64u);
  EXPECT_EQ((*bins)[0], 132.0f / 256.0f) << "values 0…3: 0, 1, 2 once and 3 129 times";
  EXPECT_EQ((*bins)[1], 4.0f / 256.0f);
  EXPECT_EQ((*bins)[32], 0.0f);

  auto whole = mc_detail::histogramHash(gray.data(), 1, 1, 8, MCMakeSize(16, 16));
  ASSERT_EQ(whole->size(), 1u);
  EXPECT_EQ((*whole)[0], 1.0f);
  EXPECT_FALSE(mc_detail::histogramHash(nullptr, 1, 1, 2, MCMakeSize(16, 16)));

  // The public form carries the same floats as bytes.
  auto data = MCBitmapCalculateHistogramsHash_1C_8(gray.data(), 2, MCMakeSize(16, 16));
  ASSERT_TRUE(data);
  ASSERT_EQ(data->length(), 64u * 4);
  float first = 0;
  std::memcpy(&first, data->bytes(), 4);
  EXPECT_EQ(first, 132.0f / 256.0f);
  auto empty = MCBitmapCalculateHistogramsHash_RGBA8(gray.data(), 9, MCMakeSize(8, 8));
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->length(), 0u);
  EXPECT_FALSE(MCBitmapCalculateHistogramsHash_RGBA8(gray.data(), 2, MCMakeSize(0, 8)));
  EXPECT_EQ(MCBitmapCalculateHistogramsHash_RGBA8(gray.data(), 4, MCMakeSize(8, 8))->length(), 16u * 12);

  // RGBA: three channels one after the other, alpha left out.
  const uint8_t rgba[8] = {0, 128, 255, 9, 0, 0, 255, 200};
  auto rgb = mc_detail::histogramHash(rgba, 4, 3, 7, MCMakeSize(1, 2));
  ASSERT_TRUE(rgb);
  EXPECT_EQ(*rgb, (std::vector<float>{1, 0, 0.5f, 0.5f, 0, 1}));
}

TEST(BitmapCompare, FastDistanceCountsWholeGroupsOnly) {
  std::vector<uint8_t> zeros(32, 0), full(32, 255);
  EXPECT_EQ(MCBitmapCompareFast(zeros.data(), zeros.data(), 32), 0.0f);
  EXPECT_EQ(MCBitmapCompareFast(zeros.data(), full.data(), 32), 1.0f);
  EXPECT_EQ(MCBitmapCompareFast(full.data(), zeros.data(), 32), 1.0f) << "absolute, not signed";
  // 20 bytes: one group of 16 counts, the rest of 4 does not, but the division is by 20.
  EXPECT_EQ(MCBitmapCompareFast(zeros.data(), full.data(), 20), float(16.0 / 20.0));
  std::vector<uint8_t> tail(20, 0);
  tail[17] = 255;
  EXPECT_EQ(MCBitmapCompareFast(zeros.data(), tail.data(), 20), 0.0f);
  std::vector<uint8_t> a(16, 10), b(16, 13);
  EXPECT_EQ(MCBitmapCompareFast(a.data(), b.data(), 16), float(48.0 / 255.0 / 16.0));
  EXPECT_TRUE(std::isnan(MCBitmapCompareFast(a.data(), b.data(), 0)));

  // Large enough to cross the 2^24-byte blocks of the 32-bit partial sums.
  const std::size_t bigLength = (std::size_t(1) << 24) + (std::size_t(1) << 17);  // 255 × this passes 2^32
  std::vector<uint8_t> big(bigLength, 0), bigFull(bigLength, 255);
  EXPECT_EQ(MCBitmapCompareFast(big.data(), bigFull.data(), big.size()), 1.0f);
}

TEST(BitmapCompare, HistogramDistanceIsTheSumOfSquares) {
  const float a[5] = {0.5f, 0.25f, 0.25f, 0.0f, 1.0f};
  const float b[5] = {0.25f, 0.25f, 0.0f, 0.5f, 0.0f};
  EXPECT_EQ(MCBitmapCompareHistogram(a, a, 20), 0.0f);
  EXPECT_EQ(MCBitmapCompareHistogram(a, b, 4), 0.0f) << "less than a group of four floats";
  EXPECT_EQ(MCBitmapCompareHistogram(a, b, 20), 0.0625f + 0.0625f + 0.25f) << "the fifth float is a rest";
  EXPECT_EQ(MCBitmapCompareHistogram(a, b, 16), MCBitmapCompareHistogram(b, a, 16));
}
