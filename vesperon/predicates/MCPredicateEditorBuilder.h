#pragma once
// MCPredicateEditorBuilder: the front of a predicate editor. A program calls one add operation per
// searchable attribute and reads the ready row templates from `rowTemplates`, which begin with the
// compound row ("All / Any / None of the following are true").
//
//   MCPredicateEditorBuilder builder(true);
//   builder.addTextFieldTemplate({"name", "Name"}, "a part of the name", withIsEmptyOperators);
//   builder.addSeparator();
//   builder.addNumberTemplate({"{Exif}.FNumber", "Aperture"}, {{int(MCPredicateOperatorType::LessThan)}});
//   builder.addDatePickerTemplate({"{Exif}.DateTimeOriginal", "Capture date"});
//
// Lists of entries come in sections, a list of lists; a separator stands between two sections in
// the row's pop-up. `addSeparator` puts a separator above the next template's entries in the
// editor's merged left menu. `defaultValue` is given to every template: what a row with unusable
// input yields.

#include <vesperon/predicates/MCPredicate.h>
#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <variant>
#include <vector>

template <typename T>
using MCSections = std::vector<std::vector<T>>;

/// Options of the add operations.
enum MCPredicateEditorBuilderBuilderOptions : unsigned {
  /// A text row also offers "is empty" and "is not empty".
  withIsEmptyOperators = 1,
};

class MCPredicateEditorBuilder {
 public:
  /// The description of one template.
  struct Item {
    /// The entries of the left pop-up.
    std::vector<MCPredicateEditorRowTemplate::Expression> leftExpressions;
    /// A list of right entries, or the kind of value of an entry field.
    std::variant<std::vector<MCPredicateEditorRowTemplate::Expression>, MCPredicate::ExpressionAttributeType>
        rightExpressionType;
    /// The entries of the operator pop-up.
    std::vector<MCPredicateEditorRowTemplate::Operator> operators;
    /// The modifier of the comparisons the row makes.
    MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct;
    /// The options of the add operation (MCPredicateEditorBuilderBuilderOptions).
    unsigned options = 0;
    /// What a row with unusable input yields.
    bool defaultValue = true;
  };

  /// A builder whose templates yield `defaultValue` for unusable input; the compound row comes first.
  explicit MCPredicateEditorBuilder(bool defaultValue);

  /// The templates made so far, the compound row first.
  const std::vector<MCPredicateEditorRowTemplateRef>& rowTemplates() const { return rowTemplates_; }
  /// Whether the next template's entries get a separator above them.
  bool shouldInsertSeparator() const { return shouldInsertSeparator_; }
  /// What the templates yield for unusable input.
  bool defaultValue() const { return defaultValue_; }

  /// Puts a separator above the next template's entries in the merged left menu.
  void addSeparator() { shouldInsertSeparator_ = true; }

  /// Generic rows: key paths against named constants.
  void addTemplate(const std::string& keyPath, const std::string& name,
                   const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::Operator>& operators);
  /// One named key path against named constants.
  void addTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::Operator>& operators);
  /// Several key paths (in sections) against named constants.
  void addTemplate(const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::Operator>& operators);
  /// The same with the constants on the left.
  void addTemplate(const MCValue& value, const std::string& name, const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::Operator>& operators);
  /// One named constant on the left against key paths.
  void addTemplate(const MCPredicate::ExpressionConstant& constant, const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::Operator>& operators);
  /// Several constants (in sections) on the left against key paths.
  void addTemplate(const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::Operator>& operators);

  /// A date row with the relative operators.
  void addDatePickerTemplate(const MCPredicate::ExpressionKeyPath& keyPath);
  /// A flipped row, "is" and "is not": stored predicates hold the type constant on the left.
  void addFileTypeTemplate(const MCSections<MCPredicate::ExpressionConstant>& types,
                           const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths);
  /// A file size row: a number with a unit pop-up of KB, MB and GB.
  void addFileSizeTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const MCSections<MCPredicate::Operator>& operators);
  /// A number row; `modifier` Any for a key path that holds a list of numbers (ISO speeds).
  void addNumberTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const MCSections<MCPredicate::Operator>& operators,
                         MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct);
  /// A text row: contains, begins with, ends with, and with withIsEmptyOperators "is empty" and
  /// "is not empty"; case and diacritics are ignored. Over a list of texts (`listOfTexts`) a row
  /// holds when any element does.
  void addTextFieldTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const std::string& hint, unsigned options = 0,
                            bool listOfTexts = false);
  /// A duration row: a number with a unit pop-up of seconds, minutes and hours.
  void addTimeDurationTemplate(const MCPredicate::ExpressionKeyPath& keyPath,
                               const MCSections<MCPredicate::Operator>& operators);

 private:
  template <typename Builder>
  void add(Item item);

  std::vector<MCPredicateEditorRowTemplateRef> rowTemplates_;
  bool shouldInsertSeparator_ = false;
  bool defaultValue_;
};
