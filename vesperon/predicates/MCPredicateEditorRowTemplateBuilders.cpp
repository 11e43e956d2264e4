#include <vesperon/predicates/MCPredicateEditorRowTemplateBuilders.h>

#include <vesperon/predicates/MCPredicateEditorRowTemplateDate.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateFileSize.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateFlippedExpression.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateNumber.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateString.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplateTimeDuration.h>

#include <cstdio>
#include <cstdlib>

namespace {

using Item = MCPredicateEditorBuilder::Item;
using Entries = std::vector<MCPredicateEditorRowTemplate::Expression>;

[[noreturn]] void notSupported() {
  std::fprintf(stderr, "Not supported\n");
  std::abort();
}

MCPredicateEditorRowTemplate::AttributeType attributeTypeOf(const Item& item) {
  const auto* type = std::get_if<MCPredicate::ExpressionAttributeType>(&item.rightExpressionType);
  if (!type) notSupported();
  return {type->type, type->hint};
}

const Entries& rightEntriesOf(const Item& item) {
  const auto* entries = std::get_if<Entries>(&item.rightExpressionType);
  if (!entries) notSupported();
  return *entries;
}

template <typename Template>
MCPredicateEditorRowTemplateRef withAttributeType(const Item& item) {
  return std::make_shared<Template>(item.leftExpressions, item.operators, attributeTypeOf(item), item.modifier,
                                    item.options, item.defaultValue);
}

}  // namespace

MCPredicateEditorRowTemplateRef MCPredicateEditorRowGenericTemplateBuilder::templateForItem(const Item& item) {
  if (std::holds_alternative<Entries>(item.rightExpressionType))
    return std::make_shared<MCPredicateEditorRowTemplate>(item.leftExpressions, item.operators, rightEntriesOf(item),
                                                          item.modifier, item.options, item.defaultValue);
  return withAttributeType<MCPredicateEditorRowTemplate>(item);
}

MCPredicateEditorRowTemplateRef MCPredicateEditorRowTextFieldTemplateBuilder::templateForItem(const Item& item) {
  return withAttributeType<MCPredicateEditorRowTemplateString>(item);
}

MCPredicateEditorRowTemplateRef MCPredicateEditorRowDatePickerTemplateBuilder::templateForItem(const Item& item) {
  return withAttributeType<MCPredicateEditorRowTemplateDate>(item);
}

MCPredicateEditorRowTemplateRef MCPredicateEditorRowFileSizeTemplateBuilder::templateForItem(const Item& item) {
  return withAttributeType<MCPredicateEditorRowTemplateFileSize>(item);
}

MCPredicateEditorRowTemplateRef MCPredicateEditorRowFileTypeTemplateBuilder::templateForItem(const Item& item) {
  return std::make_shared<MCPredicateEditorRowTemplateFlippedExpression>(
      item.leftExpressions, item.operators, rightEntriesOf(item), item.modifier, item.options, item.defaultValue);
}

MCPredicateEditorRowTemplateRef MCPredicateEditorRowNumberTemplateBuilder::templateForItem(const Item& item) {
  return withAttributeType<MCPredicateEditorRowTemplateNumber>(item);
}

MCPredicateEditorRowTemplateRef MCPredicateEditorRowTimeDurationTemplateBuilder::templateForItem(const Item& item) {
  return withAttributeType<MCPredicateEditorRowTemplateTimeDuration>(item);
}
