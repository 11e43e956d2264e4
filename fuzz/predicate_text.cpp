// Any text as a predicate: an error with a position inside the text, or a predicate that prints a
// text which reads back as an equal predicate and evaluates against a photo's properties without
// a crash. The same text as a date and as a number row's entry: none or a value, never a crash.

#include <vesperon/predicates/MCPredicateDate.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateNumber.h>
#include <vesperon/predicates/MCPredicateParser.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

const MCDictionary& photo() {
  static const MCDictionary properties{
      {"name", "Été à Lyon.JPG"},
      {"size", int64_t(2'500'000)},
      {"{Exif}", MCDictionary{{"FNumber", 2.8}, {"ISOSpeedRatings", MCArray{200, 400}},
                              {"DateTimeOriginal", "2022:10:02 08:40:13"}}},
      {"{TIFF}", MCDictionary{{"Model", "NIKON Z 6"}}},
  };
  return properties;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  MCPredicateDate::instantOfText(text);
  MCPredicateEditorRowTemplateNumber::numberOfText(text);
  const MCPredicateParseResult parsed = MCPredicateParser::parse(text);
  if (!parsed) {
    if (parsed.position > text.size()) std::abort();
    return 0;
  }
  try {
    parsed.predicate->evaluateWithObject(photo());
  } catch (const MCPredicateEvaluationError&) {
    // a pattern past its match limit: a refusal, not a fault
  }
  const std::string printed = parsed.predicate->predicateFormat();
  const MCPredicateParseResult again = MCPredicateParser::parse(printed);
  if (!again || !again.predicate->isEqual(*parsed.predicate)) std::abort();
  return 0;
}
