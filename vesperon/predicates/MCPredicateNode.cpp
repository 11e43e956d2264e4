#include <vesperon/predicates/MCPredicateNode.h>

#include <vesperon/predicates/MCPredicateDate.h>

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>

namespace {

icu::UnicodeString unicode(const std::string& text) { return icu::UnicodeString::fromUTF8(text); }

// The text as the options compare it: case folded for "c", without combining marks for "d".
icu::UnicodeString folded(const std::string& text, unsigned options) {
  icu::UnicodeString out = unicode(text);
  if (options & MCDiacriticInsensitivePredicateOption) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_SUCCESS(status)) {
      icu::UnicodeString decomposed = nfd->normalize(out, status);
      if (U_SUCCESS(status)) {
        icu::UnicodeString stripped;
        for (int32_t i = 0; i < decomposed.length();) {
          const UChar32 c = decomposed.char32At(i);
          if (u_charType(c) != U_NON_SPACING_MARK) stripped.append(c);
          i += U16_LENGTH(c);
        }
        out = stripped;
      }
    }
  }
  if (options & MCCaseInsensitivePredicateOption) out.foldCase();
  return out;
}

// ICU's root collator at the strength the options leave, made once per thread and strength:
// a comparison runs once per object filtered, and a collator is not shared between threads.
icu::Collator* collatorFor(unsigned options) {
  const bool caseless = options & MCCaseInsensitivePredicateOption, markless = options & MCDiacriticInsensitivePredicateOption;
  const int which = markless ? 0 : caseless ? 1 : 2;
  thread_local std::unique_ptr<icu::Collator> collators[3];
  if (!collators[which]) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> made(icu::Collator::createInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) return nullptr;
    made->setStrength(which == 0 ? icu::Collator::PRIMARY : which == 1 ? icu::Collator::SECONDARY : icu::Collator::IDENTICAL);
    collators[which] = std::move(made);
  }
  return collators[which].get();
}

// The pattern of a MATCHES compiled once per thread while the same pattern comes again, as it does
// for every object a predicate is evaluated against; none when it does not compile.
icu::RegexPattern* patternFor(const std::string& text, uint32_t flags) {
  struct Compiled {
    std::string text;
    uint32_t flags = 0;
    std::unique_ptr<icu::RegexPattern> pattern;
    bool valid = false;
  };
  thread_local Compiled last;
  if (!last.valid || last.text != text || last.flags != flags) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError error;
    last.pattern.reset(icu::RegexPattern::compile(unicode(text), flags, error, status));
    if (U_FAILURE(status)) last.pattern.reset();
    last.text = text;
    last.flags = flags;
    last.valid = true;
  }
  return last.pattern.get();
}

// -1, 0, 1 by ICU's root collation at the strength the options leave.
int collate(const std::string& a, const std::string& b, unsigned options) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Collator* collator = collatorFor(options);
  if (!collator) return a < b ? -1 : a > b ? 1 : 0;
  const UCollationResult result = collator->compare(unicode(a), unicode(b), status);
  if (U_FAILURE(status)) return a < b ? -1 : a > b ? 1 : 0;
  return result == UCOL_LESS ? -1 : result == UCOL_GREATER ? 1 : 0;
}

// Wildcard match: * any run, ? any one character (a UTF-16 unit, as the text is held). A loop
// that, on a mismatch, backs up to the last star and lets it take one character more: an earlier
// star never needs to take more once a later one has matched, so the cost is at most the text's
// length times the pattern's, and nothing recurses.
bool like(const icu::UnicodeString& text, const icu::UnicodeString& pattern) {
  const int32_t textLength = text.length(), patternLength = pattern.length();
  int32_t t = 0, p = 0;
  int32_t starP = -1, starT = 0;  // just after the last star, and where its run ends now
  while (t < textLength) {
    if (p < patternLength && pattern.charAt(p) == '*') {
      starP = ++p;
      starT = t;
    } else if (p < patternLength && (pattern.charAt(p) == '?' || pattern.charAt(p) == text.charAt(t))) {
      ++p;
      ++t;
    } else if (starP >= 0) {
      p = starP;
      t = ++starT;
    } else {
      return false;
    }
  }
  while (p < patternLength && pattern.charAt(p) == '*') ++p;
  return p == patternLength;
}

