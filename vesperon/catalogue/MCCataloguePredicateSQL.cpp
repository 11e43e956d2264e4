#include <vesperon/catalogue/MCCataloguePredicateSQL.h>

#include <vesperon/catalogue/MCCatalogueCoding.h>
#include <vesperon/catalogue/MCSearchableProperties.h>
#include <vesperon/predicates/MCPredicateDate.h>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

namespace mc_detail {
namespace {

using T = MCPredicateOperatorType;
using Modifier = MCComparisonPredicateModifier;

// The file's own attributes, kept in columns of their own.
struct AttributeColumn {
  const char* keyPath;
  const char* expression;
  bool numeric;
};
const AttributeColumn kAttributes[] = {
    {"name", "name", false},
    {"path", "mc_path(path)", false},
    {"size", "size", true},
    {"type", "media_type", false},
    {"modificationDate", "mc_mtime_text(mtime_s)", false},
};

bool isAscii(const std::string& text) {
  for (unsigned char c : text)
    if (c >= 0x80) return false;
  return true;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

// The comparison of a text of plain ASCII with its pattern, as the evaluator folds it; none when
// the text is not plain ASCII.
std::optional<bool> asciiTextHolds(const MCCataloguePredicateContext::AsciiText& fast, const unsigned char* text, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i)
    if (text[i] >= 0x80) return std::nullopt;
  const std::string& pattern = fast.pattern;
  if (pattern.size() > size) return false;
  auto same = [&](std::size_t at) {
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      const char c = char(text[at + i]);
      if ((fast.caseless ? lower(c) : c) != pattern[i]) return false;
    }
    return true;
  };
  if (fast.type == T::BeginsWith) return same(0);
  if (fast.type == T::EndsWith) return same(size - pattern.size());
  for (std::size_t at = 0; at + pattern.size() <= size; ++at)
    if (same(at)) return true;
  return false;
}

std::string numberLiteral(const MCValue& value) {
  if (value.isInteger()) return std::to_string(*value.integerValue());
  const double number = *value.doubleValue();
  if (std::isinf(number)) return number > 0 ? "9e999" : "-9e999";
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", number);
  return text;
}

const char* sqlOperator(T type) {
  switch (type) {
    case T::LessThan: return "<";
    case T::LessThanOrEqualTo: return "<=";
    case T::GreaterThan: return ">";
    case T::GreaterThanOrEqualTo: return ">=";
    case T::EqualTo: return "=";
    case T::NotEqualTo: return "<>";
    default: return nullptr;
  }
}

struct Translator {
  MCCataloguePredicateContext& context;
  bool translated = true;

  std::string part(const MCPredicateRef& predicate) {
    translated = false;
    context.parts.push_back(predicate);
    return "mc_part(" + std::to_string(context.parts.size() - 1) + ", " + kMCCatalogueRowArguments + ")";
  }

  std::string compareCall(const std::string& expression, MCPredicateRef comparison) {
    const auto& c = static_cast<const MCComparisonPredicate&>(*comparison);
    MCCataloguePredicateContext::AsciiText fast;
    const std::string* pattern = c.rightExpression().constant.string();
    const T type = c.predicateOperatorType();
    if (pattern && isAscii(*pattern) && (type == T::BeginsWith || type == T::EndsWith || type == T::Contains)) {
      fast.applies = true;
      fast.type = type;
      fast.caseless = c.options() & MCCaseInsensitivePredicateOption;
      fast.pattern = *pattern;
      if (fast.caseless)
        for (char& ch : fast.pattern) ch = lower(ch);
    }
    context.asciiTexts.push_back(std::move(fast));
    context.comparisons.push_back(std::move(comparison));
    return "mc_compare(" + expression + ", " + std::to_string(context.comparisons.size() - 1) + ")";
  }

