#include <vesperon/predicates/MCPredicateEditorRowTemplateFileSize.h>

const std::vector<mc_detail::MCPredicateEditorUnit>& MCPredicateEditorRowTemplateFileSize::units() const {
  static const std::vector<mc_detail::MCPredicateEditorUnit> table = {
      {0, MCLocalizableKey{"predicate_file_size_unit_kb", "KB"}, 1e3},
      {1, MCLocalizableKey{"predicate_file_size_unit_mb", "MB"}, 1e6},
      {2, MCLocalizableKey{"predicate_file_size_unit_gb", "GB"}, 1e9}};
  return table;
}
