#include <vesperon/core/MCDataExtensions.h>
#include <vesperon/core/MCMath.h>
#include <vesperon/core/MCNumberExtensions.h>
#include <vesperon/core/MCStringExtensions.h>
#include <vesperon/core/MCValue.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <ctime>
#include <string>

TEST(MCStringExtensions, NilSafeComparisonsWithThePlatformOptions) {
  EXPECT_EQ(compareString(std::nullopt, std::nullopt), 0);
  EXPECT_EQ(compareString(std::nullopt, "a"), -1);
  EXPECT_EQ(compareString("a", std::nullopt), 1);
  EXPECT_EQ(compareString("a", "b"), -1);
  EXPECT_FALSE(isEqualString("a", std::nullopt));
  EXPECT_TRUE(isEqualString(std::nullopt, std::nullopt));

  EXPECT_EQ(compareString("file9", "file10"), 1) << "by code points";
  EXPECT_EQ(compareString("file9", "file10", MCNumericSearch), -1);
  EXPECT_EQ(compareString("file010", "file10", MCNumericSearch), 0);
  EXPECT_EQ(compareString("IMG_2", "img_10", MCNumericSearch | MCCaseInsensitiveSearch), -1);
  EXPECT_TRUE(isEqualString("Straße", "STRASSE", MCCaseInsensitiveSearch)) << "full case folding";
  EXPECT_TRUE(isEqualString("Café", "cafe", MCCaseInsensitiveSearch | MCDiacriticInsensitiveSearch));
  EXPECT_FALSE(isEqualString("Café", "cafe", MCCaseInsensitiveSearch));
  // Precomposed é and e + combining acute are the same text unless compared literally.
  EXPECT_TRUE(isEqualString("\xC3\xA9", "e\xCC\x81", 0));
  EXPECT_FALSE(isEqualString("\xC3\xA9", "e\xCC\x81", MCLiteralSearch));
  EXPECT_TRUE(isEqualString("\xEF\xBC\xA1", "A", MCWidthInsensitiveSearch)) << "full-width A";
  EXPECT_EQ(compareString("a", "A", MCCaseInsensitiveSearch | MCForcedOrderingSearch), 1);
}

TEST(MCStringExtensions, PathsByTheirTexts) {
  EXPECT_FALSE(isDescendantOfPath("/a/bc", "/a/b"));
  EXPECT_TRUE(isDescendantOfPath("/a/bc", "/a"));
  EXPECT_TRUE(isDescendantOfPath("/a", "/a"));
  EXPECT_TRUE(isDescendantOfPath("/a", "/a/"));
  EXPECT_TRUE(isDescendantOfPath("/a/b", "/a/"));
  EXPECT_FALSE(isDescendantOfPath("/a", "/a/b"));
  EXPECT_FALSE(isDescendantOfPath("", "/"));

  EXPECT_EQ(relativePathToSourcePath("/a/b/c/d.jpg", "/a/b"), "b/c/d.jpg");
  EXPECT_EQ(relativePathToSourcePath("/a/b", "/a/b"), "b");
  EXPECT_EQ(relativePathToSourcePath("/x/b/c", "/a/b"), std::nullopt);
  EXPECT_EQ(relativePathToSourcePath("/a", "/a/b"), std::nullopt);

  EXPECT_EQ(commonPathForPaths({"/a/b/c.jpg", "/a/b/d.jpg"}), "/a/b");
  EXPECT_EQ(commonPathForPaths({"/a/B/c", "/a/b/d"}), "/a/B");
  EXPECT_EQ(commonPathForPaths({"/a/b/c.jpg"}), "/a/b/c.jpg");
  EXPECT_EQ(commonPathForPaths({"/a/x", "/a/b/c", "/a/b/d", "/z"}), "/");
  EXPECT_EQ(commonPathForPaths({"a/x", "b/y"}), std::nullopt);
  EXPECT_EQ(commonPathForPaths({}), std::nullopt);
  EXPECT_EQ(pathComponents("/a/b/"), (std::vector<std::string>{"/", "a", "b", "/"}));

  std::tm local{};
  local.tm_year = 2024 - 1900;
  local.tm_mon = 2;
  local.tm_mday = 9;
  local.tm_hour = 12;
  local.tm_isdst = -1;
  auto seconds = std::chrono::seconds(std::mktime(&local));
  EXPECT_EQ(pathFromDate(MCDate(seconds), "x.jpg"), "2024/3/9/x.jpg");
}

