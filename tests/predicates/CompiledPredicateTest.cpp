// MCCompiledPredicate against the predicate it was made from: random predicates of every operator,
// modifier and option over random dictionaries of every kind of value must give the same answers,
// and throw where the predicate throws.

#include <vesperon/predicates/MCCompiledPredicate.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <gtest/gtest.h>

#include <random>

namespace {

const char* const kKeys[] = {"a", "b", "{X}.n", "{X}.t", "{X}.d", "list", "missing", "{X}.missing.deeper"};

MCValue randomValue(std::mt19937& random, int depth = 0) {
  switch (random() % (depth ? 9 : 10)) {
    case 0: return MCValue(int64_t(int(random() % 20) - 10));
    case 1: return MCValue(double(int(random() % 40) - 20) / 4.0);
    case 2: return MCValue(std::string(1, char('a' + random() % 3)) + (random() % 2 ? "É" : "e"));
    case 3: return MCValue(random() % 2 == 0);
    case 4: return MCValue(std::string(random() % 2 ? "2022:10:0" : "2022-10-0") + char('1' + random() % 3) + (random() % 2 ? " 10:00:00" : ""));
    case 5: return MCValue();
    case 6: return MCValue(*MCExifRational::create(int32_t(random() % 9) - 4, 2));
    case 7: return MCValue(MCValue::Data{1, 2});
    case 8: return MCValue(std::nan(""));
    default: {
      MCArray items;
      for (unsigned i = random() % 3; i > 0; --i) items.push_back(randomValue(random, depth + 1));
      return MCValue(std::move(items));
    }
  }
}

MCDictionary randomObject(std::mt19937& random) {
  MCDictionary x;
  for (const char* key : {"n", "t", "d"})
    if (random() % 4) x[key] = randomValue(random);
  MCDictionary object;
  if (random() % 5) object["{X}"] = MCValue(std::move(x));
  for (const char* key : {"a", "b", "list"})
    if (random() % 4) object[key] = randomValue(random);
  return object;
}

std::string randomConstant(std::mt19937& random) {
  switch (random() % 7) {
    case 0: return std::to_string(int(random() % 20) - 10);
    case 1: return std::to_string(int(random() % 40) - 20) + ".25";
    case 2: return std::string("\"") + char('a' + random() % 3) + (random() % 2 ? "é" : "E") + "\"";
    case 3: return random() % 2 ? "\"2022-10-02\"" : "\"2022:10:02 10:00:00\"";
    case 4: return "{1, 5.5}";
    case 5: return random() % 2 ? "NIL" : "TRUE";
    default: return "{\"ae\", 3, \"2022-10-01\"}";
  }
}

std::string randomComparison(std::mt19937& random) {
  static const char* const operators[] = {"<", "<=", ">", ">=", "==", "!=", "BEGINSWITH", "ENDSWITH", "CONTAINS",
                                          "LIKE", "IN", "BETWEEN", "MATCHES"};
  static const char* const options[] = {"", "[c]", "[d]", "[cd]"};
  static const char* const modifiers[] = {"", "", "ANY ", "ALL "};
  const std::string op = operators[random() % 13];
  std::string right = randomConstant(random);
  if (op == "BETWEEN") right = random() % 2 ? "{-2, 3}" : "{\"2022-10-01\", \"2022:10:02 12:00:00\"}";
  if (op == "MATCHES") right = random() % 2 ? "\"[ab].*\"" : "\".*e\"";
  if (op == "LIKE") right = random() % 2 ? "\"?e\"" : "\"a*\"";
  std::string left = kKeys[random() % 8];
  if (random() % 10 == 0) std::swap(left, right);  // a constant on the left
  if (random() % 10 == 0) right = kKeys[random() % 8];
  return modifiers[random() % 4] + left + " " + op + options[random() % 4] + " " + right;
}

std::string randomPredicate(std::mt19937& random, int depth = 0) {
  if (depth > 2 || random() % 3 == 0) return randomComparison(random);
  switch (random() % 3) {
    case 0: return "NOT (" + randomPredicate(random, depth + 1) + ")";
    case 1: return "(" + randomPredicate(random, depth + 1) + " AND " + randomPredicate(random, depth + 1) + ")";
    default: return "(" + randomPredicate(random, depth + 1) + " OR " + randomPredicate(random, depth + 1) + ")";
  }
}

}  // namespace