  // A comparison of one column's value (a scalar, or none) with a constant.
  std::string column(const std::string& expression, bool captureDate, const MCComparisonPredicate& comparison,
                     const MCPredicateRef& shared) {
    const MCValue& constant = comparison.rightExpression().constant;
    const T type = comparison.predicateOperatorType();
    if (type == T::Between) {
      // The evaluator's BETWEEN is its two comparisons with the bounds; one of a value or of a
      // one-element array is the same.
      const MCArray* bounds = constant.array();
      if (!bounds || bounds->size() != 2) return "0";
      auto bound = [&](T op, const MCValue& value) {
        auto side = std::make_shared<MCComparisonPredicate>(comparison.leftExpression(),
                                                            MCPredicateExpression::constantValue(value), op,
                                                            MCComparisonPredicateModifier::Direct, comparison.options());
        return column(expression, captureDate, *side, side);
      };
      return "(" + bound(T::GreaterThanOrEqualTo, (*bounds)[0]) + " AND " + bound(T::LessThanOrEqualTo, (*bounds)[1]) + ")";
    }
    const char* op = sqlOperator(type);
    const bool number = constant.isInteger() || constant.isDouble();
    if (op && number && !std::isnan(*constant.doubleValue())) {
      // Only a number compares with a number; a text or a missing value never does. SQLite
      // orders every number below every text ('') and every text below every byte string, which
      // tells a number apart without a function call per row; IS gives 0, never NULL, for a
      // missing value, as coalesce does for an ordering.
      const std::string literal = numberLiteral(constant);
      if (type == T::EqualTo) return "(" + expression + " IS " + literal + ")";
      if (type == T::NotEqualTo) return "(" + expression + " IS NOT NULL AND " + expression + " IS NOT " + literal + ")";
      // A range (f-number below 6) holds for a good share of a collection, where reading rows
      // through an index costs twice walking the table: the unary plus keeps SQLite from the index.
      const bool below = type == T::LessThan || type == T::LessThanOrEqualTo;
      return "coalesce(+" + expression + " " + op + " " + literal + (below ? "" : " AND +" + expression + " < ''") + ", 0)";
    }
    if (op && captureDate && constant.string()) {
      // Two dates compare as instants; a capture date that is not one compares as text.
      if (auto instant = MCPredicateDate::instantOfText(*constant.string())) {
        char literal[40];
        std::snprintf(literal, sizeof literal, "%.17g", *instant);
        return "coalesce(capture_instant " + std::string(op) + " " + literal + ", " + compareCall(expression, shared) + ")";
      }
    }
    return compareCall(expression, shared);
  }

  std::string comparison(const MCComparisonPredicate& comparison, const MCPredicateRef& shared) {
    if (comparison.leftExpression().kind != MCPredicateExpression::Kind::KeyPath ||
        comparison.rightExpression().kind != MCPredicateExpression::Kind::Constant ||
        comparison.predicateOperatorType() == T::CustomSelector)
      return part(shared);
    const std::string& keyPath = comparison.leftExpression().keyPath;
    const Modifier modifier = comparison.comparisonPredicateModifier();
    for (const auto& attribute : kAttributes) {
      if (keyPath != attribute.keyPath) continue;
      // An attribute is never an array: ANY and ALL find nothing to compare.
      if (modifier != Modifier::Direct) return "0";
      return column(attribute.expression, false, comparison, shared);
    }
    for (const auto& c : MCCatalogueColumns()) {
      if (keyPath != c.keyPath) continue;
      // A column holds a value, or the one element of an array value (other shapes make the row
      // irregular and it is evaluated whole). ANY and ALL of one element are that element's
      // comparison; the direct comparison of such an array is left to the dictionary.
      if (c.arrayElement) {
        if (modifier == Modifier::Direct) return part(shared);
      } else if (modifier != Modifier::Direct) {
        return "0";
      }
      return column(c.expression, std::string(c.column) == "capture_date", comparison, shared);
    }
    if (modifier == Modifier::Direct) {
      if (auto path = jsonPath(keyPath)) {
        // Numbers and texts come out of the JSON as they went in; other kinds (arrays, bytes,
        // comments, none) are left to the dictionary, a missing value is false.
        context.joinsProperties = true;
        const std::string type = "json_type(properties.json, '" + *path + "')";
        const std::string value = "json_extract(properties.json, '" + *path + "')";
        context.parts.push_back(shared);
        const std::string fallback = "mc_part(" + std::to_string(context.parts.size() - 1) + ", " + kMCCatalogueRowArguments + ")";
        translated = false;
        return "(CASE WHEN " + type + " IN ('integer', 'real', 'text') THEN " + compareCall(value, shared) + " WHEN " + type +
               " IS NULL THEN 0 ELSE " + fallback + " END)";
      }
    }
    return part(shared);
  }

