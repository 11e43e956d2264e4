#include <vesperon/core/MCKeyedArchiver.h>
#include <vesperon/core/MCKeyedUnarchiver.h>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

TEST(MCKeyedArchiver, RoundTripsEveryKindOfValueExactly) {
  MCValue value(MCDictionary{
      {"none", MCValue()},
      {"flag", true},
      {"int", int64_t(-9007199254740993)},  // not representable as a double
      {"double", 0.1},
      {"text", "Grüße"},
      {"bytes", MCData{0, 255, 7}},
      {"list", MCArray{1, "two", MCArray{}}},
      {"rational", *MCExifRational::create(-3, 7)},
      {"comment", MCExifComment("a comment")},
      {"nested", MCDictionary{{"deep", MCDictionary{{"x", 1.5}}}}},
  });
  auto data = MCKeyedArchiver::archivedRootObject(value);
  ASSERT_TRUE(data.has_value());
  auto back = MCKeyedUnarchiver::unarchivedRootObject(*data);
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(*back, value);
  const MCDictionary& d = *back->dictionary();
  EXPECT_TRUE(d.at("int").isInteger());
  EXPECT_TRUE(d.at("rational").isRational());
  EXPECT_EQ(d.at("rational").rational()->value().s.numerator, -3);
  EXPECT_TRUE(d.at("comment").isComment());
  EXPECT_TRUE(d.at("bytes").isData());

  // The format is plain CBOR that any reader can inspect.
  auto j = nlohmann::json::from_cbor(*data, true, true, nlohmann::json::cbor_tag_handler_t::store);
  EXPECT_EQ(j["$archiver"], "MCKeyedArchiver");
  EXPECT_EQ(j["root"]["text"], "Grüße");
  EXPECT_EQ(j["root"]["rational"].get_binary().subtype(), MCKeyedArchiver::rationalTag);

  auto none = MCKeyedArchiver::archivedRootObject(MCValue());
  ASSERT_TRUE(none.has_value());
  auto noneBack = MCKeyedUnarchiver::unarchivedRootObject(*none);
  ASSERT_TRUE(noneBack.has_value()) << "a none root is a value, not a failure";
  EXPECT_TRUE(noneBack->isNone());
}

TEST(MCKeyedUnarchiver, BadBytesGiveNoneWithoutRaising) {
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject({}).has_value());
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject({0xff, 0x00, 0x13}).has_value());
  auto good = *MCKeyedArchiver::archivedRootObject(MCValue(MCArray{1, 2, 3}));
  // Every truncation fails cleanly.
  for (size_t n = 0; n < good.size(); ++n)
    EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject(MCData(good.begin(), good.begin() + long(n))).has_value());
  // Valid CBOR that is not our archive.
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject(nlohmann::json::to_cbor({{"root", 1}})).has_value());
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject(nlohmann::json::to_cbor(nlohmann::json::array({1}))).has_value());
  nlohmann::json wrongVersion{{"$archiver", "MCKeyedArchiver"}, {"$version", 2}, {"root", 1}};
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject(nlohmann::json::to_cbor(wrongVersion)).has_value());
  nlohmann::json badTag{{"$archiver", "MCKeyedArchiver"}, {"$version", 1},
                        {"root", nlohmann::json::binary({1, 2}, 99)}};
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject(nlohmann::json::to_cbor(badTag)).has_value());
  nlohmann::json zeroDenominator{{"$archiver", "MCKeyedArchiver"}, {"$version", 1},
                                 {"root", nlohmann::json::binary({0, 0, 0, 1, 0, 0, 0, 0}, MCKeyedArchiver::rationalTag)}};
  EXPECT_FALSE(MCKeyedUnarchiver::unarchivedRootObject(nlohmann::json::to_cbor(zeroDenominator)).has_value());
}
