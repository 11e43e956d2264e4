// The row templates and the builder: rows turned into predicates and predicates back into rows,
// units and fractions, the "is empty" tests, relative dates, flipped predicates, and the builder's
// separators and compound row.

#include <vesperon/controls/MCTextFieldModel.h>
#include <vesperon/predicates/MCPredicateDate.h>
#include <vesperon/predicates/MCPredicateEditorBuilder.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateBuilders.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateDate.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateFileSize.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateNumber.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateTimeDuration.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

namespace {

using Type = MCPredicateOperatorType;
using MCPredicate::ExpressionConstant;
using MCPredicate::ExpressionKeyPath;

MCSections<MCPredicate::Operator> ops(std::initializer_list<Type> types) {
  std::vector<MCPredicate::Operator> out;
  for (Type t : types) out.push_back({int(t), std::nullopt});
  return {out};
}

MCPopUpModel& popUp(const MCPredicateEditorRowTemplateRef& row, std::size_t index) {
  return dynamic_cast<MCPopUpModel&>(*row->templateViews().at(index));
}
MCTextFieldModel& field(const MCPredicateEditorRowTemplateRef& row) {
  return dynamic_cast<MCTextFieldModel&>(*row->templateViews().at(2));
}
void chooseTitle(MCPopUpModel& menu, const std::string& title) {
  for (std::size_t i = 0; i < menu.numberOfItems(); ++i)
    if (menu.items()[i].title == title) {
      ASSERT_TRUE(menu.selectItemAtIndex(i));
      return;
    }
  FAIL() << "no item " << title;
}
std::string formatOf(const MCPredicateEditorRowTemplateRef& row) { return row->predicateWithSubpredicates({})->predicateFormat(); }

MCPredicateEditorRowTemplateRef lastRow(const MCPredicateEditorBuilder& builder) { return builder.rowTemplates().back(); }

double instant(const char* text) { return *MCPredicateDate::instantOfText(text); }

}  // namespace

// Numbers read fractions as exposure times are written; durations and sizes take units and are
// stored in seconds and bytes; unusable text is the default value, true or false as given.
TEST(RowTemplates, NumbersFractionsDurationsAndSizes) {
  MCPredicateEditorBuilder builder(false);
  builder.addNumberTemplate({"{Exif}.ExposureTime", "Exposure"}, ops({Type::LessThan, Type::GreaterThan}));
  auto number = lastRow(builder)->copy();
  chooseTitle(popUp(number, 1), "is greater than");
  const std::pair<const char*, const char*> cases[] = {
      {"1/250", "{Exif}.ExposureTime > 0.0040000000000000001"},
      {" 1 \u00f7 4", "{Exif}.ExposureTime > 0.25"},
      {"1//2", "{Exif}.ExposureTime > 0.5"},
      {"7 apples", "{Exif}.ExposureTime > 7.0"},
      {"3/", "{Exif}.ExposureTime > 3.0"},
      {"1/0", "FALSEPREDICATE"},
      {"abc", "FALSEPREDICATE"},
      {"", "FALSEPREDICATE"},
  };
  for (const auto& [text, expected] : cases) {
    field(number).stringValue = text;
    EXPECT_EQ(formatOf(number), expected) << text;
  }
  EXPECT_EQ(MCPredicateEditorRowTemplateNumber::numberOfText("1/250").value_or(-1), 0.004);

  builder.addTimeDurationTemplate({"{Movie}.Duration", "Duration"}, ops({Type::LessThan}));
  builder.addFileSizeTemplate({"size", "Size"}, ops({Type::GreaterThan}));
  auto duration = lastRow(builder);  // the size row; the duration row is the one before
  duration = builder.rowTemplates()[builder.rowTemplates().size() - 2]->copy();
  ASSERT_EQ(duration->templateViews().size(), 4u);
  auto& timeUnits = popUp(duration, 3);
  ASSERT_EQ(timeUnits.numberOfItems(), 3u);
  EXPECT_EQ(timeUnits.items()[1].title, "minutes");
  timeUnits.selectItemWithTag(1);
  field(duration).stringValue = "2";
  EXPECT_EQ(formatOf(duration), "{Movie}.Duration < 120.0");
  timeUnits.selectItemWithTag(2);
  field(duration).stringValue = "0.5";
  EXPECT_EQ(formatOf(duration), "{Movie}.Duration < 1800.0");

  auto size = lastRow(builder)->copy();
  auto& sizeUnits = popUp(size, 3);
  EXPECT_EQ(sizeUnits.items()[2].title, "GB");
  sizeUnits.selectItemWithTag(1);
  field(size).stringValue = "1.5";
  EXPECT_EQ(formatOf(size), "size > 1500000.0");
  sizeUnits.selectItemWithTag(0);
  field(size).stringValue = "2";
  EXPECT_EQ(formatOf(size), "size > 2000.0") << "a KB is 1000 bytes";
  for (const char* bad : {" 1", "1 ", "1,5", "1.5MB", "", "nan"}) {
    field(size).stringValue = bad;
    EXPECT_EQ(formatOf(size), "FALSEPREDICATE") << '"' << bad << '"';
  }
  // A copy has views of its own: the row it came from keeps its unit and text.
  auto again = size->copy();
  popUp(again, 3).selectItemWithTag(2);
  field(again).stringValue = "3";
  EXPECT_EQ(formatOf(again), "size > 3000000000.0");
  EXPECT_EQ(sizeUnits.selectedItem()->tag, 0);
}

