#pragma once
// MCPredicateDate: dates in predicates. A date is a text, as the property dictionaries hold
// them: Exif's "YYYY:MM:DD HH:MM:SS" (with optional fraction and offset) or ISO 8601
// ("YYYY-MM-DD", "YYYY-MM-DDTHH:MM[:SS[.fff]]" with optional "Z" or "±HH:MM"). A text without an
// offset is local time. Comparisons order two date texts by the instants they name, whatever
// their forms.

#include <optional>
#include <string>
#include <string_view>

class MCPredicateDate {
 public:
  /// Seconds since 1970 (UTC) named by a whole date text; none for any other text.
  static std::optional<double> instantOfText(std::string_view text);
  /// The ISO 8601 text of an instant in local time with its offset, to the second
  /// ("2026-11-24T00:00:00+01:00"), which instantOfText reads back.
  static std::string textOfInstant(double seconds);
};
