// The predicate model: each operator with and without its options on texts, numbers and dates;
// key paths that lead nowhere; the text form read back; bad texts with their positions.

#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/predicates/MCPredicate.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <gtest/gtest.h>

#include <random>

namespace {

const MCDictionary kPhoto{
    {"name", "Été à Lyon.JPG"},
    {"size", int64_t(2'500'000)},
    {"{Exif}", MCDictionary{{"FNumber", 2.8}, {"ISOSpeedRatings", MCArray{200, 400}},
                            {"DateTimeOriginal", "2022:10:02 08:40:13"}}},
    {"{TIFF}", MCDictionary{{"Model", "NIKON Z 6"}}},
};

bool holds(const std::string& text) {
  auto parsed = MCPredicateParser::parse(text);
  EXPECT_TRUE(parsed) << text << ": " << parsed.error;
  return parsed && parsed.predicate->evaluateWithObject(kPhoto);
}

}  // namespace

TEST(Predicates, OperatorsOnTextsNumbersAndDates) {
  // Numbers, and texts that are not numbers.
  EXPECT_TRUE(holds("{Exif}.FNumber < 4"));
  EXPECT_TRUE(holds("{Exif}.FNumber <= 2.8 AND {Exif}.FNumber >= 2.8 AND {Exif}.FNumber == 2.8"));
  EXPECT_FALSE(holds("{Exif}.FNumber > 2.8"));
  EXPECT_TRUE(holds("size BETWEEN {1000000, 3000000}"));
  EXPECT_FALSE(MCComparisonPredicate::compare(MCValue(int64_t(5)), MCValue(MCArray{MCValue(int64_t(1))}),
                                             MCPredicateOperatorType::Between, 0))
      << "between takes two bounds";
  EXPECT_FALSE(holds("{Exif}.FNumber < \"4\"")) << "a number against a text is no comparison";
  // Texts: case and diacritics only with their options.
  EXPECT_FALSE(holds("{TIFF}.Model BEGINSWITH \"nikon\""));
  EXPECT_TRUE(holds("{TIFF}.Model BEGINSWITH[c] \"nikon\""));
  EXPECT_FALSE(holds("name CONTAINS[c] \"ete\""));
  EXPECT_TRUE(holds("name CONTAINS[cd] \"ete\""));
  EXPECT_TRUE(holds("name ENDSWITH[c] \".jpg\""));
  EXPECT_TRUE(holds("name ==[cd] \"ete a lyon.jpg\""));
  EXPECT_FALSE(holds("name == \"ete a lyon.jpg\""));
  EXPECT_TRUE(holds("name LIKE \"Été*.J?G\""));
  EXPECT_FALSE(holds("name LIKE \"Été*.j?g\""));
  EXPECT_TRUE(holds("name MATCHES[c] \".*lyon\\\\.jpg\""));
  EXPECT_FALSE(holds("name MATCHES \"Lyon\"")) << "the whole text must match";
  const MCComparisonPredicate unclosed(MCPredicateExpression::keyPathExpression("name"),
                                       MCPredicateExpression::constantValue(MCValue("([unclosed")),
                                       MCPredicateOperatorType::Matches);
  EXPECT_FALSE(unclosed.evaluateWithObject(kPhoto)) << "a pattern that does not compile matches nothing";
  // The same pattern again, then without its option: each pattern and option is its own.
  EXPECT_FALSE(holds("name MATCHES \".*lyon\\\\.jpg\"")) << "without [c] the case counts";
  EXPECT_TRUE(holds("name MATCHES[c] \".*lyon\\\\.jpg\""));
  EXPECT_FALSE(unclosed.evaluateWithObject(kPhoto));
  EXPECT_TRUE(holds("name MATCHES \".*Lyon\\\\.JPG\""));
  EXPECT_TRUE(holds("{TIFF}.Model < \"Nikon Z 7\"")) << "ordered by collation";
  // Dates in Exif text order as instants.
  EXPECT_TRUE(holds("{Exif}.DateTimeOriginal BETWEEN {\"2022:10:02 00:00:00\", \"2022:10:02 23:59:59\"}"));
  EXPECT_TRUE(holds("{Exif}.DateTimeOriginal > \"2022:09:30 23:00:00\""));
  // Whatever their forms and offsets: Exif and ISO texts of one instant are equal.
  EXPECT_TRUE(holds("{Exif}.DateTimeOriginal == \"2022-10-02T08:40:13\""));
  EXPECT_TRUE(holds("\"2024:05:01 12:00:00+02:00\" == \"2024-05-01T10:00:00Z\""));
  EXPECT_TRUE(holds("\"2024-05-01T10:00:00.5Z\" > \"2024-05-01T10:00:00Z\""));
  EXPECT_FALSE(holds("\"2024:05:01 12:00:00+02:00\" < \"2024-05-01T10:00:00Z\""));
  // Arrays: IN, CONTAINS, ANY and ALL.
  EXPECT_TRUE(holds("{Exif}.ISOSpeedRatings CONTAINS 400"));
  EXPECT_TRUE(holds("400 IN {Exif}.ISOSpeedRatings"));
  EXPECT_TRUE(holds("{TIFF}.Model IN {\"Canon R5\", \"NIKON Z 6\"}"));
  EXPECT_TRUE(holds("ANY {Exif}.ISOSpeedRatings > 300"));
  EXPECT_FALSE(holds("ALL {Exif}.ISOSpeedRatings > 300"));
  EXPECT_TRUE(holds("ALL {Exif}.ISOSpeedRatings >= 200"));
  // Paths that lead nowhere are false, never errors; NOT of them true.
  EXPECT_FALSE(holds("{GPS}.Latitude > 10"));
  EXPECT_FALSE(holds("{Exif}.FNumber.Deeper == 1"));
  EXPECT_TRUE(holds("NOT {GPS}.Latitude > 10"));
  EXPECT_TRUE(holds("{GPS}.Latitude > 10 OR (size > 1 AND NOT name == \"x\")"));
  EXPECT_TRUE(holds("TRUEPREDICATE"));
  EXPECT_FALSE(holds("FALSEPREDICATE"));
}