// Bounds of one MATCHES against one text. ICU counts time in steps of ten thousand operations of
// its match engine, a tenth of a millisecond or two each: a pattern over a name, a model or a
// caption needs a few, while one that backtracks without end ((a+)+$ against "aaa…!") is stopped
// after ten million operations, in a fraction of a second. The backtrack stack is heap memory,
// bounded well below ICU's default of 8 MB.
constexpr int32_t kMatchTimeLimit = 1000;
constexpr int32_t kMatchStackLimit = 1 << 20;

// The start of a text for a message, cut at a character's first byte.
std::string shortened(const std::string& text) {
  constexpr std::size_t kLength = 60;
  if (text.size() <= kLength) return text;
  std::size_t end = kLength;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "…";
}

// "U_REGEX_MISSING_CLOSE_BRACKET" as "missing close bracket".
std::string regexErrorText(UErrorCode status) {
  std::string name = u_errorName(status);
  if (name.rfind("U_REGEX_", 0) == 0) name.erase(0, 8);
  else if (name.rfind("U_", 0) == 0) name.erase(0, 2);
  for (char& c : name) c = c == '_' ? ' ' : char(std::tolower(static_cast<unsigned char>(c)));
  return name;
}

std::optional<double> numberOf(const MCValue& value) {
  if (value.isString() || value.isNone() || value.isArray() || value.isDictionary() || value.isData()) return std::nullopt;
  return value.doubleValue();
}

std::string formatNumber(double value) {
  // An overflowing number reads back as infinity; "inf" would read back as a key path.
  if (std::isinf(value)) return value > 0 ? "1e999" : "-1e999";
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

std::string constantFormat(const MCValue& value) {
  if (value.isNone()) return "NIL";
  if (value.isBool()) return *value.integerValue() ? "TRUE" : "FALSE";
  if (const std::string* text = value.string()) return quoted(*text);
  if (const MCArray* array = value.array()) {
    std::string out = "{";
    for (std::size_t i = 0; i < array->size(); ++i) out += (i ? ", " : "") + constantFormat((*array)[i]);
    return out + "}";
  }
  if (value.isInteger()) return std::to_string(*value.integerValue());
  if (auto number = numberOf(value)) {
    // A real number keeps a point, so that it reads back as a real number, not an integer.
    std::string text = formatNumber(*number);
    if (text.find_first_of(".eEn") == std::string::npos) text += ".0";
    return text;
  }
  return "NIL";
}

const char* operatorFormat(MCPredicateOperatorType type) {
  switch (type) {
    case MCPredicateOperatorType::LessThan: return "<";
    case MCPredicateOperatorType::LessThanOrEqualTo: return "<=";
    case MCPredicateOperatorType::GreaterThan: return ">";
    case MCPredicateOperatorType::GreaterThanOrEqualTo: return ">=";
    case MCPredicateOperatorType::EqualTo: return "==";
    case MCPredicateOperatorType::NotEqualTo: return "!=";
    case MCPredicateOperatorType::Matches: return "MATCHES";
    case MCPredicateOperatorType::Like: return "LIKE";
    case MCPredicateOperatorType::BeginsWith: return "BEGINSWITH";
    case MCPredicateOperatorType::EndsWith: return "ENDSWITH";
    case MCPredicateOperatorType::In: return "IN";
    case MCPredicateOperatorType::Contains: return "CONTAINS";
    case MCPredicateOperatorType::Between: return "BETWEEN";
    case MCPredicateOperatorType::CustomSelector: return "FUNCTION";
  }
  return "==";
}

}  // namespace

std::vector<std::string> MCPredicateExpression::keysOfKeyPath(const std::string& keyPath) {
  std::vector<std::string> keys;
  std::string key;
  int depth = 0;
  for (char c : keyPath) {
    if (c == '{') ++depth;
    if (c == '}' && depth > 0) --depth;
    if (c == '.' && depth == 0) {
      keys.push_back(std::move(key));
      key.clear();
    } else {
      key += c;
    }
  }
  keys.push_back(std::move(key));
  return keys;
}

std::optional<MCValue> MCPredicateExpression::valueWithObject(const MCDictionary& object) const {
  if (kind == Kind::Constant) return constant;
  const MCDictionary* at = &object;
  const std::vector<std::string> keys = MCPredicateExpression::keysOfKeyPath(keyPath);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const MCValue* value = at ? MCDictionaryGet(*at, keys[i]) : nullptr;
    if (!value) return std::nullopt;
    if (i + 1 == keys.size()) return *value;
    at = value->dictionary();
  }
  return std::nullopt;
}

