#include <vesperon/predicates/MCPredicateEditorBuilder.h>

#include <vesperon/controls/MCPopUpModel.h>
#include <vesperon/core/MCLocalizedString.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateBuilders.h>

namespace {

using Expression = MCPredicateEditorRowTemplate::Expression;
using Operator = MCPredicateEditorRowTemplate::Operator;
using Type = MCPredicateOperatorType;

// Sections flattened, with a separator entry between two sections.
template <typename Entry, typename T, typename Make>
std::vector<Entry> flattened(const MCSections<T>& sections, Make make) {
  std::vector<Entry> out;
  for (std::size_t s = 0; s < sections.size(); ++s) {
    if (s > 0) out.push_back(Entry::separator());
    for (const T& element : sections[s]) out.push_back(make(element));
  }
  return out;
}

template <typename T>
std::vector<Expression> expressions(const MCSections<T>& sections) {
  return flattened<Expression>(sections, [](const T& e) { return Expression::entry(e.predicateExpression(), e.localizedString()); });
}

std::vector<Operator> operators(const MCSections<MCPredicate::Operator>& sections) {
  return flattened<Operator>(sections, [](const MCPredicate::Operator& o) { return Operator::entry(o.type, o.localizedString()); });
}

MCPredicateEditorBuilder::Item item(std::vector<Expression> left,
                                    std::variant<std::vector<Expression>, MCPredicate::ExpressionAttributeType> right,
                                    std::vector<Operator> ops, bool defaultValue,
                                    MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct,
                                    unsigned options = 0) {
  return {std::move(left), std::move(right), std::move(ops), modifier, options, defaultValue};
}

MCPredicate::ExpressionAttributeType attribute(MCPredicate::AttributeType type, std::optional<std::string> hint = {}) {
  return {type, std::move(hint)};
}

}  // namespace

MCPredicateEditorBuilder::MCPredicateEditorBuilder(bool defaultValue) : defaultValue_(defaultValue) {
  auto compound = std::make_shared<MCPredicateEditorRowTemplate>(std::vector<MCCompoundPredicate::Type>{
      MCCompoundPredicate::Type::And, MCCompoundPredicate::Type::Or, MCCompoundPredicate::Type::Not});
  const auto views = compound->templateViews();
  if (views.size() >= 2) {
    if (auto* types = dynamic_cast<MCPopUpModel*>(views.front().get()); types && types->numberOfItems() >= 3) {
      types->itemAtIndex(0).title = MCLocalizedString("predicate_all", "All");
      types->itemAtIndex(1).title = MCLocalizedString("predicate_any", "Any");
      types->itemAtIndex(2).title = MCLocalizedString("predicate_none", "None");
    }
    if (auto* rest = dynamic_cast<MCPopUpModel*>(views.back().get()); rest && rest->numberOfItems() >= 1)
      rest->itemAtIndex(0).title = MCLocalizedString("predicate_of_the_following_are_true", "of the following are true");
  }
  rowTemplates_.push_back(compound);
}

template <typename Builder>
void MCPredicateEditorBuilder::add(Item item) {
  MCPredicateEditorRowTemplateRef made = Builder::templateForItem(item);
  if (shouldInsertSeparator_) {
    made->withPrependingSeparator();
    shouldInsertSeparator_ = false;
  }
  rowTemplates_.push_back(std::move(made));
}

void MCPredicateEditorBuilder::addTemplate(const std::string& keyPath, const std::string& name,
                                           const MCSections<MCPredicate::ExpressionConstant>& constants,
                                           const MCSections<MCPredicate::Operator>& ops) {
  addTemplate(MCSections<MCPredicate::ExpressionKeyPath>{{{keyPath, name}}}, constants, ops);
}

void MCPredicateEditorBuilder::addTemplate(const MCPredicate::ExpressionKeyPath& keyPath,
                                           const MCSections<MCPredicate::ExpressionConstant>& constants,
                                           const MCSections<MCPredicate::Operator>& ops) {
  addTemplate(MCSections<MCPredicate::ExpressionKeyPath>{{keyPath}}, constants, ops);
}

void MCPredicateEditorBuilder::addTemplate(const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                                           const MCSections<MCPredicate::ExpressionConstant>& constants,
                                           const MCSections<MCPredicate::Operator>& ops) {
  add<MCPredicateEditorRowGenericTemplateBuilder>(item(expressions(keyPaths), expressions(constants), operators(ops), defaultValue_));
}

