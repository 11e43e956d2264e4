// The JSON the catalogue stores a dictionary as: every kind of value reads back equal, so that a
// predicate over the stored dictionary answers as over the file's.

#include <vesperon/catalogue/MCCatalogueCoding.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace mc_detail;

TEST(CatalogueCoding, EveryKindOfValueReadsBackEqual) {
  const MCDictionary dictionary{
      {"text", "Été"},
      {"latin1", std::string("caf\xe9")},
      {"integer", int64_t(-9'007'199'254'740'993)},
      {"real", 2.8},
      {"whole real", 2.0},
      {"infinite", HUGE_VAL},
      {"flag", true},
      {"none", MCValue()},
      {"bytes", MCValue::Data{0, 1, 0xFF}},
      {"rational", *MCExifRational::create(-1, 3)},
      {"comment", MCExifComment("a comment")},
      {std::string("key \xff"), int64_t(1)},
      {"{Exif}", MCDictionary{{"ISOSpeedRatings", MCArray{200, 400}}, {"nested", MCDictionary{{"deep", "x"}}}}},
  };
  const std::string json = MCCatalogueEncodeDictionary(dictionary);
  EXPECT_TRUE(MCCatalogueIsUTF8(json));
  const auto back = MCCatalogueDecodeDictionary(json);
  ASSERT_TRUE(back);
  EXPECT_EQ(*back, dictionary);
  // Kinds must survive, not just values: a whole real stays a real, bytes do not become an array.
  EXPECT_TRUE(back->at("whole real").isDouble());
  EXPECT_TRUE(back->at("bytes").isData());
  EXPECT_TRUE(back->at("comment").isComment());
  EXPECT_TRUE(back->at("rational").isRational());

  const auto nan = MCCatalogueDecodeDictionary(MCCatalogueEncodeDictionary({{"n", std::nan("")}}));
  ASSERT_TRUE(nan && nan->at("n").isDouble());
  EXPECT_TRUE(std::isnan(*nan->at("n").doubleValue()));

  EXPECT_FALSE(MCCatalogueDecodeDictionary("[1, 2]"));
  EXPECT_FALSE(MCCatalogueDecodeDictionary("{\"a\": "));
}

TEST(CatalogueCoding, UTF8Check) {
  EXPECT_TRUE(MCCatalogueIsUTF8("plain, Été, 日本, 😀"));
  EXPECT_FALSE(MCCatalogueIsUTF8("caf\xe9"));
  EXPECT_FALSE(MCCatalogueIsUTF8("\xc0\xaf"));          // overlong slash
  EXPECT_FALSE(MCCatalogueIsUTF8("\xed\xa0\x80"));      // a surrogate
  EXPECT_FALSE(MCCatalogueIsUTF8("\xf4\x90\x80\x80"));  // past U+10FFFF
  EXPECT_FALSE(MCCatalogueIsUTF8("\xe6\x97"));          // cut short
}
