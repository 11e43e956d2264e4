#pragma once
// MCPredicateEditorRowTemplate: one kind of line in a predicate editor — a left pop-up of what to
// test, an operator pop-up and a right side (a pop-up of values, an entry field or a date), or the
// compound line ("All / Any / None of the following are true"). The editor shows a copy of a
// template per row; the row's views are toolkit-neutral models (MCPopUpModel, MCTextFieldModel,
// MCDatePickerModel, MCDateRangeControl) that a host renders and writes the user's choices into.
//
// A template turns its views' state into a predicate (`predicateWithSubpredicates`), tells how
// well it shows a predicate (`matchForPredicate`, 0 to 1) and sets its views from one
// (`setPredicate`). Entries have titles, and lists of entries may hold separators, which stand
// between groups in the pop-ups.
//
// `defaultValue` is what a row with unusable input yields, as a constant predicate: with true (the
// default) such a row does not narrow a search in an AND compound. The subclasses read numbers
// with fractions, durations and sizes with a unit, relative dates, and predicates stored with the
// constant on the left. Templates are made by MCPredicateEditorBuilder and are not archived. They
// live on the main thread.

#include <vesperon/controls/MCControlModel.h>
#include <vesperon/controls/MCPopUpModel.h>
#include <vesperon/predicates/MCPredicate.h>
#include <vesperon/predicates/MCPredicateNode.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class MCPredicateEditorRowTemplate {
 public:
  /// A left or right entry: an expression with its title, or a separator.
  struct Expression {
    /// A separator instead of an entry.
    bool isSeparator = false;
    /// What the entry stands for.
    MCPredicateExpression expression;
    /// The entry's text.
    std::string title;
    /// An entry of `expression` titled `title`.
    static Expression entry(MCPredicateExpression expression, std::string title) {
      return {false, std::move(expression), std::move(title)};
    }
    /// A separator.
    static Expression separator() { return {true, {}, {}}; }
  };
  /// An operator entry: a platform operator number with its title, or a separator.
  struct Operator {
    /// A separator instead of an entry.
    bool isSeparator = false;
    /// The operator's number (MCPredicateOperatorType or the platform's).
    int type = 0;
    /// The entry's text.
    std::string title;
    /// An entry of operator `type` titled `title`.
    static Operator entry(int type, std::string title) { return {false, type, std::move(title)}; }
    /// A separator.
    static Operator separator() { return {true, 0, {}}; }
  };
  /// The kind of value of an entry field, and its placeholder.
  struct AttributeType {
    /// The kind of value.
    MCPredicate::AttributeType type = MCPredicate::AttributeType::String;
    /// The placeholder of the entry field.
    std::optional<std::string> hint;
  };

  /// A row with a pop-up of right expressions.
  MCPredicateEditorRowTemplate(const std::vector<Expression>& leftExpressions, const std::vector<Operator>& operators,
                               const std::vector<Expression>& rightExpressions, MCComparisonPredicateModifier modifier,
                               unsigned options, std::optional<bool> defaultValue = std::nullopt);
  /// A row with an entry for a value of `rightAttributeType` (a date picker for dates).
  MCPredicateEditorRowTemplate(const std::vector<Expression>& leftExpressions, const std::vector<Operator>& operators,
                               const AttributeType& rightAttributeType, MCComparisonPredicateModifier modifier,
                               unsigned options, std::optional<bool> defaultValue = std::nullopt);
  /// The compound row, with its types in the given order.
  explicit MCPredicateEditorRowTemplate(const std::vector<MCCompoundPredicate::Type>& compoundTypes);
  virtual ~MCPredicateEditorRowTemplate() = default;

  /// A copy for a new row: the same entries and defaultValue, with views of its own.
  virtual std::shared_ptr<MCPredicateEditorRowTemplate> copy() const;

  /// Lazily true: unset, it becomes true when first read.
  bool defaultValue();
  /// Sets what a row with unusable input yields.
  void setDefaultValue(bool value) { defaultValue_ = value; }

  /// Whether this is the compound row (All / Any / None).
  bool isCompound() const { return !compoundTypes_.empty(); }
  /// The expressions of the left pop-up.
  const std::vector<MCPredicateExpression>& leftExpressions() const { return leftExpressions_; }
  /// The expressions of the right pop-up; empty for an entry field.
  const std::vector<MCPredicateExpression>& rightExpressions() const { return rightExpressions_; }
  /// The operator numbers of the operator pop-up.
  const std::vector<int>& operators() const { return operators_; }
  /// The kind of value of the right entry field; none with a right pop-up.
  const std::optional<AttributeType>& rightExpressionAttributeType() const { return rightAttributeType_; }
  /// The compound types of the compound row; empty for other rows.
  const std::vector<MCCompoundPredicate::Type>& compoundTypes() const { return compoundTypes_; }
  /// The modifier of the comparisons the row makes.
  MCComparisonPredicateModifier modifier() const { return modifier_; }
  /// The string options of the comparisons the row makes.
  unsigned options() const { return options_; }

  /// The row's views by position: left pop-up, operator pop-up, right side, and on some
  /// subclasses a unit pop-up. The compound row has its type pop-up and a one-item pop-up.
  virtual std::vector<std::shared_ptr<MCControlModel>> templateViews();
  /// The predicate of the views' state; a compound row makes its type over `subpredicates`
  /// ("None" over several is NOT of their OR).
  virtual MCPredicateRef predicateWithSubpredicates(const std::vector<MCPredicateRef>& subpredicates);
  /// 1 when the template shows the predicate as it is, else 0.
  virtual double matchForPredicate(const MCPredicateNode& predicate) const;
  /// Sets the views to show the predicate.
  virtual void setPredicate(const MCPredicateNode& predicate);
  /// The subpredicates the editor shows as rows below: a compound's, for the compound row.
  std::vector<MCPredicateRef> displayableSubpredicatesOfPredicate(const MCPredicateNode& predicate) const;

  /// Puts a separator at the top of the left pop-up, so that it stands between this row's
  /// entries and those of the template above it when the editor merges the left menus.
  MCPredicateEditorRowTemplate& withPrependingSeparator();

 protected:
  /// Copies the entries and settings; the views are made anew (see copy).
  MCPredicateEditorRowTemplate(const MCPredicateEditorRowTemplate& other);

  /// The constant predicate of `defaultValue`.
  MCPredicateRef defaultValuePredicate() { return MCConstantValuePredicate::predicateWithValue(defaultValue()); }
  /// The base's views (without what subclasses add or replace).
  const std::vector<std::shared_ptr<MCControlModel>>& baseViews() const { return views_; }
  /// The selected left expression, when view 0 is a pop-up with one.
  std::optional<MCPredicateExpression> selectedLeftExpression() const;
  /// The selected operator number, when view 1 is a pop-up whose selected item holds one.
  std::optional<int> selectedOperator() const;

 private:
  void makeComparisonViews(const std::vector<Expression>& left, const std::vector<Operator>& operators);

  std::vector<MCPredicateExpression> leftExpressions_, rightExpressions_;
  std::vector<int> operators_;
  std::optional<AttributeType> rightAttributeType_;
  std::vector<MCCompoundPredicate::Type> compoundTypes_;
  MCComparisonPredicateModifier modifier_ = MCComparisonPredicateModifier::Direct;
  unsigned options_ = 0;
  std::optional<bool> defaultValue_;
  std::vector<std::shared_ptr<MCControlModel>> views_;
};

using MCPredicateEditorRowTemplateRef = std::shared_ptr<MCPredicateEditorRowTemplate>;