std::string MCPredicateExpression::predicateFormat() const {
  return kind == Kind::KeyPath ? keyPath : constantFormat(constant);
}

bool MCComparisonPredicate::compare(const MCValue& left, const MCValue& right, MCPredicateOperatorType type,
                                    unsigned options) {
  using T = MCPredicateOperatorType;
  const std::string* leftText = left.string();
  const std::string* rightText = right.string();
  auto ordered = [&](auto test) -> bool {
    if (leftText && rightText) {
      // Two dates order as the instants they name, whatever their forms and offsets.
      const auto a = MCPredicateDate::instantOfText(*leftText);
      const auto b = a ? MCPredicateDate::instantOfText(*rightText) : std::nullopt;
      if (a && b) return test(*a < *b ? -1 : *a > *b ? 1 : 0);
      return test(collate(*leftText, *rightText, options));
    }
    const auto a = numberOf(left), b = numberOf(right);
    if (!a || !b) return false;
    return test(*a < *b ? -1 : *a > *b ? 1 : 0);
  };
  switch (type) {
    case T::LessThan: return ordered([](int c) { return c < 0; });
    case T::LessThanOrEqualTo: return ordered([](int c) { return c <= 0; });
    case T::GreaterThan: return ordered([](int c) { return c > 0; });
    case T::GreaterThanOrEqualTo: return ordered([](int c) { return c >= 0; });
    case T::EqualTo:
      if (left.isNone() || right.isNone()) return left.isNone() && right.isNone();
      return ordered([](int c) { return c == 0; }) || (!leftText && !rightText && left == right);
    case T::NotEqualTo: return !compare(left, right, T::EqualTo, options);
    case T::BeginsWith:
    case T::EndsWith:
    case T::Like:
    case T::Matches: {
      if (!leftText || !rightText) return false;
      if (type == T::Matches) {
        UErrorCode status = U_ZERO_ERROR;
        const uint32_t flags = (options & MCCaseInsensitivePredicateOption) ? UREGEX_CASE_INSENSITIVE : 0;
        icu::RegexPattern* pattern = patternFor(*rightText, flags);
        if (!pattern) return false;  // a pattern that does not compile matches nothing
        const icu::UnicodeString subject = unicode(*leftText);
        std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(subject, status));
        if (U_FAILURE(status) || !matcher) return false;
        matcher->setTimeLimit(kMatchTimeLimit, status);
        matcher->setStackLimit(kMatchStackLimit, status);
        if (U_FAILURE(status)) return false;
        const bool whole = matcher->matches(status);
        if (status == U_REGEX_TIME_OUT || status == U_REGEX_STACK_OVERFLOW) {
          throw MCPredicateEvaluationError("the regular expression " + quoted(*rightText) +
                                           (status == U_REGEX_TIME_OUT ? " ran past its time limit"
                                                                       : " ran past its memory limit") +
                                           " on " + quoted(shortened(*leftText)));
        }
        return U_SUCCESS(status) && whole;
      }
      const icu::UnicodeString text = folded(*leftText, options), pattern = folded(*rightText, options);
      if (type == T::BeginsWith) return text.startsWith(pattern);
      if (type == T::EndsWith) return text.endsWith(pattern);
      return like(text, pattern);
    }
    case T::Contains:
      if (const MCArray* items = left.array()) {
        for (const MCValue& item : *items)
          if (compare(item, right, T::EqualTo, options)) return true;
        return false;
      }
      if (!leftText || !rightText) return false;
      return folded(*leftText, options).indexOf(folded(*rightText, options)) >= 0;
    case T::In: return compare(right, left, T::Contains, options);
    case T::Between: {
      const MCArray* bounds = right.array();
      if (!bounds || bounds->size() != 2) return false;
      return compare(left, (*bounds)[0], T::GreaterThanOrEqualTo, options) &&
             compare(left, (*bounds)[1], T::LessThanOrEqualTo, options);
    }
    case T::CustomSelector: return false;
  }
  return false;
}