// The duration and size fields read what strtod reads in the C locale, whatever the process's
// locale: a sign, "+" included, exponents and hexadecimal, but not a comma for the decimal point,
// white space, or a second sign.
TEST(RowTemplates, UnitFieldsReadNumbersAsTheCLocaleDoesInEveryLocale) {
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  std::vector<const char*> locales{"C"};
  if (std::setlocale(LC_ALL, "de_DE.UTF-8")) locales.push_back("de_DE.UTF-8");
  std::setlocale(LC_ALL, saved.c_str());
  EXPECT_EQ(locales.size(), 2u) << "the de_DE.UTF-8 locale is not installed (scripts/setup.sh makes it)";

  MCPredicateEditorBuilder builder(false);
  builder.addTimeDurationTemplate({"{Movie}.Duration", "Duration"}, ops({Type::LessThan}));
  builder.addFileSizeTemplate({"size", "Size"}, ops({Type::GreaterThan}));
  auto size = lastRow(builder)->copy();
  auto duration = builder.rowTemplates()[builder.rowTemplates().size() - 2]->copy();
  popUp(size, 3).selectItemWithTag(1);      // MB
  popUp(duration, 3).selectItemWithTag(1);  // minutes
  const std::pair<const char*, const char*> sizes[] = {
      {"+1.5", "size > 1500000.0"}, {"-2", "size > -2000000.0"},  {"+.5", "size > 500000.0"},
      {"1e1", "size > 10000000.0"}, {"+0x10", "size > 16000000.0"}, {"1,5", "FALSEPREDICATE"},
      {"+", "FALSEPREDICATE"},      {"++1", "FALSEPREDICATE"},      {"+-1", "FALSEPREDICATE"},
      {" +1", "FALSEPREDICATE"},    {"+1 ", "FALSEPREDICATE"},      {"+ 1", "FALSEPREDICATE"},
      {"+inf", "FALSEPREDICATE"},   {"1e999", "FALSEPREDICATE"},
  };
  for (const char* locale : locales) {
    ASSERT_TRUE(std::setlocale(LC_ALL, locale));
    for (const auto& [text, expected] : sizes) {
      field(size).stringValue = text;
      EXPECT_EQ(formatOf(size), expected) << '"' << text << "\" in " << locale;
    }
    field(duration).stringValue = "+2";
    EXPECT_EQ(formatOf(duration), "{Movie}.Duration < 120.0") << locale;
  }
  std::setlocale(LC_ALL, saved.c_str());
}

