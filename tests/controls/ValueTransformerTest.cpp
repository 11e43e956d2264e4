// The settings transformers: their numbers both ways and their texts (shown as their keys, which
// is what a missing translation shows).
#include <vesperon/controls/MCMatchNameLengthCheckboxTransformer.h>
#include <vesperon/controls/MCMatchNameLengthSliderTransformer.h>
#include <vesperon/controls/MCMatchNameLengthStringTransformer.h>
#include <vesperon/controls/MCMinImageSizeToStringTransformer.h>
#include <vesperon/controls/MCNullAvoidNumberTransformer.h>
#include <vesperon/controls/MCNullAvoidStringTransformer.h>
#include <vesperon/controls/MCRequiredQualitySliderTransformer.h>
#include <vesperon/controls/MCRequiredTimeIntervalSliderTransformer.h>
#include <vesperon/controls/MCRequiredTimeIntervalStringTransformer.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/core/MCTypes.h>

#include <gtest/gtest.h>

namespace {
int64_t number(const std::optional<MCValue>& v) { return v ? v->integerValue().value_or(-999) : -999; }
std::string textOf(const std::optional<MCValue>& v) { return v && v->string() ? *v->string() : "<none>"; }
}  // namespace

TEST(ValueTransformers, NumbersBothWays) {
  const auto& quality = MCRequiredQualitySliderTransformer::sharedInstance();
  EXPECT_EQ(number(quality.transformedValue(MCValue(24))), 1);
  EXPECT_EQ(number(quality.reverseTransformedValue(MCValue(1))), 24);
  EXPECT_EQ(number(quality.transformedValue(MCValue(9))), 0);  // (9 - 16) / 8 towards zero
  EXPECT_EQ(number(quality.transformedValue(MCValue("x"))), 0);
  EXPECT_TRUE(quality.allowsReverseTransformation());

  const auto& interval = MCRequiredTimeIntervalSliderTransformer::sharedInstance();
  EXPECT_EQ(number(interval.transformedValue(MCValue(3600))), 5);
  EXPECT_EQ(number(interval.reverseTransformedValue(MCValue(18))), 0);
  EXPECT_EQ(number(interval.transformedValue(MCValue(-5))), -1);
  EXPECT_EQ(interval.transformedValue(MCValue(7))->integerValue(), int64_t(NSNotFound));
  for (std::size_t i = 0; i < MCRequiredTimeIntervalSliderTransformer::possibleValues().size(); ++i)
    EXPECT_EQ(number(interval.transformedValue(interval.reverseTransformedValue(MCValue(int64_t(i))))), int64_t(i));

  const auto& length = MCMatchNameLengthSliderTransformer::sharedInstance();
  EXPECT_EQ(number(length.transformedValue(MCValue(-1))), 25);
  EXPECT_EQ(number(length.reverseTransformedValue(MCValue(25))), -1);
  EXPECT_EQ(number(length.reverseTransformedValue(MCValue(3))), 3);
  const auto& box = MCMatchNameLengthCheckboxTransformer::sharedInstance();
  EXPECT_EQ(number(box.transformedValue(MCValue(0))), 0);
  EXPECT_EQ(number(box.reverseTransformedValue(MCValue(1))), -1);
  EXPECT_EQ(number(box.reverseTransformedValue(MCValue(-3))), -1);
  EXPECT_EQ(number(box.transformedValue(MCValue(-1))), 0);

  EXPECT_EQ(textOf(MCNullAvoidStringTransformer::sharedInstance().transformedValue(std::nullopt)), "");
  EXPECT_EQ(textOf(MCNullAvoidStringTransformer::sharedInstance().transformedValue(MCValue("kept"))), "kept");
  EXPECT_EQ(number(MCNullAvoidNumberTransformer::sharedInstance().transformedValue(std::nullopt)), 0);
  EXPECT_EQ(number(MCNullAvoidNumberTransformer::sharedInstance().reverseTransformedValue(MCValue(7))), 7);
}

TEST(ValueTransformers, Texts) {
  const auto& interval = MCRequiredTimeIntervalStringTransformer::sharedInstance();
  EXPECT_EQ(textOf(interval.transformedValue(MCValue(-1))), "Unlimited");
  EXPECT_EQ(textOf(interval.transformedValue(MCValue(0))), "0 seconds");
  EXPECT_EQ(textOf(interval.transformedValue(MCValue(1))), "1 second and less");
  EXPECT_EQ(textOf(interval.transformedValue(MCValue(90))), "2 minutes and less");
  EXPECT_EQ(textOf(interval.transformedValue(MCValue(80))), "1 minute and less");
  EXPECT_EQ(textOf(interval.transformedValue(MCValue(3600))), "1 hour and less");
  const auto& names = MCMatchNameLengthStringTransformer::sharedInstance();
  EXPECT_EQ(textOf(names.transformedValue(std::nullopt)), "Don't match");
  EXPECT_EQ(textOf(names.transformedValue(MCValue(-1))), "Full match");
  EXPECT_EQ(textOf(names.transformedValue(MCValue(4))), "Match the first 4 characters");
  EXPECT_EQ(textOf(MCMinImageSizeToStringTransformer::sharedInstance().transformedValue(MCValue(0))), "Any size");
  EXPECT_EQ(textOf(MCMinImageSizeToStringTransformer::sharedInstance().transformedValue(MCValue(0.1))),
            "112 pixels");
  // Formats fill their places in order; with no translation the key is the format.
  EXPECT_EQ(MCLocalizedStringWithFormat("%ld by %ld pixels, %@%%", {"5", "6", "x"}), "5 by 6 pixels, x%");
  EXPECT_EQ(MCLocalizedStringWithFormat("%d and %d", {"1"}), "1 and %d");
}