std::string MCComparisonPredicate::validationError() const {
  if (right_.kind != MCPredicateExpression::Kind::Constant) return {};
  if (type_ == MCPredicateOperatorType::Matches) {
    if (const std::string* pattern = right_.constant.string()) {
      UErrorCode status = U_ZERO_ERROR;
      UParseError error;
      const uint32_t flags = (options_ & MCCaseInsensitivePredicateOption) ? UREGEX_CASE_INSENSITIVE : 0;
      std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(unicode(*pattern), flags, error, status));
      if (U_FAILURE(status))
        return "the regular expression " + quoted(*pattern) + " does not compile: " + regexErrorText(status);
    }
  }
  if (type_ == MCPredicateOperatorType::Between) {
    const MCArray* bounds = right_.constant.array();
    if (!bounds || bounds->size() != 2) return "BETWEEN takes an array of two values, {low, high}";
  }
  return {};
}

bool MCComparisonPredicate::evaluateWithObject(const MCDictionary& object) const {
  const auto left = left_.valueWithObject(object);
  const auto right = right_.valueWithObject(object);
  if (!left || !right) return false;  // a path that leads nowhere: false, not an error
  if (modifier_ == MCComparisonPredicateModifier::Direct) return compare(*left, *right, type_, options_);
  const MCArray* items = left->array();
  if (!items) return false;
  for (const MCValue& item : *items) {
    const bool holds = compare(item, *right, type_, options_);
    if (modifier_ == MCComparisonPredicateModifier::Any && holds) return true;
    if (modifier_ == MCComparisonPredicateModifier::All && !holds) return false;
  }
  return modifier_ == MCComparisonPredicateModifier::All;
}

std::string MCComparisonPredicate::predicateFormat() const {
  std::string out;
  if (modifier_ == MCComparisonPredicateModifier::Any) out = "ANY ";
  if (modifier_ == MCComparisonPredicateModifier::All) out = "ALL ";
  out += left_.predicateFormat() + " " + operatorFormat(type_);
  if (options_) {
    out += "[";
    if (options_ & MCCaseInsensitivePredicateOption) out += "c";
    if (options_ & MCDiacriticInsensitivePredicateOption) out += "d";
    out += "]";
  }
  return out + " " + right_.predicateFormat();
}

bool MCComparisonPredicate::isEqual(const MCPredicateNode& other) const {
  const auto* that = dynamic_cast<const MCComparisonPredicate*>(&other);
  return that && left_ == that->left_ && right_ == that->right_ && type_ == that->type_ &&
         modifier_ == that->modifier_ && options_ == that->options_;
}

bool MCCompoundPredicate::evaluateWithObject(const MCDictionary& object) const {
  switch (type_) {
    case Type::Not: return subpredicates_.empty() || !subpredicates_.front()->evaluateWithObject(object);
    case Type::And:
      for (const auto& p : subpredicates_)
        if (!p->evaluateWithObject(object)) return false;
      return true;
    case Type::Or:
      for (const auto& p : subpredicates_)
        if (p->evaluateWithObject(object)) return true;
      return false;
  }
  return false;
}

std::string MCCompoundPredicate::predicateFormat() const {
  // Only AND and OR need parentheses inside another compound: NOT binds tighter than both. Fewer
  // parentheses also keep the printed form no deeper than the text it was read from.
  auto part = [](const MCPredicateRef& p) {
    const auto* compound = dynamic_cast<const MCCompoundPredicate*>(p.get());
    const bool group = compound && compound->type_ != Type::Not && !compound->subpredicates_.empty();
    return group ? "(" + p->predicateFormat() + ")" : p->predicateFormat();
  };
  if (type_ == Type::Not) return subpredicates_.empty() ? "NOT TRUEPREDICATE" : "NOT " + part(subpredicates_.front());
  if (subpredicates_.empty()) return type_ == Type::And ? "TRUEPREDICATE" : "FALSEPREDICATE";
  std::string out;
  for (std::size_t i = 0; i < subpredicates_.size(); ++i)
    out += (i ? (type_ == Type::And ? " AND " : " OR ") : "") + part(subpredicates_[i]);
  return out;
}

bool MCCompoundPredicate::isEqual(const MCPredicateNode& other) const {
  const auto* that = dynamic_cast<const MCCompoundPredicate*>(&other);
  if (!that || type_ != that->type_ || subpredicates_.size() != that->subpredicates_.size()) return false;
  for (std::size_t i = 0; i < subpredicates_.size(); ++i)
    if (!subpredicates_[i]->isEqual(*that->subpredicates_[i])) return false;
  return true;
}
