#pragma once
// The error a catalogue throws.

#include <stdexcept>

/// Thrown by queries whose predicate cannot be answered within its bounds (see
/// MCPredicateEvaluationError), and by operations on a catalogue that cannot do them (a scan into
/// a read-only one, a storage that fails).
class MCCatalogueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
