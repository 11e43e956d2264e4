#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <vesperon/controls/MCDatePickerModel.h>
#include <vesperon/controls/MCTextFieldModel.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/predicates/MCPredicateDate.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

using Type = MCPredicate::AttributeType;

std::string titleOf(const MCPredicateExpression& expression) {
  if (expression.kind == MCPredicateExpression::Kind::KeyPath) return expression.keyPath;
  return MCPredicate::ExpressionConstant{expression.constant, std::nullopt}.localizedString();
}

std::vector<MCPredicateExpression> withoutSeparators(const std::vector<MCPredicateEditorRowTemplate::Expression>& entries) {
  std::vector<MCPredicateExpression> out;
  for (const auto& e : entries)
    if (!e.isSeparator) out.push_back(e.expression);
  return out;
}

// The base makes one item per expression; the entries then title them and put in their
// separators, each at its own index, so that the items after a separator keep their index.
std::shared_ptr<MCPopUpModel> expressionPopUp(const std::vector<MCPredicateEditorRowTemplate::Expression>& entries) {
  auto popUp = std::make_shared<MCPopUpModel>();
  for (const auto& e : entries)
    if (!e.isSeparator) popUp->addItem(MCPopUpItem{titleOf(e.expression), 0, e.expression, false});
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].isSeparator) popUp->insertItem(MCPopUpItem::separatorItem(), i);
    else if (i < popUp->numberOfItems()) popUp->itemAtIndex(i).title = entries[i].title;
  }
  return popUp;
}

std::shared_ptr<MCControlModel> cloneView(const std::shared_ptr<MCControlModel>& view) {
  if (auto p = std::dynamic_pointer_cast<MCPopUpModel>(view)) return std::make_shared<MCPopUpModel>(*p);
  if (auto t = std::dynamic_pointer_cast<MCTextFieldModel>(view)) return std::make_shared<MCTextFieldModel>(*t);
  if (auto d = std::dynamic_pointer_cast<MCDatePickerModel>(view)) return std::make_shared<MCDatePickerModel>(*d);
  return view;
}

// The constant an entry field's text stands for, by the field's attribute type.
MCValue constantOfText(const std::string& text, Type type) {
  switch (type) {
    case Type::Integer16:
    case Type::Integer32:
    case Type::Integer64: {
      long long value = 0;
      std::from_chars(text.data(), text.data() + text.size(), value);
      return MCValue(int64_t(value));
    }
    case Type::Decimal:
    case Type::Double:
    case Type::Float: {
      double value = 0;
      std::from_chars(text.data(), text.data() + text.size(), value);
      return MCValue(value);
    }
    case Type::Boolean: return MCValue(text == "1" || text == "true" || text == "TRUE" || text == "YES");
    default: return MCValue(text);
  }
}

std::string textOfConstant(const MCValue& value) {
  if (const std::string* text = value.string()) return *text;
  return MCPredicate::ExpressionConstant{value, std::nullopt}.localizedString();
}

template <typename T>
const T* representedObjectOf(const MCPopUpModel* popUp) {
  const MCPopUpItem* item = popUp ? popUp->selectedItem() : nullptr;
  return item ? std::any_cast<T>(&item->representedObject) : nullptr;
}

}  // namespace

MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate(const std::vector<Expression>& leftExpressions,
                                                           const std::vector<Operator>& operators,
                                                           const std::vector<Expression>& rightExpressions,
                                                           MCComparisonPredicateModifier modifier, unsigned options,
                                                           std::optional<bool> defaultValue)
    : leftExpressions_(withoutSeparators(leftExpressions)),
      rightExpressions_(withoutSeparators(rightExpressions)),
      modifier_(modifier),
      options_(options),
      defaultValue_(defaultValue) {
  makeComparisonViews(leftExpressions, operators);
  views_.push_back(expressionPopUp(rightExpressions));
}

MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate(const std::vector<Expression>& leftExpressions,
                                                           const std::vector<Operator>& operators,
                                                           const AttributeType& rightAttributeType,
                                                           MCComparisonPredicateModifier modifier, unsigned options,
                                                           std::optional<bool> defaultValue)
    : leftExpressions_(withoutSeparators(leftExpressions)),
      rightAttributeType_(rightAttributeType),
      modifier_(modifier),
      options_(options),
      defaultValue_(defaultValue) {
  makeComparisonViews(leftExpressions, operators);
  if (rightAttributeType.type == Type::Date) {
    views_.push_back(std::make_shared<MCDatePickerModel>());
  } else {
    auto field = std::make_shared<MCTextFieldModel>();
    field->placeholderString = rightAttributeType.hint.value_or("");
    views_.push_back(field);
  }
}

MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate(const std::vector<MCCompoundPredicate::Type>& compoundTypes)
    : compoundTypes_(compoundTypes) {
  auto types = std::make_shared<MCPopUpModel>();
  for (auto type : compoundTypes) {
    const char* title = type == MCCompoundPredicate::Type::And ? "All" : type == MCCompoundPredicate::Type::Or ? "Any" : "None";
    types->addItem(MCPopUpItem{title, long(type), type, false});
  }
  auto rest = std::make_shared<MCPopUpModel>();
  rest->addItem(MCPopUpItem{"of the following are true", 0, {}, false});
  views_ = {types, rest};
}

MCPredicateEditorRowTemplate::MCPredicateEditorRowTemplate(const MCPredicateEditorRowTemplate& other)
    : leftExpressions_(other.leftExpressions_),
      rightExpressions_(other.rightExpressions_),
      operators_(other.operators_),
      rightAttributeType_(other.rightAttributeType_),
      compoundTypes_(other.compoundTypes_),
      modifier_(other.modifier_),
      options_(other.options_),
      defaultValue_(other.defaultValue_) {
  for (const auto& view : other.views_) views_.push_back(cloneView(view));
}

std::shared_ptr<MCPredicateEditorRowTemplate> MCPredicateEditorRowTemplate::copy() const {
  return std::shared_ptr<MCPredicateEditorRowTemplate>(new MCPredicateEditorRowTemplate(*this));
}

void MCPredicateEditorRowTemplate::makeComparisonViews(const std::vector<Expression>& left,
                                                       const std::vector<Operator>& operators) {
  views_.push_back(expressionPopUp(left));
  auto popUp = std::make_shared<MCPopUpModel>();
  for (const auto& o : operators) {
    if (o.isSeparator) continue;
    operators_.push_back(o.type);
    popUp->addItem(MCPopUpItem{MCPredicate::Operator{o.type, std::nullopt}.localizedString(), o.type, o.type, false});
  }
  for (std::size_t i = 0; i < operators.size(); ++i) {
    if (operators[i].isSeparator) popUp->insertItem(MCPopUpItem::separatorItem(), i);
    else if (i < popUp->numberOfItems()) popUp->itemAtIndex(i).title = operators[i].title;
  }
  views_.push_back(popUp);
}

bool MCPredicateEditorRowTemplate::defaultValue() {
  if (!defaultValue_) defaultValue_ = true;
  return *defaultValue_;
}

std::vector<std::shared_ptr<MCControlModel>> MCPredicateEditorRowTemplate::templateViews() { return views_; }

std::optional<MCPredicateExpression> MCPredicateEditorRowTemplate::selectedLeftExpression() const {
  const auto* popUp = views_.empty() ? nullptr : dynamic_cast<const MCPopUpModel*>(views_[0].get());
  const auto* expression = representedObjectOf<MCPredicateExpression>(popUp);
  return expression ? std::optional(*expression) : std::nullopt;
}

std::optional<int> MCPredicateEditorRowTemplate::selectedOperator() const {
  const auto* popUp = views_.size() < 2 ? nullptr : dynamic_cast<const MCPopUpModel*>(views_[1].get());
  const auto* type = representedObjectOf<int>(popUp);
  return type ? std::optional(*type) : std::nullopt;
}

MCPredicateRef MCPredicateEditorRowTemplate::predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates) {
  if (isCompound()) {
    const auto* popUp = dynamic_cast<const MCPopUpModel*>(views_[0].get());
    const auto* type = representedObjectOf<MCCompoundPredicate::Type>(popUp);
    const auto chosen = type ? *type : compoundTypes_.front();
    // "None of the following are true" over several rows: not any of them.
    if (chosen == MCCompoundPredicate::Type::Not && subpredicates.size() > 1)
      return std::make_shared<MCCompoundPredicate>(
          chosen, std::vector<MCPredicateRef>{std::make_shared<MCCompoundPredicate>(MCCompoundPredicate::Type::Or, subpredicates)});
    return std::make_shared<MCCompoundPredicate>(chosen, subpredicates);
  }
  const auto left = selectedLeftExpression();
  const auto type = selectedOperator();
  if (!left || !type || views_.size() < 3) return defaultValuePredicate();
  std::optional<MCPredicateExpression> right;
  if (const auto* popUp = dynamic_cast<const MCPopUpModel*>(views_[2].get())) {
    if (const auto* expression = representedObjectOf<MCPredicateExpression>(popUp)) right = *expression;
  } else if (const auto* field = dynamic_cast<const MCTextFieldModel*>(views_[2].get())) {
    const Type attribute = rightAttributeType_ ? rightAttributeType_->type : Type::String;
    right = MCPredicateExpression::constantValue(constantOfText(field->stringValue, attribute));
  } else if (const auto* picker = dynamic_cast<const MCDatePickerModel*>(views_[2].get())) {
    right = MCPredicateExpression::constantValue(MCValue(MCPredicateDate::textOfInstant(picker->dateValue)));
  }
  if (!right) return defaultValuePredicate();
  return std::make_shared<MCComparisonPredicate>(*left, *right, MCPredicateOperatorType(*type), modifier_, options_);
}