// A text row: the text operators ignore case and diacritics; "is empty" compares with the empty
// text and hides the field, which shows again under another operator; over a list of texts the
// two tests take all and any elements; an empty field gives the default value.
TEST(RowTemplates, TextRowsAndTheirEmptyTests) {
  MCPredicateEditorBuilder builder(true);
  builder.addTextFieldTemplate({"name", "Name"}, "part of the name", withIsEmptyOperators);
  auto row = lastRow(builder)->copy();
  EXPECT_EQ(field(row).placeholderString, "part of the name");
  EXPECT_EQ(formatOf(row), "TRUEPREDICATE") << "an empty field does not narrow";
  field(row).stringValue = "lyon";
  EXPECT_EQ(formatOf(row), "name CONTAINS[cd] \"lyon\"");
  EXPECT_TRUE(row->predicateWithSubpredicates({})->evaluateWithObject({{"name", "Été à LYON.jpg"}}));

  chooseTitle(popUp(row, 1), "is empty");
  EXPECT_EQ(formatOf(row), "name ==[cd] \"\"");
  EXPECT_TRUE(field(row).isHidden());
  EXPECT_TRUE(row->predicateWithSubpredicates({})->evaluateWithObject({{"name", ""}}));
  chooseTitle(popUp(row, 1), "is not empty");
  EXPECT_EQ(formatOf(row), "name !=[cd] \"\"");
  chooseTitle(popUp(row, 1), "begins with");
  EXPECT_TRUE(field(row).isHidden()) << "shown again only when the predicate is next asked for";
  EXPECT_EQ(formatOf(row), "name BEGINSWITH[cd] \"lyon\"");
  EXPECT_FALSE(field(row).isHidden());

  builder.addTextFieldTemplate({"{IPTC}.Keywords", "Keywords"}, "", withIsEmptyOperators, true);
  auto keywords = lastRow(builder)->copy();
  chooseTitle(popUp(keywords, 1), "is empty");
  EXPECT_EQ(formatOf(keywords), "ALL {IPTC}.Keywords ==[cd] \"\"");
  chooseTitle(popUp(keywords, 1), "is not empty");
  EXPECT_EQ(formatOf(keywords), "ANY {IPTC}.Keywords !=[cd] \"\"");
  chooseTitle(popUp(keywords, 1), "contains");
  field(keywords).stringValue = "sea";
  EXPECT_TRUE(keywords->predicateWithSubpredicates({})->evaluateWithObject({{"{IPTC}", MCDictionary{{"Keywords", MCArray{"Ciel", "Seaside"}}}}}));

  // The row shows a predicate it made, and says it matches it.
  auto shown = lastRow(builder)->copy();
  auto parsed = MCPredicateParser::parse("ANY {IPTC}.Keywords ENDSWITH[cd] \"side\"");
  ASSERT_TRUE(parsed);
  EXPECT_EQ(shown->matchForPredicate(*parsed.predicate), 1.0);
  EXPECT_EQ(row->matchForPredicate(*parsed.predicate), 0.0) << "another key path";
  shown->setPredicate(*parsed.predicate);
  EXPECT_EQ(popUp(shown, 1).selectedItem()->title, "ends with");
  EXPECT_EQ(field(shown).stringValue, "side");
  EXPECT_TRUE(shown->predicateWithSubpredicates({})->isEqual(*parsed.predicate));
}

// Date rows work in the user's calendar: before a day lets its midnight pass and nothing later
// that day; after begins at the next midnight; the relative operators are fixed at the moment the
// predicate is made; the right-side control follows the operator.
TEST(RowTemplates, DateRowsAtAFixedMoment) {
  MCPredicateEditorBuilder builder(true);
  builder.addDatePickerTemplate({"{Exif}.DateTimeOriginal", "Capture date"});
  auto templ = lastRow(builder);
  auto* row = dynamic_cast<MCPredicateEditorRowTemplateDate*>(templ.get());
  ASSERT_TRUE(row);
  auto& operators = popUp(templ, 1);
  ASSERT_EQ(operators.numberOfItems(), 9u);
  EXPECT_EQ(operators.items()[0].title, "within last");
  EXPECT_EQ(operators.items()[8].title, "this year");
  EXPECT_EQ(templ->templateViews()[2], std::static_pointer_cast<MCControlModel>(row->dateRangeControl()));
  EXPECT_EQ(row->dateRangeControl()->controlType(), MCDateRangeControl::ControlType::dateRange);

  auto photo = [](const char* when) { return MCDictionary{{"{Exif}", MCDictionary{{"DateTimeOriginal", when}}}}; };
  auto passes = [&](const char* when, double now = 0) { return row->predicateAtDate(now)->evaluateWithObject(photo(when)); };
  row->dateRangeControl()->datePicker()->dateValue = instant("2024:05:01 15:30:00");
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::before));
  row->templateViews();
  EXPECT_EQ(row->dateRangeControl()->controlType(), MCDateRangeControl::ControlType::datePicker);
  EXPECT_TRUE(passes("2024:05:01 00:00:00"));
  EXPECT_FALSE(passes("2024:05:01 09:00:00"));
  EXPECT_TRUE(passes("2024-04-30T23:59:59"));
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::after));
  EXPECT_TRUE(passes("2024:05:02 00:00:00"));
  EXPECT_FALSE(passes("2024:05:01 23:59:59"));
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::exactly));
  EXPECT_TRUE(passes("2024:05:01 00:00:00"));
  EXPECT_TRUE(passes("2024:05:01 23:59:59"));
  EXPECT_FALSE(passes("2024:04:30 23:59:59"));
  EXPECT_FALSE(passes("2024:05:02 00:00:01"));
  EXPECT_FALSE(passes("not a date"));
  const std::string range = row->predicateAtDate(0)->predicateFormat();
  EXPECT_NE(range.find("{Exif}.DateTimeOriginal >= \"2024-05-01T00:00:00"), std::string::npos) << range;
  EXPECT_NE(range.find(" AND {Exif}.DateTimeOriginal <= \"2024-05-02T00:00:00"), std::string::npos) << range;

  const double now = instant("2024:05:15 10:00:00");  // a Wednesday
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::today));
  row->templateViews();
  EXPECT_EQ(row->dateRangeControl()->controlType(), MCDateRangeControl::ControlType::empty);
  EXPECT_TRUE(passes("2024:05:15 23:00:00", now));
  EXPECT_FALSE(passes("2024:05:14 23:00:00", now));
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::yesterday));
  EXPECT_TRUE(passes("2024:05:14 23:00:00", now));
  EXPECT_FALSE(passes("2024:05:15 01:00:00", now));
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::thisMonth));
  EXPECT_TRUE(passes("2024:05:01 00:00:00", now));
  EXPECT_FALSE(passes("2024:04:30 12:00:00", now));
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::thisYear));
  EXPECT_TRUE(passes("2024:01:01 00:00:00", now));
  EXPECT_FALSE(passes("2023:12:31 23:00:00", now));
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::thisWeek));
  EXPECT_TRUE(passes("2024:05:15 00:00:00", now));
  EXPECT_FALSE(passes("2024:05:05 12:00:00", now)) << "ten days back is another week, whatever day it begins";

  // Within the last 2 months: from the start of March to the end of May.
  operators.selectItemWithTag(long(MCPredicateEditorRowTemplateDate::DateOperator::withinLast));
  row->dateRangeControl()->timeIntervalTextField()->stringValue = "2";
  row->dateRangeControl()->timeIntervalPopUp()->selectItemWithTag(MCDateRangeControl::months);
  EXPECT_TRUE(passes("2024:03:01 00:00:00", now));
  EXPECT_TRUE(passes("2024:05:31 12:00:00", now));
  EXPECT_FALSE(passes("2024:02:29 23:00:00", now));
  row->dateRangeControl()->timeIntervalPopUp()->selectItemWithTag(MCDateRangeControl::days);
  EXPECT_TRUE(passes("2024:05:13 00:00:00", now));
  EXPECT_FALSE(passes("2024:05:12 23:59:59", now));
}

