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
    std::vector<MCPredicateEditorRowTemplate::Expression> leftExpressions;
    /// A list of right entries, or the kind of value of an entry field.
    std::variant<std::vector<MCPredicateEditorRowTemplate::Expression>, MCPredicate::ExpressionAttributeType>
        rightExpressionType;
    std::vector<MCPredicateEditorRowTemplate::Operator> operators;
    MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct;
    unsigned options = 0;
    bool defaultValue = true;
  };

  explicit MCPredicateEditorBuilder(bool defaultValue);

  const std::vector<MCPredicateEditorRowTemplateRef>& rowTemplates() const { return rowTemplates_; }
  bool shouldInsertSeparator() const { return shouldInsertSeparator_; }
  bool defaultValue() const { return defaultValue_; }

  void addSeparator() { shouldInsertSeparator_ = true; }

  /// Generic rows: key paths against named constants.
  void addTemplate(const std::string& keyPath, const std::string& name,
                   const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::Operator>& operators);
  void addTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::Operator>& operators);
  void addTemplate(const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::Operator>& operators);
  /// The same with the constants on the left.
  void addTemplate(const MCValue& value, const std::string& name, const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::Operator>& operators);
  void addTemplate(const MCPredicate::ExpressionConstant& constant, const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::Operator>& operators);
  void addTemplate(const MCSections<MCPredicate::ExpressionConstant>& constants,
                   const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths,
                   const MCSections<MCPredicate::Operator>& operators);

  /// A date row with the relative operators.
  void addDatePickerTemplate(const MCPredicate::ExpressionKeyPath& keyPath);
  /// A flipped row, "is" and "is not": stored predicates hold the type constant on the left.
  void addFileTypeTemplate(const MCSections<MCPredicate::ExpressionConstant>& types,
                           const MCSections<MCPredicate::ExpressionKeyPath>& keyPaths);
  void addFileSizeTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const MCSections<MCPredicate::Operator>& operators);
  /// A number row; `modifier` Any for a key path that holds a list of numbers (ISO speeds).
  void addNumberTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const MCSections<MCPredicate::Operator>& operators,
                         MCComparisonPredicateModifier modifier = MCComparisonPredicateModifier::Direct);
  /// A text row: contains, begins with, ends with, and with withIsEmptyOperators "is empty" and
  /// "is not empty"; case and diacritics are ignored. Over a list of texts (`listOfTexts`) a row
  /// holds when any element does.
  void addTextFieldTemplate(const MCPredicate::ExpressionKeyPath& keyPath, const std::string& hint, unsigned options = 0,
                            bool listOfTexts = false);
  void addTimeDurationTemplate(const MCPredicate::ExpressionKeyPath& keyPath,
                               const MCSections<MCPredicate::Operator>& operators);

 private:
  template <typename Builder>
  void add(Item item);

  std::vector<MCPredicateEditorRowTemplateRef> rowTemplates_;
  bool shouldInsertSeparator_ = false;
  bool defaultValue_;
};