TEST(CompiledPredicate, AnswersAsThePredicateOverRandomObjects) {
  std::mt19937 random(20261125);
  std::vector<MCDictionary> objects;
  for (int i = 0; i < 300; ++i) objects.push_back(randomObject(random));
  int compared = 0, trueAnswers = 0;
  for (int i = 0; i < 400; ++i) {
    const std::string text = randomPredicate(random);
    const auto parsed = MCPredicateParser::parse(text);
    if (!parsed) continue;  // a constant that cannot be used there: the parser's business
    const MCCompiledPredicate compiled(parsed.predicate);
    for (const MCDictionary& object : objects) {
      const bool expected = parsed.predicate->evaluateWithObject(object);
      ASSERT_EQ(compiled.evaluateWithObject(object), expected) << text;
      trueAnswers += expected;
      ++compared;
    }
  }
  EXPECT_GT(compared, 60000);
  EXPECT_GT(trueAnswers, compared / 10);  // the random cases are not all false
}

TEST(CompiledPredicate, SpecialisedComparisonsAndOrder) {
  const MCDictionary photo{{"size", int64_t(2'500'000)},
                           {"name", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa!"},
                           {"{Exif}", MCDictionary{{"FNumber", *MCExifRational::create(28, 10)},
                                                   {"DateTimeOriginal", "2022:10:02 08:40:13"}}}};
  auto check = [&](const std::string& text, bool expected) {
    const auto parsed = MCPredicateParser::parse(text);
    ASSERT_TRUE(parsed) << text;
    EXPECT_EQ(MCCompiledPredicate(parsed.predicate).evaluateWithObject(photo), expected) << text;
    EXPECT_EQ(parsed.predicate->evaluateWithObject(photo), expected) << text;
  };
  check("{Exif}.FNumber == 2.8", true);  // a rational against a number
  check("{Exif}.FNumber < 3", true);
  check("name != 5", true);  // a text is never a number
  check("name < 5", false);
  check("{Exif}.DateTimeOriginal > \"2022-10-02T08:40:12\"", true);
  check("{Exif}.DateTimeOriginal == \"2022-10-02T08:40:13\"", true);
  check("{Exif}.DateTimeOriginal != \"2022-10-02T08:40:13\"", false);
  // A term that throws keeps its place: the same evaluation error, not an answer from reordering.
  const auto runaway = MCPredicateParser::parse("name MATCHES \"(a+)+$\" AND size < 0");
  ASSERT_TRUE(runaway);
  EXPECT_THROW(MCCompiledPredicate(runaway.predicate).evaluateWithObject(photo), MCPredicateEvaluationError);
  EXPECT_FALSE(MCCompiledPredicate(nullptr).evaluateWithObject(photo));
}

TEST(CompiledPredicate, OverACollectionAnswersAsObjectByObject) {
  std::mt19937 random(20261126);
  std::vector<MCDictionary> objects;
  for (int i = 0; i < 500; ++i) objects.push_back(i % 7 == 3 ? MCDictionary{} : randomObject(random));
  int checked = 0;
  for (int i = 0; i < 60; ++i) {
    const auto parsed = MCPredicateParser::parse(randomPredicate(random));
    if (!parsed) continue;
    const MCCompiledPredicate compiled(parsed.predicate);
    std::vector<std::size_t> expected;
    for (std::size_t j = 0; j < objects.size(); ++j)
      if (parsed.predicate->evaluateWithObject(objects[j])) expected.push_back(j);
    EXPECT_EQ(compiled.indexesOfObjectsPassing(objects), expected) << parsed.predicate->predicateFormat();
    EXPECT_EQ(compiled.countOfObjectsPassing(objects), expected.size());
    // A part of the collection: indexes count from its start.
    const std::span<const MCDictionary> tail(objects.data() + 495, 5);
    std::vector<std::size_t> inTail;
    for (std::size_t j : expected)
      if (j >= 495) inTail.push_back(j - 495);
    EXPECT_EQ(compiled.indexesOfObjectsPassing(tail), inTail);
    ++checked;
  }
  EXPECT_GT(checked, 30);
  EXPECT_TRUE(MCCompiledPredicate(nullptr).indexesOfObjectsPassing(objects).empty());
  EXPECT_EQ(MCCompiledPredicate(nullptr).countOfObjectsPassing(objects), 0u);
  const auto runaway = MCPredicateParser::parse("name MATCHES \"(a+)+$\"");
  ASSERT_TRUE(runaway);
  const std::vector<MCDictionary> names{{{"name", "b"}}, {{"name", std::string(40, 'a') + "!"}}};
  EXPECT_THROW(MCCompiledPredicate(runaway.predicate).countOfObjectsPassing(names), MCPredicateEvaluationError);
}
