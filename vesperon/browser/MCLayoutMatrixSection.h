#pragma once
// MCLayoutMatrixSection: one section of a layout matrix, a plain value.
//
// The items length is the section's size, the one input. Everything else (the items location and
// the lines and cells ranges) is written by the matrix when it lays the section out. A section
// with no items is never laid out, so its ranges keep whatever they last held.

#include <vesperon/core/MCTypes.h>

#include <cstdint>

class MCLayoutMatrixSection {
 public:
  MCLayoutMatrixSection() = default;
  /// A section of `size` items; all ranges are zero apart from the items length.
  explicit MCLayoutMatrixSection(uint64_t size) : itemsRange_{0, size} {}

  /// Adds `count` to the items length. Saturates instead of wrapping around.
  void increaseBy(uint64_t count) {
    itemsRange_.length = count > UINT64_MAX - itemsRange_.length ? UINT64_MAX : itemsRange_.length + count;
  }
  /// Subtracts `count` from the items length. Stops at 0 instead of wrapping around.
  void decreaseBy(uint64_t count) { itemsRange_.length = count > itemsRange_.length ? 0 : itemsRange_.length - count; }

  /// How many items the section holds.
  uint64_t size() const { return itemsRange_.length; }

  /// The section's items.
  MCRange itemsRange() const { return itemsRange_; }
  /// Set by the matrix.
  void setItemsRange(MCRange range) { itemsRange_ = range; }
  /// The section's lines.
  MCRange linesRange() const { return linesRange_; }
  /// Set by the matrix.
  void setLinesRange(MCRange range) { linesRange_ = range; }
  /// The section's cells, gap cells included.
  MCRange cellsRange() const { return cellsRange_; }
  /// Set by the matrix.
  void setCellsRange(MCRange range) { cellsRange_ = range; }

  friend bool operator==(const MCLayoutMatrixSection&, const MCLayoutMatrixSection&) = default;

 private:
  MCRange itemsRange_;
  MCRange linesRange_;
  MCRange cellsRange_;
};
