#include <vesperon/predicates/MCPredicateEditorRowTemplateTimeDuration.h>

const std::vector<mc_detail::MCPredicateEditorUnit>& MCPredicateEditorRowTemplateTimeDuration::units() const {
  static const std::vector<mc_detail::MCPredicateEditorUnit> table = {
      {0, MCLocalizableKey{"predicate_unit_time_seconds", "seconds"}, 1},
      {1, MCLocalizableKey{"predicate_unit_time_minutes", "minutes"}, 60},
      {2, MCLocalizableKey{"predicate_unit_time_hours", "hours"}, 3600}};
  return table;
}
