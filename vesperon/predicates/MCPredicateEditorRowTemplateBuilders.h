#pragma once
// The template builders: each turns an MCPredicateEditorBuilder::Item into one kind of row
// template. A builder that takes a list of right entries refuses an attribute type and the other
// way round, as a fatal failure ("Not supported"): the builder's add operations never do that.

#include <vesperon/predicates/MCPredicateEditorBuilder.h>

/// Any right side: the plain row template.
struct MCPredicateEditorRowGenericTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
/// Attribute type: MCPredicateEditorRowTemplateString.
struct MCPredicateEditorRowTextFieldTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
/// Attribute type: MCPredicateEditorRowTemplateDate.
struct MCPredicateEditorRowDatePickerTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
/// Attribute type: MCPredicateEditorRowTemplateFileSize.
struct MCPredicateEditorRowFileSizeTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
/// Right entries: MCPredicateEditorRowTemplateFlippedExpression.
struct MCPredicateEditorRowFileTypeTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
/// Attribute type: MCPredicateEditorRowTemplateNumber.
struct MCPredicateEditorRowNumberTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
/// Attribute type: MCPredicateEditorRowTemplateTimeDuration.
struct MCPredicateEditorRowTimeDurationTemplateBuilder {
  /// The row template of `item`.
  static MCPredicateEditorRowTemplateRef templateForItem(const MCPredicateEditorBuilder::Item& item);
};
