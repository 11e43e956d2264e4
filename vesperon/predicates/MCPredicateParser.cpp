#include <vesperon/predicates/MCPredicateParser.h>

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace {

struct ParseError : std::runtime_error {
  std::size_t position;
  ParseError(const std::string& what, std::size_t at) : std::runtime_error(what), position(at) {}
};

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  MCPredicateRef parseAll() {
    MCPredicateRef predicate = orExpression(0);
    skipSpace();
    if (at_ < text_.size()) fail("unexpected text");
    return predicate;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const { throw ParseError(what, at_); }

  void skipSpace() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
  }

  // A word of letters at the cursor, compared without case, as a whole word.
  bool word(std::string_view expected) {
    skipSpace();
    if (text_.size() - at_ < expected.size()) return false;
    for (std::size_t i = 0; i < expected.size(); ++i)
      if (std::toupper(static_cast<unsigned char>(text_[at_ + i])) != expected[i]) return false;
    const std::size_t end = at_ + expected.size();
    if (end < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '_')) return false;
    at_ = end;
    return true;
  }

  bool symbol(std::string_view expected) {
    skipSpace();
    if (text_.substr(at_, expected.size()) != expected) return false;
    at_ += expected.size();
    return true;
  }

  void enter(int depth) const {
    if (depth > MCPredicateParser::kMaximumDepth) fail("nested too deeply");
  }

  // `depth` counts what nests: NOT, parentheses and arrays, as the printed form has them too, so
  // that any predicate read here prints a text that reads back.
  MCPredicateRef orExpression(int depth) {
    enter(depth);
    std::vector<MCPredicateRef> parts{andExpression(depth)};
    while (word("OR") || symbol("||")) parts.push_back(andExpression(depth));
    if (parts.size() == 1) return parts.front();
    return std::make_shared<MCCompoundPredicate>(MCCompoundPredicate::Type::Or, std::move(parts));
  }

  MCPredicateRef andExpression(int depth) {
    enter(depth);
    std::vector<MCPredicateRef> parts{notExpression(depth)};
    while (word("AND") || symbol("&&")) parts.push_back(notExpression(depth));
    if (parts.size() == 1) return parts.front();
    return std::make_shared<MCCompoundPredicate>(MCCompoundPredicate::Type::And, std::move(parts));
  }

  MCPredicateRef notExpression(int depth) {
    enter(depth);
    if (word("NOT") || symbol("!")) {
      return std::make_shared<MCCompoundPredicate>(MCCompoundPredicate::Type::Not,
                                                   std::vector<MCPredicateRef>{notExpression(depth + 1)});
    }
    if (symbol("(")) {
      MCPredicateRef inner = orExpression(depth + 1);
      if (!symbol(")")) fail("expected )");
      return inner;
    }
    if (word("TRUEPREDICATE")) return MCConstantValuePredicate::predicateWithValue(true);
    if (word("FALSEPREDICATE")) return MCConstantValuePredicate::predicateWithValue(false);
    return comparison(depth);
  }

  MCPredicateRef comparison(int depth) {
    MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct;
    if (word("ANY") || word("SOME")) modifier = MCComparisonPredicateModifier::Any;
    else if (word("ALL")) modifier = MCComparisonPredicateModifier::All;
    MCPredicateExpression left = expression(depth);
    const MCPredicateOperatorType type = operatorType();
    unsigned options = 0;
    skipSpace();
    if (at_ < text_.size() && text_[at_] == '[') {
      ++at_;
      while (at_ < text_.size() && text_[at_] != ']') {
        const char c = char(std::tolower(static_cast<unsigned char>(text_[at_])));
        if (c == 'c') options |= MCCaseInsensitivePredicateOption;
        else if (c == 'd') options |= MCDiacriticInsensitivePredicateOption;
        else fail("unknown option");
        ++at_;
      }
      if (!symbol("]")) fail("expected ]");
    }
    skipSpace();
    const std::size_t rightStart = at_;
    MCPredicateExpression right = expression(depth);
    auto made = std::make_shared<MCComparisonPredicate>(std::move(left), std::move(right), type, modifier, options);
    if (std::string problem = made->validationError(); !problem.empty()) {
      at_ = rightStart;
      fail(problem);
    }
    return made;
  }

  MCPredicateOperatorType operatorType() {
    using T = MCPredicateOperatorType;
    if (symbol("<=") || symbol("=<")) return T::LessThanOrEqualTo;
    if (symbol(">=") || symbol("=>")) return T::GreaterThanOrEqualTo;
    if (symbol("==")) return T::EqualTo;
    if (symbol("!=") || symbol("<>")) return T::NotEqualTo;
    if (symbol("<")) return T::LessThan;
    if (symbol(">")) return T::GreaterThan;
    if (symbol("=")) return T::EqualTo;
    if (word("MATCHES")) return T::Matches;
    if (word("LIKE")) return T::Like;
    if (word("BEGINSWITH")) return T::BeginsWith;
    if (word("ENDSWITH")) return T::EndsWith;
    if (word("IN")) return T::In;
    if (word("CONTAINS")) return T::Contains;
    if (word("BETWEEN")) return T::Between;
    fail("expected an operator");
  }

  MCPredicateExpression expression(int depth) {
    enter(depth);
    skipSpace();
    if (at_ >= text_.size()) fail("expected a value or a key path");
    const char c = text_[at_];
    if (c == '"' || c == '\'') return MCPredicateExpression::constantValue(MCValue(quotedText()));
    if (c == '{' && !isKeyPathBrace()) return MCPredicateExpression::constantValue(array(depth + 1));
    if (std::isdigit(static_cast<unsigned char>(c)) || ((c == '-' || c == '+' || c == '.') && at_ + 1 < text_.size() &&
                                                        (std::isdigit(static_cast<unsigned char>(text_[at_ + 1])) || text_[at_ + 1] == '.')))
      return MCPredicateExpression::constantValue(number());
    if (word("TRUE") || word("YES")) return MCPredicateExpression::constantValue(MCValue(true));
    if (word("FALSE") || word("NO")) return MCPredicateExpression::constantValue(MCValue(false));
    if (word("NIL") || word("NULL")) return MCPredicateExpression::constantValue(MCValue());
    return MCPredicateExpression::keyPathExpression(keyPath());
  }

  // "{Exif}.FNumber" is a key path: a brace group of one name followed by a dot or the end of a path.
  bool isKeyPathBrace() const {
    const std::size_t close = text_.find('}', at_);
    if (close == std::string_view::npos) return false;
    for (std::size_t i = at_ + 1; i < close; ++i) {
      const char c = text_[i];
      if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-')) return false;
    }
    return close + 1 < text_.size() && text_[close + 1] == '.';
  }

  std::string keyPath() {
    const std::size_t start = at_;
    std::string path;
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '{') {
        const std::size_t close = text_.find('}', at_);
        if (close == std::string_view::npos) fail("unclosed {");
        path.append(text_.substr(at_, close + 1 - at_));
        at_ = close + 1;
      } else if (std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.' || c == '/' || c == '-' ||
                 static_cast<unsigned char>(c) >= 0x80) {
        path += c;
        ++at_;
      } else {
        break;
      }
    }
    if (path.empty() || path.front() == '.' || path.back() == '.') {
      at_ = start;
      fail("expected a value or a key path");
    }
    return path;
  }

  std::string quotedText() {
    const std::size_t start = at_;
    const char quote = text_[at_++];
    std::string out;
    while (at_ < text_.size() && text_[at_] != quote) {
      if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
      out += text_[at_++];
    }
    if (at_ >= text_.size()) {
      at_ = start;  // where the text opens says more than where the input ends
      fail("unclosed text");
    }
    ++at_;
    return out;
  }

  MCValue number() {
    const std::string rest(text_.substr(at_, 64));
    char* end = nullptr;
    const double value = std::strtod(rest.c_str(), &end);
    if (end == rest.c_str()) fail("expected a number");
    const std::string token = rest.substr(0, std::size_t(end - rest.c_str()));
    at_ += token.size();
    if (token.find_first_of(".eE") == std::string::npos && std::fabs(value) < 9e15) return MCValue(int64_t(value));
    return MCValue(value);
  }

  MCValue array(int depth) {
    enter(depth);
    ++at_;  // {
    MCArray items;
    if (symbol("}")) return items;
    while (true) {
      MCPredicateExpression item = expression(depth);
      if (item.kind != MCPredicateExpression::Kind::Constant) fail("an array holds constants only");
      items.push_back(std::move(item.constant));
      if (symbol("}")) return items;
      if (!symbol(",")) fail("expected , or }");
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

MCPredicateParseResult MCPredicateParser::parse(std::string_view text) {
  MCPredicateParseResult result;
  try {
    result.predicate = Parser(text).parseAll();
  } catch (const ParseError& error) {
    result.error = std::string(error.what()) + " at " + std::to_string(error.position);
    result.position = error.position;
  }
  return result;
}
