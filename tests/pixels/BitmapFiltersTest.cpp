#include <vesperon/pixels/MCBitmapFilters.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

namespace {

// The tent blur written out directly: every tap of the 2-D kernel, integer division.
std::vector<uint8_t> referenceBlur(const std::vector<uint8_t>& in, int w, int h, int channels, int64_t kernel) {
  const int64_t r = (kernel - 1) / 2;
  std::vector<uint8_t> out(in.size());
  for (int64_t y = 0; y < h; ++y)
    for (int64_t x = 0; x < w; ++x)
      for (int c = 0; c < channels; ++c) {
        unsigned __int128 sum = 0, weights = 0;
        // The taps outside the image are dropped, so only those inside are visited.
        for (int64_t j = std::max(-r, -y); j <= std::min(r, h - 1 - y); ++j)
          for (int64_t i = std::max(-r, -x); i <= std::min(r, w - 1 - x); ++i) {
            const unsigned __int128 wt = uint64_t(r + 1 - std::abs(i)) * (unsigned __int128)(r + 1 - std::abs(j));
            sum += wt * in[(std::size_t(y + j) * w + std::size_t(x + i)) * channels + c];
            weights += wt;
          }
        out[(std::size_t(y) * w + std::size_t(x)) * channels + c] = uint8_t((sum + weights / 2) / weights);
      }
  return out;
}

std::vector<uint8_t> randomBytes(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> bytes(n);
  for (auto& b : bytes) b = uint8_t(random());
  return bytes;
}

}  // namespace

TEST(BitmapBlur, HandComputedTentWithTruncatedEdges) {
  // A single bright pixel in the middle of 3×3: corner 255/9, edge 510/12, centre 1020/16.
  const uint8_t dot[9] = {0, 0, 0, 0, 255, 0, 0, 0, 0};
  uint8_t out[9] = {};
  ASSERT_TRUE(MCBitmapBlur_1C_8(dot, out, 3, MCMakeSize(3, 3)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 9), (std::vector<uint8_t>{28, 43, 28, 43, 64, 43, 28, 43, 28}));

  // Kernel 1 copies; even and zero kernels, zero and fractional sizes are refused untouched.
  ASSERT_TRUE(MCBitmapBlur_1C_8(dot, out, 1, MCMakeSize(3, 3)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 9), std::vector<uint8_t>(dot, dot + 9));
  out[0] = 99;
  EXPECT_FALSE(MCBitmapBlur_1C_8(dot, out, 4, MCMakeSize(3, 3)));
  EXPECT_FALSE(MCBitmapBlur_1C_8(dot, out, 0, MCMakeSize(3, 3)));
  EXPECT_FALSE(MCBitmapBlur_1C_8(dot, out, 3, MCMakeSize(0.9, 3)));
  EXPECT_FALSE(MCBitmapBlur_4C_8(nullptr, out, 3, MCMakeSize(1, 1)));
  EXPECT_EQ(out[0], 99);
}

TEST(BitmapBlur, MatchesTheDirectSumEverywhere) {
  for (int kernel : {3, 5, 9, 31}) {
    for (auto [w, h] : {std::pair{13, 11}, std::pair{40, 3}, std::pair{2, 17}}) {
      auto in1 = randomBytes(std::size_t(w) * h, unsigned(kernel * 100 + w));
      std::vector<uint8_t> out1(in1.size());
      ASSERT_TRUE(MCBitmapBlur_1C_8(in1.data(), out1.data(), uint32_t(kernel), MCMakeSize(w, h)));
      EXPECT_EQ(out1, referenceBlur(in1, w, h, 1, kernel)) << "1C kernel " << kernel << " size " << w << "x" << h;
      auto in4 = randomBytes(std::size_t(w) * h * 4, unsigned(kernel * 7 + h));
      std::vector<uint8_t> out4(in4.size());
      ASSERT_TRUE(MCBitmapBlur_4C_8(in4.data(), out4.data(), uint32_t(kernel), MCMakeSize(w, h)));
      EXPECT_EQ(out4, referenceBlur(in4, w, h, 4, kernel)) << "4C kernel " << kernel << " size " << w << "x" << h;
    }
  }
}

TEST(BitmapBlur, ConstantImagesStayConstantWithLargeKernels) {
  // Kernel 9 uses 32-bit sums and float division; 301 needs 64-bit sums and double division.
  for (uint32_t kernel : {9u, 301u}) {
    std::vector<uint8_t> in(64 * 48 * 4);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = uint8_t(i % 4 == 3 ? 255 : 37 + i % 4);
    std::vector<uint8_t> out(in.size());
    ASSERT_TRUE(MCBitmapBlur_4C_8(in.data(), out.data(), kernel, MCMakeSize(64, 48)));
    EXPECT_EQ(out, in) << "kernel " << kernel;
  }
}