TEST(Predicates, BadTextsSayWhereAndDeepTextsAreRefused) {
  struct Case {
    const char* text;
    std::size_t position;
  };
  for (const Case& bad : {Case{"{Exif}.FNumber <", 16}, Case{"name LOOKS \"x\"", 5}, Case{"name == \"open", 8},
                          Case{"(size > 1", 9}, Case{"size > 1 size", 9}, Case{"name ==[x] \"a\"", 8}, Case{"", 0},
                          Case{"name MATCHES \"[\"", 13}, Case{"name MATCHES[c] \"(a\" OR size > 1", 16},
                          Case{"size BETWEEN 5", 13}, Case{"size BETWEEN {1, 2, 3}", 13}, Case{"size BETWEEN \"1\"", 13},
                          Case{"NOT (size > 1 OR size BETWEEN {})", 30}}) {
    auto parsed = MCPredicateParser::parse(bad.text);
    EXPECT_FALSE(parsed) << bad.text;
    EXPECT_EQ(parsed.position, bad.position) << bad.text << ": " << parsed.error;
    EXPECT_NE(parsed.error.find(" at " + std::to_string(bad.position)), std::string::npos) << parsed.error;
  }
  EXPECT_EQ(MCPredicateParser::parse("name MATCHES \"[\"").error,
            "the regular expression \"[\" does not compile: missing close bracket at 13");
  EXPECT_EQ(MCPredicateParser::parse("size BETWEEN 5").error, "BETWEEN takes an array of two values, {low, high} at 13");
  EXPECT_TRUE(MCPredicateParser::parse("size BETWEEN bounds")) << "a key path's value is known only per object";
  EXPECT_TRUE(MCPredicateParser::parse("name MATCHES pattern"));
  // Every level of NOT counts, and what is read prints no deeper: NOT of NOT and NOT inside AND
  // need no parentheses, so the deepest text that is read still reads back once printed.
  const std::string nots = std::string(MCPredicateParser::kMaximumDepth, '!') + "size > 1";
  auto deepest = MCPredicateParser::parse(nots);
  ASSERT_TRUE(deepest) << deepest.error;
  auto printed = MCPredicateParser::parse(deepest.predicate->predicateFormat());
  ASSERT_TRUE(printed) << printed.error;
  EXPECT_TRUE(printed.predicate->isEqual(*deepest.predicate));
  EXPECT_FALSE(MCPredicateParser::parse("!" + nots));
  // A number too large for a double is infinity, and prints so that it reads back as one.
  auto huge = MCPredicateParser::parse("size BETWEEN {-1e400, 1e400}");
  ASSERT_TRUE(huge);
  EXPECT_TRUE(huge.predicate->evaluateWithObject(kPhoto));
  auto hugeAgain = MCPredicateParser::parse(huge.predicate->predicateFormat());
  ASSERT_TRUE(hugeAgain) << huge.predicate->predicateFormat();
  EXPECT_TRUE(hugeAgain.predicate->isEqual(*huge.predicate));
  EXPECT_EQ(MCPredicateParser::parse("NOT size > 1 AND NOT (name == \"a\" OR name == \"b\")").predicate->predicateFormat(),
            "NOT size > 1 AND NOT (name == \"a\" OR name == \"b\")");
  const std::string deep = std::string(5000, '(') + "size > 1" + std::string(5000, ')');
  auto tooDeep = MCPredicateParser::parse(deep);
  EXPECT_FALSE(tooDeep);
  EXPECT_NE(tooDeep.error.find("nested too deeply"), std::string::npos);
  std::string wide = "size == 0";
  for (int i = 1; i < 3000; ++i) wide += " OR size == " + std::to_string(i);
  auto many = MCPredicateParser::parse(wide);
  ASSERT_TRUE(many) << many.error;
  EXPECT_FALSE(many.predicate->evaluateWithObject(kPhoto));
}