void MCPredicateEditorBuilder::addTemplate(const MCValue& value, const std::string& name,
                                           const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                                           const MCSections<MCPredicate::Operator>& ops) {
  addTemplate(MCSections<MCPredicate::ExpressionConstant>{{{value, name}}}, keyPaths, ops);
}

void MCPredicateEditorBuilder::addTemplate(const MCPredicate::ExpressionConstant& constant,
                                           const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                                           const MCSections<MCPredicate::Operator>& ops) {
  addTemplate(MCSections<MCPredicate::ExpressionConstant>{{constant}}, keyPaths, ops);
}

void MCPredicateEditorBuilder::addTemplate(const MCSections<MCPredicate::ExpressionConstant>& constants,
                                           const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                                           const MCSections<MCPredicate::Operator>& ops) {
  add<MCPredicateEditorRowGenericTemplateBuilder>(item(expressions(constants), expressions(keyPaths), operators(ops), defaultValue_));
}

void MCPredicateEditorBuilder::addDatePickerTemplate(const MCPredicate::ExpressionKeyPath& keyPath) {
  add<MCPredicateEditorRowDatePickerTemplateBuilder>(
      item(expressions(MCSections<MCPredicate::ExpressionKeyPath>{{keyPath}}), attribute(MCPredicate::AttributeType::Date),
           {}, defaultValue_));
}

void MCPredicateEditorBuilder::addFileTypeTemplate(const MCSections<MCPredicate::ExpressionConstant>& types,
                                                   const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths) {
  const MCSections<MCPredicate::Operator> isOrIsNot = {{{int(Type::EqualTo), std::nullopt}, {int(Type::NotEqualTo), std::nullopt}}};
  add<MCPredicateEditorRowFileTypeTemplateBuilder>(item(expressions(keyPaths), expressions(types), operators(isOrIsNot), defaultValue_));
}

void MCPredicateEditorBuilder::addFileSizeTemplate(const MCPredicate::ExpressionKeyPath& keyPath,
                                                   const MCSections<MCPredicate::Operator>& ops) {
  add<MCPredicateEditorRowFileSizeTemplateBuilder>(item(expressions(MCSections<MCPredicate::ExpressionKeyPath>{{keyPath}}),
                                                        attribute(MCPredicate::AttributeType::Double), operators(ops),
                                                        defaultValue_));
}

void MCPredicateEditorBuilder::addNumberTemplate(const MCPredicate::ExpressionKeyPath& keyPath,
                                                 const MCSections<MCPredicate::Operator>& ops,
                                                 MCComparisonPredicateModifier modifier) {
  add<MCPredicateEditorRowNumberTemplateBuilder>(item(expressions(MCSections<MCPredicate::ExpressionKeyPath>{{keyPath}}),
                                                      attribute(MCPredicate::AttributeType::Double), operators(ops),
                                                      defaultValue_, modifier));
}

void MCPredicateEditorBuilder::addTimeDurationTemplate(const MCPredicate::ExpressionKeyPath& keyPath,
                                                       const MCSections<MCPredicate::Operator>& ops) {
  add<MCPredicateEditorRowTimeDurationTemplateBuilder>(item(expressions(MCSections<MCPredicate::ExpressionKeyPath>{{keyPath}}),
                                                            attribute(MCPredicate::AttributeType::Double), operators(ops),
                                                            defaultValue_));
}

void MCPredicateEditorBuilder::addTextFieldTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const std::string& hint,
                                                    unsigned options, bool listOfTexts) {
  std::vector<MCPredicate::Operator> ops = {
      {int(Type::Contains), std::nullopt}, {int(Type::BeginsWith), std::nullopt}, {int(Type::EndsWith), std::nullopt}};
  if (options & withIsEmptyOperators) {
    ops.push_back({int(Type::EqualTo), MCLocalizedString("predicate_operator_is_empty", "is empty")});
    ops.push_back({int(Type::NotEqualTo), MCLocalizedString("predicate_operator_is_not_empty", "is not empty")});
  }
  add<MCPredicateEditorRowTextFieldTemplateBuilder>(
      item(expressions(MCSections<MCPredicate::ExpressionKeyPath>{{keyPath}}),
           attribute(MCPredicate::AttributeType::String, hint), operators(MCSections<MCPredicate::Operator>{ops}),
           defaultValue_, listOfTexts ? MCComparisonPredicateModifier::Any : MCComparisonPredicateModifier::Direct,
           MCCaseInsensitivePredicateOption | MCDiacriticInsensitivePredicateOption));
}