// No largest kernel: a kernel far wider than the image drops its outer taps like any edge, with
// sums as wide as they need (64 bits, then 128 for the widest kernel a uint32_t can name).
TEST(BitmapBlur, KernelsWiderThanTheImageMatchTheDefinition) {
  for (uint32_t kernel : {4097u, 65537u, 4294967295u}) {
    const int w = 23, h = 17;
    auto in1 = randomBytes(std::size_t(w) * h, kernel % 1000);
    std::vector<uint8_t> out1(in1.size());
    ASSERT_TRUE(MCBitmapBlur_1C_8(in1.data(), out1.data(), kernel, MCMakeSize(w, h))) << kernel;
    EXPECT_EQ(out1, referenceBlur(in1, w, h, 1, kernel)) << "1C kernel " << kernel;
    auto in4 = randomBytes(std::size_t(w) * h * 4, kernel % 997);
    std::vector<uint8_t> out4(in4.size());
    ASSERT_TRUE(MCBitmapBlur_4C_8(in4.data(), out4.data(), kernel, MCMakeSize(w, h))) << kernel;
    EXPECT_EQ(out4, referenceBlur(in4, w, h, 4, kernel)) << "4C kernel " << kernel;
  }
  uint8_t pixel = 7, out = 0;
  EXPECT_FALSE(MCBitmapBlur_1C_8(&pixel, &out, 4294967294u, MCMakeSize(1, 1))) << "even kernels stay refused";
}

TEST(BitmapContrastAndEqualize, StretchAndFlattenPerChannel) {
  const uint8_t gray[3] = {10, 20, 30};
  uint8_t out[16] = {};
  ASSERT_TRUE(MCBitmapContrast_1C_8(gray, out, MCMakeSize(3, 1)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 3), (std::vector<uint8_t>{0, 128, 255}));

  // Channels are independent; a constant channel is copied.
  const uint8_t four[8] = {10, 5, 100, 0, 30, 5, 101, 255};
  ASSERT_TRUE(MCBitmapContrast_4C_8(four, out, MCMakeSize(2, 1)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{0, 5, 0, 0, 255, 5, 255, 255}));

  // Two levels go to the extremes; three levels spread by their cumulative counts.
  const uint8_t twoLevels[4] = {50, 50, 50, 200};
  ASSERT_TRUE(MCBitmapEqualize_1C_8(twoLevels, out, MCMakeSize(2, 2)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{0, 0, 0, 255}));
  const uint8_t threeLevels[4] = {0, 100, 100, 200};
  ASSERT_TRUE(MCBitmapEqualize_1C_8(threeLevels, out, MCMakeSize(4, 1)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{0, 170, 170, 255}));
  const uint8_t constant[4] = {77, 77, 77, 77};
  ASSERT_TRUE(MCBitmapEqualize_1C_8(constant, out, MCMakeSize(2, 2)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{77, 77, 77, 77}));
  const uint8_t rgba[8] = {50, 9, 0, 255, 200, 9, 40, 255};
  ASSERT_TRUE(MCBitmapEqualize_4C_8(rgba, out, MCMakeSize(2, 1)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{0, 9, 0, 255, 255, 9, 255, 255}));

  EXPECT_FALSE(MCBitmapEqualize_1C_8(constant, out, MCMakeSize(2, 0)));
  EXPECT_FALSE(MCBitmapContrast_4C_8(nullptr, out, MCMakeSize(2, 2)));
}

TEST(BitmapConvert, DropsTheFirstOrTheLastByte) {
  const uint8_t pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  uint8_t out[6] = {};
  ASSERT_TRUE(MCBitmapConvert_ARGB8_to_RGB8(pixels, out, MCMakeSize(2, 1)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 6), (std::vector<uint8_t>{2, 3, 4, 6, 7, 8}));
  ASSERT_TRUE(MCBitmapConvert_RGBA8_to_RGB8(pixels, out, MCMakeSize(1, 2)));
  EXPECT_EQ(std::vector<uint8_t>(out, out + 6), (std::vector<uint8_t>{1, 2, 3, 5, 6, 7}));
  EXPECT_FALSE(MCBitmapConvert_RGBA8_to_RGB8(pixels, out, MCMakeSize(-1, 2)));
}
