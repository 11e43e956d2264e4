#pragma once
// MCLayoutMatrix: the index arithmetic of a sectioned grid. It knows nothing of pixels.
//
// The matrix holds an ordered list of sections, each with a number of items, folds each section
// into lines of `lineLength` cells, and converts between its four index spaces:
//
//   item     the dense position of an item across all sections, with no holes;
//   cell     a slot of the grid, counted line by line. Every section starts on a new line, so the
//            last line of a section may end in gap cells, which have no item;
//   line     a run of `lineLength` cells (a row in vertical layout, a column in horizontal layout);
//   section  the position of a section in the list (a group of the browser).
//
// With line length 4 and sections of 6 and 3 items: section 0 holds items 0–5 in lines 0–1 and
// cells 0–7 (cells 6 and 7 are gaps); section 1 holds items 6–8 in line 2 and cells 8–11 (cell 11
// is a gap). There are 9 items, 3 lines and 12 cells.
//
// A section with no items takes no line and no cell; layout passes it over without writing its
// ranges, and no line maps to it.
//
// Every conversion is one lookup in a flat table or one division, so it costs the same at any
// size. The tables are thrown away and rebuilt on every change (linear in the cells), so callers
// batch changes in an editing bracket or through rebuild(). Lookups past the end of a table throw
// MCIndexMap's std::out_of_range ("*** MCIndexMap::indexAtIndex: index %ld is out of range
// [0..%ld]"). Not thread-safe: the matrix belongs to the thread of its owner.

#include <vesperon/browser/MCLayoutMatrixSection.h>
#include <vesperon/core/MCIndexMap.h>
#include <vesperon/core/MCIndexSet.h>
#include <vesperon/core/MCTypes.h>

#include <cstdint>
#include <functional>
#include <vector>

class MCLayoutMatrix {
 public:
  /// An empty matrix with the given cells per line.
  explicit MCLayoutMatrix(uint64_t lineLength = 1);
  MCLayoutMatrix(const MCLayoutMatrix&) = delete;
  MCLayoutMatrix& operator=(const MCLayoutMatrix&) = delete;

  // --- Shape

  /// How many cells make a line (the columns of a vertical grid).
  uint64_t lineLength() const { return lineLength_; }
  /// Does nothing when the value is unchanged; otherwise stores it and lays out at once, even
  /// inside an open editing bracket. With a line length of 0 nothing can be laid out: the matrix
  /// then has no items, lines or cells until a line length of at least 1 is set.
  void setLineLength(uint64_t lineLength);

  /// How many sections there are.
  uint64_t numberOfSections() const { return sections_.size(); }
  /// How many items all sections hold.
  uint64_t numberOfItems() const { return numberOfItems_; }
  /// How many lines the items fill (each section starts a new line).
  uint64_t numberOfLines() const { return numberOfLines_; }
  /// How many cells the lines hold, gap cells at section ends included.
  uint64_t numberOfCells() const { return numberOfCells_; }

  /// The ranges of a section as of the last layout. A section index at or past the count throws
  /// std::out_of_range ("*** MCLayoutMatrix::cellsRangeOfSectionAtIndex: index %ld is out of range [0..%ld]").
  MCRange cellsRangeOfSectionAtIndex(uint64_t section) const;
  /// The lines of a section.
  MCRange linesRangeOfSectionAtIndex(uint64_t section) const;
  /// The items of a section.
  MCRange itemsRangeOfSectionAtIndex(uint64_t section) const;
  /// The sections, with their sizes and places.
  const std::vector<MCLayoutMatrixSection>& sections() const { return sections_; }

  // --- Editing
  //
  // Each mutator brackets itself; the outermost endEditing() lays out once. While a bracket is
  // open the tables and counters describe the sections as of the last layout. Sizes are signed;
  // a negative size counts as 0. A section index out of range throws std::out_of_range with the
  // operation's name before anything changes.

  /// Opens an editing bracket: the layout waits for the outermost endEditing.
  void beginEditing() { ++editingCount_; }
  /// Ignored without a matching beginEditing().
  void endEditing();
  /// How many brackets are open.
  uint64_t editingDepth() const { return editingCount_; }