TEST(MCNumberExtensions, ComparisonsFractionsAndTicks) {
  EXPECT_EQ(compareNumber(std::nullopt, std::nullopt, 0.1), 0);
  EXPECT_EQ(compareNumber(std::nullopt, 1.0, 0.1), -1);
  EXPECT_EQ(compareNumber(1.0, 1.5, 0.5), 0) << "a difference of exactly the deviation is equal";
  EXPECT_EQ(compareNumber(1.0, 1.6, 0.5), -1);
  EXPECT_EQ(compareNumber(1.6, 1.0, 0.5), 1);
  EXPECT_EQ(compareNumber(2.0, 1.0), 1);
  EXPECT_TRUE(isEqualNumber(std::nullopt, std::nullopt));
  EXPECT_FALSE(isEqualNumber(0.0, std::nullopt));
  EXPECT_EQ(minNumber(3, 2), 2);
  EXPECT_EQ(maxNumber(3, 2), 3);

  // Integers compare as integers, also beyond 2^53 where doubles no longer tell them apart.
  const int64_t big = (int64_t(1) << 53) + 1;
  EXPECT_EQ(compareNumber(big, big - 1), 1);
  EXPECT_EQ(compareNumber(big - 1, big), -1);
  EXPECT_FALSE(isEqualNumber(big, big - 1));
  EXPECT_TRUE(isEqualNumber(big, big));
  EXPECT_EQ(compareNumber(INT64_MAX, INT64_MAX - 1), 1);
  EXPECT_EQ(compareNumber(UINT64_MAX, UINT64_MAX - 1), 1);
  EXPECT_EQ(compareNumber(UINT64_MAX, -1), 1) << "unsigned above every signed value";
  EXPECT_EQ(compareNumber(INT64_MIN, INT64_MIN + 1), -1);
  EXPECT_EQ(compareNumber(big, big - 1, 0.0), 1);
  EXPECT_EQ(compareNumber(big, big - 1, 1.0), 0) << "a difference of exactly the deviation";
  EXPECT_EQ(compareNumber(big - 1, big + 1, 1.5), -1);
  EXPECT_EQ(compareNumber(INT64_MIN, INT64_MAX, 1e300), 0) << "no overflow in the difference";
  EXPECT_EQ(compareNumber(INT64_MIN, INT64_MAX, 1.0), -1);
  EXPECT_EQ(maxNumber(big - 1, big), big);
  EXPECT_EQ(minNumber(big, big - 1), big - 1);

  // An integer against a double: exactly, by the double's integer part and then its fraction.
  const double twoTo53 = 9007199254740992.0;
  EXPECT_EQ(compareNumber(big, twoTo53), 1) << "2^53 + 1 is above the double 2^53";
  EXPECT_EQ(compareNumber(twoTo53, big), -1);
  EXPECT_FALSE(isEqualNumber(big, twoTo53));
  EXPECT_TRUE(isEqualNumber(big - 1, twoTo53));
  EXPECT_EQ(compareNumber(3, 3.5), -1);
  EXPECT_EQ(compareNumber(-3, -3.5), 1);
  EXPECT_EQ(compareNumber(-3, -2.5), -1);
  EXPECT_EQ(compareNumber(INT64_MAX, 9223372036854775808.0), -1) << "2^63 lies above INT64_MAX";
  EXPECT_EQ(compareNumber(UINT64_MAX, 1e300), -1);
  EXPECT_EQ(compareNumber(INT64_MIN, -HUGE_VAL), 1);
  EXPECT_EQ(compareNumber(big, twoTo53, 0.5), 1) << "b - a is -1, below minus the deviation";
  EXPECT_EQ(compareNumber(big, twoTo53, 1.0), 0);
  EXPECT_EQ(compareNumber(3, 3.5, 0.5), 0);
  EXPECT_EQ(compareNumber(3, 3.75, 0.5), -1);
  EXPECT_EQ(compareNumber(4, 3.25, 0.5), 1);
  EXPECT_EQ(compareNumber(1, NAN), 0) << "NaN is unordered";
  EXPECT_FALSE(isEqualNumber(NAN, NAN));

  // Metadata values of different number kinds are equal by the same exact rule.
  EXPECT_FALSE(MCValue(big) == MCValue(twoTo53));
  EXPECT_TRUE(MCValue(big - 1) == MCValue(twoTo53));
  EXPECT_TRUE(MCValue(true) == MCValue(1.0));
  EXPECT_FALSE(MCValue(big) == MCValue(big - 1));

  int64_t n = 0, d = 0;
  getFractionForDenominator(0.004, 1000, n, d);
  EXPECT_EQ(n, 1);
  EXPECT_EQ(d, 250);
  getFractionForDenominator(M_PI, 1000, n, d);
  EXPECT_EQ(n, 355);
  EXPECT_EQ(d, 113);
  getFractionForDenominator(M_PI, 100, n, d);
  EXPECT_EQ(n, 311) << "the semiconvergent 311/99 beats 22/7";
  EXPECT_EQ(d, 99);
  getFractionForDenominator(-2.5, 10, n, d);
  EXPECT_EQ(n, -5);
  EXPECT_EQ(d, 2);
  getFractionForDenominator(7.9, 1, n, d);
  EXPECT_EQ(n, 7);
  EXPECT_EQ(d, 1);
  getFractionForDenominator(3.0, 1000, n, d);
  EXPECT_EQ(n, 3);
  EXPECT_EQ(d, 1);
  // On a tie of the rule (partial quotient exactly 2k) the semiconvergent is taken, even where the
  // last convergent is a little closer: sqrt(2) under 7 gives 10/7, not 7/5.
  getFractionForDenominator(1.41421356, 7, n, d);
  EXPECT_EQ(n, 10);
  EXPECT_EQ(d, 7);
  // Elsewhere never worse than the best fraction found by trying every denominator.
  for (double x : {0.1, 0.333, 2.718281828, 0.0625, 1.0 / 3.0, 0.7071}) {
    for (int64_t limit : {7, 50, 1000}) {
      getFractionForDenominator(x, limit, n, d);
      ASSERT_LE(d, limit);
      double best = 1e9;
      for (int64_t q = 1; q <= limit; ++q) best = std::min(best, std::fabs(x - std::round(x * double(q)) / double(q)));
      EXPECT_LE(std::fabs(x - double(n) / double(d)), best + 1e-15) << x << " limit " << limit;
    }
  }
  uint64_t t1 = numberWithMachAbsoluteTime();
  uint64_t t2 = numberWithMachAbsoluteTime();
  EXPECT_GE(t2, t1);
}