// A flipped row reads `"public.jpeg" == type` as "type is public.jpeg" and writes it key path
// first; the builder's sections put separators in the pop-ups.
TEST(RowTemplates, FlippedRowsAndSections) {
  MCPredicateEditorBuilder builder(true);
  builder.addFileTypeTemplate({{{MCValue("public.jpeg"), "JPEG"}, {MCValue("public.png"), "PNG"}},
                               {{MCValue("public.mpeg-4"), "MPEG-4 movie"}}},
                              {{{"type", "Kind"}}});
  auto row = lastRow(builder)->copy();
  auto& kinds = popUp(row, 2);
  ASSERT_EQ(kinds.numberOfItems(), 4u);
  EXPECT_EQ(kinds.items()[1].title, "PNG");
  EXPECT_TRUE(kinds.items()[2].separator);
  EXPECT_EQ(kinds.items()[3].title, "MPEG-4 movie");
  EXPECT_EQ(popUp(row, 1).items()[1].title, "is not");

  auto flipped = MCPredicateParser::parse("\"public.mpeg-4\" != type");
  ASSERT_TRUE(flipped);
  EXPECT_EQ(row->matchForPredicate(*flipped.predicate), 1.0);
  row->setPredicate(*flipped.predicate);
  EXPECT_EQ(popUp(row, 0).selectedItem()->title, "Kind");
  EXPECT_EQ(kinds.selectedItem()->title, "MPEG-4 movie");
  EXPECT_EQ(popUp(row, 1).selectedItem()->title, "is not");
  EXPECT_EQ(formatOf(row), "type != \"public.mpeg-4\"");
  // Its own order matches too; an unknown type matches neither way.
  EXPECT_EQ(row->matchForPredicate(*MCPredicateParser::parse("type == \"public.png\"").predicate), 1.0);
  EXPECT_EQ(row->matchForPredicate(*MCPredicateParser::parse("\"public.tiff\" == type").predicate), 0.0);

  // Sections on the left, and a separator before the next template's entries.
  builder.addSeparator();
  builder.addSeparator();
  builder.addTemplate(MCSections<ExpressionKeyPath>{{{"{TIFF}.Make", "Make"}}, {{"{TIFF}.Model", "Model"}}},
                      {{{MCValue("Canon"), std::nullopt}}}, ops({Type::EqualTo}));
  auto generic = lastRow(builder);
  auto& left = popUp(generic, 0);
  ASSERT_EQ(left.numberOfItems(), 4u) << "one separator for two addSeparator calls, one between the sections";
  EXPECT_TRUE(left.items()[0].separator);
  EXPECT_EQ(left.items()[1].title, "Make");
  EXPECT_TRUE(left.items()[2].separator);
  EXPECT_EQ(left.items()[3].title, "Model");
  EXPECT_EQ(left.selectedItem()->title, "Make");
  EXPECT_EQ(popUp(generic, 2).selectedItem()->title, "Canon") << "a constant without a name shows its value";
  EXPECT_FALSE(builder.shouldInsertSeparator());
  builder.addSeparator();
  EXPECT_TRUE(builder.shouldInsertSeparator()) << "no later add: the flag stays, no separator is made";
  EXPECT_EQ(builder.rowTemplates().size(), 3u);
}