  // The JSON path of a key path into the stored dictionary ($."{Exif}"."ExposureProgram"), or
  // none when a key cannot be written in one, or the key path starts at a file attribute, which
  // the stored dictionary does not hold.
  static std::optional<std::string> jsonPath(const std::string& keyPath) {
    const std::vector<std::string> keys = MCPredicateExpression::keysOfKeyPath(keyPath);
    for (const auto& attribute : kAttributes)
      if (keys.front() == attribute.keyPath) return std::nullopt;
    std::string path = "$";
    for (const std::string& k : keys) {
      if (k.empty() || !MCCatalogueIsUTF8(k)) return std::nullopt;
      for (unsigned char c : k)
        if (c == '"' || c == '\\' || c == '\'' || c < 0x20) return std::nullopt;
      path += ".\"" + k + "\"";
    }
    return path;
  }

  // Plain SQL first: AND and OR stop at the first term that settles them.
  static bool cheap(const std::string& sql) { return sql.find("mc_") == std::string::npos; }

  std::string predicate(const MCPredicateRef& predicate) {
    if (const auto* constant = dynamic_cast<const MCConstantValuePredicate*>(predicate.get()))
      return constant->value() ? "1" : "0";
    if (const auto* comparison = dynamic_cast<const MCComparisonPredicate*>(predicate.get()))
      return this->comparison(*comparison, predicate);
    const auto* compound = dynamic_cast<const MCCompoundPredicate*>(predicate.get());
    if (!compound) return part(predicate);
    const auto& subpredicates = compound->subpredicates();
    switch (compound->compoundPredicateType()) {
      case MCCompoundPredicate::Type::Not:
        return subpredicates.empty() ? "1" : "(NOT " + this->predicate(subpredicates.front()) + ")";
      case MCCompoundPredicate::Type::And:
      case MCCompoundPredicate::Type::Or: {
        const bool isAnd = compound->compoundPredicateType() == MCCompoundPredicate::Type::And;
        if (subpredicates.empty()) return isAnd ? "1" : "0";
        std::vector<std::string> terms;
        for (const auto& sub : subpredicates) terms.push_back(this->predicate(sub));
        std::stable_partition(terms.begin(), terms.end(), cheap);
        std::string out = "(";
        for (std::size_t i = 0; i < terms.size(); ++i) out += (i ? (isAnd ? " AND " : " OR ") : "") + terms[i];
        return out + ")";
      }
    }
    return part(predicate);
  }
};

// Wraps a predicate that is not shared yet.
struct Unowned {
  static MCPredicateRef of(const MCPredicateNode& node) {
    return MCPredicateRef(MCPredicateRef(), &node);  // aliasing: no ownership, lives as long as the query
  }
};

MCCataloguePredicateContext* contextOf(sqlite3_context* call) {
  return static_cast<MCCataloguePredicateContext*>(sqlite3_user_data(call));
}

std::optional<MCValue> valueOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: return MCValue(int64_t(sqlite3_value_int64(value)));
    case SQLITE_FLOAT: return MCValue(sqlite3_value_double(value));
    case SQLITE_TEXT:
    case SQLITE_BLOB: {
      const void* bytes = sqlite3_value_blob(value);
      const int size = sqlite3_value_bytes(value);
      return MCValue(std::string(static_cast<const char*>(bytes ? bytes : ""), std::size_t(size)));
    }
    default: return std::nullopt;
  }
}

std::string textOf(sqlite3_value* value) {
  const void* bytes = sqlite3_value_blob(value);
  return std::string(static_cast<const char*>(bytes ? bytes : ""), std::size_t(sqlite3_value_bytes(value)));
}

void fail(sqlite3_context* call, const std::string& message) {
  auto* context = contextOf(call);
  if (context->error.empty()) context->error = message;
  sqlite3_result_error(call, message.c_str(), -1);
}

void compareFunction(sqlite3_context* call, int, sqlite3_value** arguments) {
  auto* context = contextOf(call);
  const int64_t index = sqlite3_value_int64(arguments[1]);
  if (index < 0 || std::size_t(index) >= context->comparisons.size()) return fail(call, "mc_compare: no such comparison");
  if (const auto& fast = context->asciiTexts[std::size_t(index)]; fast.applies && sqlite3_value_type(arguments[0]) == SQLITE_TEXT) {
    const unsigned char* text = sqlite3_value_text(arguments[0]);
    if (const auto holds = asciiTextHolds(fast, text, std::size_t(sqlite3_value_bytes(arguments[0]))))
      return sqlite3_result_int(call, *holds);
  }
  const auto left = valueOf(arguments[0]);
  if (!left) return sqlite3_result_int(call, 0);  // a path that leads nowhere is false
  const auto& comparison = static_cast<const MCComparisonPredicate&>(*context->comparisons[std::size_t(index)]);
  try {
    sqlite3_result_int(call, MCComparisonPredicate::compare(*left, comparison.rightExpression().constant,
                                                            comparison.predicateOperatorType(), comparison.options()));
  } catch (const MCPredicateEvaluationError& error) {
    fail(call, error.what());
  }
}