// LIKE against a table whose answers were worked out apart from the code (runs of stars, ? next to
// stars, a star that must give back what it took, a backslash that is a plain character), with
// [c] and [d]; then patterns that a matcher which tries every split per star could not finish:
// one recursing per star runs out of stack on 120,000 of them, and ten or more stars before a
// letter that never comes take it hours on sixty characters.
TEST(Predicates, LikeMatchesWildcardsInBoundedTime) {
  struct Case {
    const char* text;
    const char* pattern;
    unsigned options;
    bool matches;
  };
  const auto like = [](const std::string& text, const std::string& pattern, unsigned options) {
    return MCComparisonPredicate::compare(MCValue(text), MCValue(pattern), MCPredicateOperatorType::Like, options);
  };
  const unsigned c = MCCaseInsensitivePredicateOption, d = MCDiacriticInsensitivePredicateOption;
  for (const Case& test : {
           Case{"", "", 0, true},          Case{"", "*", 0, true},           Case{"", "?", 0, false},
           Case{"abc", "abc", 0, true},    Case{"abc", "ab", 0, false},      Case{"abc", "abcd", 0, false},
           Case{"abc", "a*", 0, true},     Case{"abc", "*c", 0, true},       Case{"abc", "*b*", 0, true},
           Case{"abc", "a?c", 0, true},    Case{"abc", "a??c", 0, false},    Case{"abc", "???", 0, true},
           Case{"abc", "??", 0, false},    Case{"abcbd", "a*b?", 0, true},   Case{"aaab", "*a*b", 0, true},
           Case{"abab", "*ab", 0, true},   Case{"aab", "*?b", 0, true},      Case{"ab", "*??b", 0, false},
           Case{"abc", "a**c", 0, true},   Case{"ac", "a***?c", 0, false},   Case{"abcabd", "*abd", 0, true},
           Case{"abcabc", "*abd", 0, false}, Case{"aXbXc", "a*b*c*", 0, true}, Case{"ab", "a*b*c", 0, false},
           Case{"mississippi", "m*iss*ppi", 0, true},      Case{"mississippi", "*sip*", 0, true},
           Case{"mississippi", "m*si*si*pi", 0, true},     Case{"mississippi", "m*si*si*si*pi", 0, false},
           Case{"x*y", "x*y", 0, true},    Case{"xay", "x\\*y", 0, false}, Case{"x\\ay", "x\\*y", 0, true},
           Case{"Été à Lyon.JPG", "été*.jpg", 0, false},   Case{"Été à Lyon.JPG", "été*.jpg", c, true},
           Case{"Été à Lyon.JPG", "Ete a*", 0, false},     Case{"Été à Lyon.JPG", "Ete a*", d, true},
           Case{"Été à Lyon.JPG", "ete ? l*", d, false},   Case{"Été à Lyon.JPG", "ete ? l*", c | d, true},
           Case{"Été", "?t?", 0, true},
       }) {
    EXPECT_EQ(like(test.text, test.pattern, test.options), test.matches)
        << '"' << test.text << "\" LIKE \"" << test.pattern << "\" options " << test.options;
  }

  const std::string stars(120'000, '*');
  const std::string name = "Été à Lyon.JPG";
  EXPECT_TRUE(like(name, stars, 0));
  EXPECT_FALSE(like(name, stars + "x", c | d));
  EXPECT_TRUE(like(name, stars + "G", 0));

  std::string starsAndLetters;
  for (int i = 0; i < 12; ++i) starsAndLetters += "*a";
  const std::string as(60, 'a');
  EXPECT_FALSE(like(as, starsAndLetters + "b", 0));
  EXPECT_TRUE(like(as + "b", starsAndLetters + "b", 0));
  EXPECT_FALSE(like(as, starsAndLetters + "?" + as, 0));
  auto parsed = MCPredicateParser::parse("name LIKE[c] \"" + starsAndLetters + "b\"");
  ASSERT_TRUE(parsed) << parsed.error;
  EXPECT_FALSE(parsed.predicate->evaluateWithObject({{"name", std::string(40, 'A')}}));
}

// A pattern that backtracks without end, or that needs a deep backtracking stack, is stopped: the
// evaluation throws, saying which limit it hit and on which pattern, instead of running for hours
// or answering false as if nothing had happened. The pattern cached for the thread stays usable.
TEST(Predicates, MatchesStopsAtItsLimitsAndSaysSo) {
  struct Case {
    const char* pattern;
    std::string text;
    const char* says;
  };
  std::string abs;
  for (int i = 0; i < 40; ++i) abs += "ab";
  for (const Case& test : {Case{"(a+)+$", std::string(40, 'a') + "!", "time limit"},
                           Case{"(.*)*x", std::string(40, 'y'), "time limit"},
                           Case{"((ab)*)*c", abs + "!", "time limit"},
                           Case{"(?:a|b)*c", std::string(300'000, 'a'), "memory limit"}}) {
    const MCComparisonPredicate predicate(MCPredicateExpression::keyPathExpression("name"),
                                          MCPredicateExpression::constantValue(MCValue(test.pattern)),
                                          MCPredicateOperatorType::Matches);
    try {
      predicate.evaluateWithObject({{"name", test.text}});
      ADD_FAILURE() << test.pattern << " was answered";
    } catch (const MCPredicateEvaluationError& error) {
      const std::string message = error.what();
      EXPECT_NE(message.find(test.says), std::string::npos) << message;
      EXPECT_NE(message.find(std::string("\"") + test.pattern + "\""), std::string::npos) << message;
    }
  }
  EXPECT_TRUE(holds("name MATCHES \"(É|E)t.*\\\\.JPG\""));
  EXPECT_TRUE(MCComparisonPredicate::compare(MCValue(std::string(40, 'a')), MCValue("(a+)+$"),
                                             MCPredicateOperatorType::Matches, 0))
      << "a text the pattern matches at once is answered";
}

// Random predicates printed and read back are the same predicates.
TEST(Predicates, PrintedPredicatesReadBackEqual) {
  std::mt19937 random(20261124);
  const std::vector<std::string> paths = {"name", "size", "{Exif}.FNumber", "{TIFF}.Model", "{IPTC}.Keywords", "a.b.c"};
  const std::vector<MCPredicateOperatorType> operators = {
      MCPredicateOperatorType::LessThan,   MCPredicateOperatorType::LessThanOrEqualTo,
      MCPredicateOperatorType::GreaterThan, MCPredicateOperatorType::GreaterThanOrEqualTo,
      MCPredicateOperatorType::EqualTo,    MCPredicateOperatorType::NotEqualTo,
      MCPredicateOperatorType::Matches,    MCPredicateOperatorType::Like,
      MCPredicateOperatorType::BeginsWith, MCPredicateOperatorType::EndsWith,
      MCPredicateOperatorType::In,         MCPredicateOperatorType::Contains,
      MCPredicateOperatorType::Between};
  auto constant = [&]() -> MCValue {
    switch (random() % 6) {
      case 0: return MCValue(int64_t(int(random() % 2000) - 1000));
      case 1: return MCValue(double(int(random() % 20000) - 10000) / 8.0);
      case 2: return MCValue(std::string("te\"x\\t ") + std::to_string(random() % 100) + " Été");
      case 3: return MCValue(bool(random() % 2));
      case 4: return MCValue();
      default: return MCValue(MCArray{MCValue(int64_t(random() % 10)), MCValue(std::string("a,b")), MCValue(2.5)});
    }
  };
  std::function<MCPredicateRef(int)> make = [&](int depth) -> MCPredicateRef {
    if (depth < 3 && random() % 3 == 0) {
      const auto type = MCCompoundPredicate::Type(random() % 3);
      std::vector<MCPredicateRef> parts;
      const int count = type == MCCompoundPredicate::Type::Not ? 1 : 2 + int(random() % 3);
      for (int i = 0; i < count; ++i) parts.push_back(make(depth + 1));
      return std::make_shared<MCCompoundPredicate>(type, std::move(parts));
    }
    auto left = random() % 4 ? MCPredicateExpression::keyPathExpression(paths[random() % paths.size()])
                             : MCPredicateExpression::constantValue(constant());
    auto right = random() % 4 ? MCPredicateExpression::constantValue(constant())
                              : MCPredicateExpression::keyPathExpression(paths[random() % paths.size()]);
    const auto type = operators[random() % operators.size()];
    // A constant BETWEEN side that is not two bounds does not parse; give it two.
    if (type == MCPredicateOperatorType::Between && right.kind == MCPredicateExpression::Kind::Constant)
      right = MCPredicateExpression::constantValue(MCValue(MCArray{constant(), constant()}));
    return std::make_shared<MCComparisonPredicate>(left, right, type, MCComparisonPredicateModifier(random() % 3),
                                                   unsigned(random() % 4));
  };
  for (int i = 0; i < 500; ++i) {
    const MCPredicateRef predicate = make(0);
    const std::string text = predicate->predicateFormat();
    auto parsed = MCPredicateParser::parse(text);
    ASSERT_TRUE(parsed) << text << ": " << parsed.error;
    EXPECT_TRUE(parsed.predicate->isEqual(*predicate)) << text << "\nread back as\n" << parsed.predicate->predicateFormat();
  }
}

// The vocabulary's texts: names first; operators by their keys (the one with a blank included),
// and the two plain texts.
TEST(PredicateVocabulary, TextsOfConstantsKeyPathsOperatorsAndAttributeTypes) {
  using namespace MCPredicate;
  EXPECT_EQ((Operator{int(MCPredicateOperatorType::GreaterThan), "bigger than"}).localizedString(), "bigger than");
  EXPECT_EQ((Operator{50, "named anyway"}).localizedString(), "named anyway");
  EXPECT_EQ(Operator::localizationKey(2), "predicate_operator_is greater_than");
  EXPECT_EQ(Operator::localizationKey(4), "predicate_operator_is");
  EXPECT_EQ(Operator::localizationKey(100), "predicate_operator_between");
  // The English catalogue has the key with the blank; a key that no catalogue has shows itself.
  EXPECT_EQ((Operator{2, std::nullopt}).localizedString(), "is greater than");
  EXPECT_EQ((Operator{99, std::nullopt}).localizedString(), "contains");
  EXPECT_EQ(MCLocalizedString("predicate_operator_is_greater_than"), "predicate_operator_is_greater_than");
  EXPECT_EQ((Operator{11, std::nullopt}).localizedString(), "<custom selector>");
  EXPECT_EQ((Operator{50, std::nullopt}).localizedString(), "<unknown>");
  EXPECT_EQ((ExpressionAttributeType{AttributeType::String, std::nullopt}).localizedString(), "");
  EXPECT_EQ((ExpressionAttributeType{AttributeType::Date, "a day"}).localizedString(), "a day");
  EXPECT_EQ((ExpressionConstant{MCValue(2.5), std::nullopt}).localizedString(), "2.5");
  EXPECT_EQ((ExpressionConstant{MCValue(int64_t(3)), "three"}).localizedString(), "three");
  EXPECT_EQ((ExpressionConstant{MCValue(MCArray{1, 2}), std::nullopt}).localizedString(), "(1, 2)");
  EXPECT_EQ((ExpressionKeyPath{"{Exif}.FNumber", std::nullopt}).localizedString(), "{Exif}.FNumber");
  EXPECT_EQ((ExpressionKeyPath{"{Exif}.FNumber", "Aperture"}).localizedString(), "Aperture");
  // Their expressions are the model's.
  EXPECT_EQ((ExpressionKeyPath{"name", std::nullopt}).predicateExpression(), MCPredicateExpression::keyPathExpression("name"));
  EXPECT_EQ((ExpressionConstant{MCValue("x"), std::nullopt}).predicateExpression(), MCPredicateExpression::constantValue(MCValue("x")));
}