// The builder begins with the compound row, titled as the editor shows it; text rows have three
// operators or five; a row template refuses the wrong kind of right side outright.
TEST(PredicateEditorBuilder, CompoundRowOperatorsAndRefusals) {
  MCPredicateEditorBuilder builder(true);
  ASSERT_EQ(builder.rowTemplates().size(), 1u);
  auto compound = builder.rowTemplates()[0];
  EXPECT_TRUE(compound->isCompound());
  auto& types = popUp(compound, 0);
  ASSERT_EQ(types.numberOfItems(), 3u);
  EXPECT_EQ(types.items()[0].title, "All");
  EXPECT_EQ(types.items()[1].title, "Any");
  EXPECT_EQ(types.items()[2].title, "None");
  EXPECT_EQ(popUp(compound, 1).items()[0].title, "of the following are true");

  builder.addTextFieldTemplate({"name", std::nullopt}, "");
  builder.addTextFieldTemplate({"name", std::nullopt}, "", withIsEmptyOperators);
  EXPECT_EQ(builder.rowTemplates()[1]->operators().size(), 3u);
  EXPECT_EQ(builder.rowTemplates()[2]->operators().size(), 5u);
  EXPECT_EQ(popUp(builder.rowTemplates()[1], 0).items()[0].title, "name") << "a key path without a name shows itself";

  // The compound row over the rows' predicates: any of them.
  builder.addNumberTemplate({"{Exif}.FNumber", std::nullopt}, ops({Type::LessThan}));
  auto aperture = lastRow(builder)->copy();
  field(aperture).stringValue = "2.8";
  auto name = builder.rowTemplates()[1]->copy();
  field(name).stringValue = "lyon";
  auto any = compound->copy();
  popUp(any, 0).selectItemAtIndex(1);
  auto predicate = any->predicateWithSubpredicates({aperture->predicateWithSubpredicates({}), name->predicateWithSubpredicates({})});
  EXPECT_EQ(predicate->predicateFormat(), "{Exif}.FNumber < 2.7999999999999998 OR name CONTAINS[cd] \"lyon\"");
  EXPECT_TRUE(predicate->evaluateWithObject({{"name", "Lyon.jpg"}}));
  EXPECT_EQ(any->displayableSubpredicatesOfPredicate(*predicate).size(), 2u);
  EXPECT_EQ(compound->matchForPredicate(*predicate), 1.0);
  popUp(any, 0).selectItemAtIndex(2);
  auto none = any->predicateWithSubpredicates({aperture->predicateWithSubpredicates({}), name->predicateWithSubpredicates({})});
  EXPECT_EQ(none->predicateFormat(), "NOT ({Exif}.FNumber < 2.7999999999999998 OR name CONTAINS[cd] \"lyon\")");
  EXPECT_FALSE(none->evaluateWithObject({{"name", "Lyon.jpg"}}));
  EXPECT_FALSE(none->evaluateWithObject({{"name", "x.jpg"}, {"{Exif}", MCDictionary{{"FNumber", 2.0}}}}));
  EXPECT_TRUE(none->evaluateWithObject({{"name", "x.jpg"}, {"{Exif}", MCDictionary{{"FNumber", 4.0}}}}));

  MCPredicateEditorBuilder::Item wrong;
  wrong.rightExpressionType = MCPredicate::ExpressionAttributeType{};
  EXPECT_DEATH(MCPredicateEditorRowFileTypeTemplateBuilder::templateForItem(wrong), "Not supported");
  wrong.rightExpressionType = std::vector<MCPredicateEditorRowTemplate::Expression>{};
  EXPECT_DEATH(MCPredicateEditorRowNumberTemplateBuilder::templateForItem(wrong), "Not supported");
}