double MCPredicateEditorRowTemplate::matchForPredicate(const MCPredicateNode& predicate) const {
  if (isCompound()) {
    const auto* compound = dynamic_cast<const MCCompoundPredicate*>(&predicate);
    return compound && std::count(compoundTypes_.begin(), compoundTypes_.end(), compound->compoundPredicateType()) ? 1.0 : 0.0;
  }
  const auto* comparison = dynamic_cast<const MCComparisonPredicate*>(&predicate);
  if (!comparison || comparison->comparisonPredicateModifier() != modifier_) return 0.0;
  const bool left = std::count(leftExpressions_.begin(), leftExpressions_.end(), comparison->leftExpression()) > 0;
  const bool type = std::count(operators_.begin(), operators_.end(), int(comparison->predicateOperatorType())) > 0;
  const bool right = rightAttributeType_
                         ? comparison->rightExpression().kind == MCPredicateExpression::Kind::Constant
                         : std::count(rightExpressions_.begin(), rightExpressions_.end(), comparison->rightExpression()) > 0;
  return left && type && right ? 1.0 : 0.0;
}

void MCPredicateEditorRowTemplate::setPredicate(const MCPredicateNode& predicate) {
  auto select = [](MCControlModel* view, auto matches) {
    auto* popUp = dynamic_cast<MCPopUpModel*>(view);
    if (!popUp) return;
    for (std::size_t i = 0; i < popUp->numberOfItems(); ++i)
      if (!popUp->items()[i].separator && matches(popUp->items()[i].representedObject)) {
        popUp->selectItemAtIndex(i);
        return;
      }
  };
  if (isCompound()) {
    const auto* compound = dynamic_cast<const MCCompoundPredicate*>(&predicate);
    if (compound)
      select(views_[0].get(), [&](const std::any& object) {
        const auto* type = std::any_cast<MCCompoundPredicate::Type>(&object);
        return type && *type == compound->compoundPredicateType();
      });
    return;
  }
  const auto* comparison = dynamic_cast<const MCComparisonPredicate*>(&predicate);
  if (!comparison || views_.size() < 3) return;
  auto sameExpression = [](const MCPredicateExpression& wanted) {
    return [&wanted](const std::any& object) {
      const auto* expression = std::any_cast<MCPredicateExpression>(&object);
      return expression && *expression == wanted;
    };
  };
  select(views_[0].get(), sameExpression(comparison->leftExpression()));
  select(views_[1].get(), [&](const std::any& object) {
    const auto* type = std::any_cast<int>(&object);
    return type && *type == int(comparison->predicateOperatorType());
  });
  const MCPredicateExpression& right = comparison->rightExpression();
  if (dynamic_cast<MCPopUpModel*>(views_[2].get())) {
    select(views_[2].get(), sameExpression(right));
  } else if (auto* field = dynamic_cast<MCTextFieldModel*>(views_[2].get())) {
    if (right.kind == MCPredicateExpression::Kind::Constant) field->stringValue = textOfConstant(right.constant);
  } else if (auto* picker = dynamic_cast<MCDatePickerModel*>(views_[2].get())) {
    const std::string* text = right.constant.string();
    if (auto instant = text ? MCPredicateDate::instantOfText(*text) : std::nullopt) picker->dateValue = *instant;
  }
}

std::vector<MCPredicateRef> MCPredicateEditorRowTemplate::displayableSubpredicatesOfPredicate(
    const MCPredicateNode& predicate) const {
  const auto* compound = dynamic_cast<const MCCompoundPredicate*>(&predicate);
  return isCompound() && compound ? compound->subpredicates() : std::vector<MCPredicateRef>{};
}

MCPredicateEditorRowTemplate& MCPredicateEditorRowTemplate::withPrependingSeparator() {
  if (auto* popUp = views_.empty() ? nullptr : dynamic_cast<MCPopUpModel*>(views_[0].get()))
    popUp->insertItem(MCPopUpItem::separatorItem(), 0);
  return *this;
}