void partFunction(sqlite3_context* call, int count, sqlite3_value** arguments) {
  auto* context = contextOf(call);
  const int64_t index = sqlite3_value_int64(arguments[0]);
  if (count != 7 || index < 0 || std::size_t(index) >= context->parts.size()) return fail(call, "mc_part: bad call");
  const int64_t rowID = sqlite3_value_int64(arguments[1]);
  if (rowID != context->rowID) {
    const std::string json = textOf(arguments[6]);
    context->row = MCCatalogueDecodeDictionary(json).value_or(MCDictionary{});
    const auto type = sqlite3_value_type(arguments[5]) == SQLITE_NULL ? std::nullopt : std::optional(textOf(arguments[5]));
    MCAddSearchableFileAttributes(context->row, context->shownPath(textOf(arguments[2])), sqlite3_value_int64(arguments[3]),
                                  std::time_t(sqlite3_value_int64(arguments[4])), type);
    context->rowID = rowID;
  }
  try {
    sqlite3_result_int(call, context->parts[std::size_t(index)]->evaluateWithObject(context->row));
  } catch (const MCPredicateEvaluationError& error) {
    fail(call, error.what());
  }
}

void mtimeTextFunction(sqlite3_context* call, int, sqlite3_value** arguments) {
  const std::time_t when = std::time_t(sqlite3_value_int64(arguments[0]));
  std::tm local{};
  localtime_r(&when, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &local);
  sqlite3_result_text(call, text, -1, SQLITE_TRANSIENT);
}

void pathFunction(sqlite3_context* call, int, sqlite3_value** arguments) {
  const std::string shown = contextOf(call)->shownPath(textOf(arguments[0])).string();
  sqlite3_result_blob(call, shown.data(), int(shown.size()), SQLITE_TRANSIENT);
}

}  // namespace

const std::vector<MCCatalogueColumn>& MCCatalogueColumns() {
  static const std::vector<MCCatalogueColumn> columns = {
      {"{Exif}.DateTimeOriginal", "capture_date", "capture_date", false},
      {"{TIFF}.Make", "make", "make", false},
      {"{TIFF}.Model", "model", "model", false},
      {"{Exif}.LensModel", "lens", "lens", false},
      {"{Exif}.FNumber", "f_number", "f_number", false},
      {"{Exif}.ExposureTime", "exposure_time", "exposure_time", false},
      {"{Exif}.ISOSpeedRatings", "iso", "iso", true},
      {"{Exif}.FocalLength", "focal_length", "focal_length", false},
      {"PixelWidth", "pixel_width", "pixel_width", false},
      {"PixelHeight", "pixel_height", "pixel_height", false},
      {"{GPS}.Latitude", "gps_latitude", "gps_latitude", false},
      {"{GPS}.Longitude", "gps_longitude", "gps_longitude", false},
      {"{IPTC}.StarRating", "rating", "rating", false},
  };
  return columns;
}

std::string MCCatalogueWhereClause(const MCPredicateNode& predicate, MCCataloguePredicateContext& context,
                                   bool& translated) {
  Translator translator{context};
  // The first of the context's parts (index 0) is the whole predicate, for rows whose values do not
  // fit their columns.
  context.parts.push_back(Unowned::of(predicate));
  const std::string sql = translator.predicate(Unowned::of(predicate));
  translated = translator.translated;
  return "((irregular = 0 AND " + sql + ") OR (irregular <> 0 AND mc_part(0, " + kMCCatalogueRowArguments + ")))";
}

void MCCatalogueRegisterFunctions(sqlite3* db, MCCataloguePredicateContext* context) {
  const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
  sqlite3_create_function_v2(db, "mc_compare", 2, flags, context, compareFunction, nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(db, "mc_part", 7, flags, context, partFunction, nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(db, "mc_mtime_text", 1, flags, context, mtimeTextFunction, nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(db, "mc_path", 1, flags, context, pathFunction, nullptr, nullptr, nullptr);
}

}  // namespace mc_detail