TEST(MCDataExtensions, NilSafeOrderSharedWithFastData) {
  MCData a{1, 2, 3}, b{1, 2, 4}, prefix{1, 2};
  EXPECT_EQ(compareData(a, b), -1);
  EXPECT_EQ(compareData(b, a), 1);
  EXPECT_EQ(compareData(prefix, a), -1) << "on a tie the shorter is smaller";
  EXPECT_EQ(compareData(std::nullopt, a), -1);
  EXPECT_EQ(compareData(std::nullopt, std::nullopt), 0);
  EXPECT_EQ(compareToData(a, std::nullopt), 1);
  EXPECT_EQ(compareData(MCData{}, MCData{9}), -1);
  // Sharing a buffer: the lengths decide without reading the bytes.
  EXPECT_EQ(compareToData(MCByteSpan(a.data(), 2), MCByteSpan(a.data(), 3)), -1);
  EXPECT_TRUE(isEqualData(MCData{1, 2}, prefix));
  EXPECT_FALSE(isEqualData(a, std::nullopt));
}

TEST(MCMath, GcdRotationAndBezier) {
  EXPECT_EQ(MC_MATH_GCD(0, 7), 7u);
  EXPECT_EQ(MC_MATH_GCD(12, 18), 6u);
  EXPECT_EQ(MC_MATH_GCD(17, 5), 1u);
  EXPECT_EQ(MC_MATH_GCD(0, 0), 0u);
  EXPECT_DOUBLE_EQ(MC_MATH_ROTATE_DOUBLE_VALUE(-1, 360), 359);
  EXPECT_DOUBLE_EQ(MC_MATH_ROTATE_DOUBLE_VALUE(725, 360), 5);
  EXPECT_DOUBLE_EQ(MC_MATH_ROTATE_DOUBLE_VALUE(-725, 360), 355);
  EXPECT_DOUBLE_EQ(MC_CUBIC_BEZIER_PATH_VALUE(0, 1, 2, 3, 4), 1);
  EXPECT_DOUBLE_EQ(MC_CUBIC_BEZIER_PATH_VALUE(1, 1, 2, 3, 4), 4);
  EXPECT_DOUBLE_EQ(MC_CUBIC_BEZIER_PATH_VALUE(0.5, 0, 0, 1, 1), 0.5);
  EXPECT_DOUBLE_EQ(MC_CUBIC_BEZIER_PATH_VALUE(0.25, 0, 1, 1, 1), 1 - 0.75 * 0.75 * 0.75);
}