  /// Appends a section of `size` items.
  void addSectionWithSize(int64_t size);
  /// `section` may equal the count, which appends.
  void insertSectionAtIndex(uint64_t section, int64_t size);
  /// Removes a section.
  void removeSectionAtIndex(uint64_t section);
  /// Adds `by` items at the end of a section.
  void increaseSection(uint64_t section, uint64_t by);
  /// Stops at 0 rather than wrapping around.
  void decreaseSection(uint64_t section, uint64_t by);

  /// Replaces every section at once. `sizeOfSection(index, currentSize)` is called for index 0, 1,
  /// 2, … with the size that section had (0 beyond the old count) and returns its new size, or
  /// NSNotFound to end the list. The old sections stay as they were while it runs; one layout follows.
  void rebuild(const std::function<uint64_t(uint64_t section, uint64_t currentSize)>& sizeOfSection);

  /// Drops every section and empties the tables at once, without a layout; the editing depth stays.
  void removeAllSections();

  // --- Conversions

  /// cell / lineLength; 0 while the line length is 0. No range check.
  uint64_t lineIndexFromCellIndex(uint64_t cell) const { return lineLength_ == 0 ? 0 : cell / lineLength_; }
  /// @name Index conversions
  //@{
  /// Conversions between the index spaces (item, cell, line, section); NSNotFound for an index out
  /// of range.
  uint64_t lineIndexFromItemIndex(uint64_t item) const { return lineIndexFromCellIndex(cellIndexFromItemIndex(item)); }
  uint64_t cellIndexFromItemIndex(uint64_t item) const { return itemToCell_.indexAtIndex(item); }
  /// NSNotFound for a gap cell.
  uint64_t itemIndexFromCellIndex(uint64_t cell) const { return cellToItem_.indexAtIndex(cell); }
  uint64_t sectionIndexFromLineIndex(uint64_t line) const { return lineToSection_.indexAtIndex(line); }
  uint64_t sectionIndexFromCellIndex(uint64_t cell) const { return sectionIndexFromLineIndex(lineIndexFromCellIndex(cell)); }
  uint64_t sectionIndexFromItemIndex(uint64_t item) const { return sectionIndexFromCellIndex(cellIndexFromItemIndex(item)); }
  //@}

  /// The union of the items ranges of the given sections (each must exist).
  MCIndexSet itemIndexesForSectionIndexes(const MCIndexSet& sections) const;
  /// The sections that the given items lie in, worked out run by run: a run that starts in section
  /// a and ends in section b adds every section from a to b.
  MCIndexSet sectionIndexesForItemIndexes(const MCIndexSet& items) const;

  /// The raw tables, for callers that walk many entries.
  const MCIndexMap& lineToSectionMap() const { return lineToSection_; }
  /// The map from item to cell indexes.
  const MCIndexMap& itemToCellMap() const { return itemToCell_; }
  /// The map from cell to item indexes (gap cells have none).
  const MCIndexMap& cellToItemMap() const { return cellToItem_; }

  // --- Layout steps

  /// Empties the three tables and lays out every section in order. Throws std::length_error, with
  /// the tables untouched, when the cells would not fit in memory.
  void layoutSections();
  /// Lays out one section after the ones already laid out; a section of no items is passed over.
  void layoutSection(MCLayoutMatrixSection& section, uint64_t index);

 private:
  const MCLayoutMatrixSection& sectionAt(uint64_t section, const char* operation) const;
  MCLayoutMatrixSection& sectionAt(uint64_t section, const char* operation);

  uint64_t editingCount_ = 0;
  MCIndexMap lineToSection_;
  MCIndexMap itemToCell_;
  MCIndexMap cellToItem_;
  std::vector<MCLayoutMatrixSection> sections_;
  uint64_t lineLength_ = 1;
  uint64_t numberOfItems_ = 0;
  uint64_t numberOfLines_ = 0;
  uint64_t numberOfCells_ = 0;
};
