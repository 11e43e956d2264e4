#include <vesperon/predicates/MCPredicateEditorRowTemplateNumber.h>

#include <vesperon/controls/MCTextFieldModel.h>

#include <charconv>
#include <cmath>

namespace {

void skipWhiteSpace(std::string_view text, std::size_t& at) {
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t' || text[at] == '\n' || text[at] == '\r')) ++at;
}

// A decimal number at `at`, after white space, in the C locale; a leading sign is allowed.
std::optional<double> scanNumber(std::string_view text, std::size_t& at) {
  skipWhiteSpace(text, at);
  std::size_t start = at;
  if (start < text.size() && text[start] == '+') ++start;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data() + start, text.data() + text.size(), value);
  if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
  at = std::size_t(end - text.data());
  return value;
}

// A run of "/" and "÷" after white space; false when there is none.
bool scanDivision(std::string_view text, std::size_t& at) {
  skipWhiteSpace(text, at);
  const std::string_view divide = "\u00f7";
  bool any = false;
  while (at < text.size()) {
    if (text[at] == '/') {
      ++at;
    } else if (text.substr(at, divide.size()) == divide) {
      at += divide.size();
    } else {
      break;
    }
    any = true;
  }
  return any;
}

}  // namespace

std::optional<double> MCPredicateEditorRowTemplateNumber::numberOfText(std::string_view text) {
  std::size_t at = 0;
  const auto first = scanNumber(text, at);
  if (!first) return std::nullopt;
  if (!scanDivision(text, at)) return first;
  const auto second = scanNumber(text, at);
  if (!second) return first;
  if (*second == 0) return std::nullopt;
  return *first / *second;
}

MCPredicateRef MCPredicateEditorRowTemplateNumber::predicateWithSubpredicates(const std::vector<MCPredicateRef>&) {
  const auto& views = baseViews();
  const auto* field = views.size() > 2 ? dynamic_cast<const MCTextFieldModel*>(views[2].get()) : nullptr;
  const auto left = selectedLeftExpression();
  const auto type = selectedOperator();
  const auto number = field ? numberOfText(field->stringValue) : std::nullopt;
  if (!left || !type || !number) return defaultValuePredicate();
  return std::make_shared<MCComparisonPredicate>(*left, MCPredicateExpression::constantValue(MCValue(*number)),
                                                 MCPredicateOperatorType(*type), modifier(), options());
}
