#include <vesperon/browser/MCLayoutMatrix.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

uint64_t sizeFromSigned(int64_t size) { return size < 0 ? 0 : static_cast<uint64_t>(size); }

[[noreturn]] void throwOutOfRange(const char* operation, uint64_t index, uint64_t count) {
  throw std::out_of_range(fmt::format("*** {}: index {} is out of range [0..{}]", operation,
                                      static_cast<int64_t>(index), static_cast<int64_t>(count)));
}

// Adds with a flag instead of wrapping around.
bool addOverflows(uint64_t a, uint64_t b, uint64_t& sum) { return __builtin_add_overflow(a, b, &sum); }

// a[i] = aFirst + i and b[i] = bFirst + i for i < count, two entries per store: the layout is
// bound by stores, and the compiler does not vectorise a loop of unknown length at -O2.
void countUp(uint64_t* a, uint64_t aFirst, uint64_t* b, uint64_t bFirst, uint64_t count) {
  using Pair = uint64_t __attribute__((vector_size(16)));
  Pair va = {aFirst, aFirst + 1}, vb = {bFirst, bFirst + 1};
  const Pair two = {2, 2};
  uint64_t i = 0;
  for (; i + 2 <= count; i += 2) {
    std::memcpy(a + i, &va, sizeof va);
    std::memcpy(b + i, &vb, sizeof vb);
    va += two;
    vb += two;
  }
  for (; i < count; ++i) {
    a[i] = aFirst + i;
    b[i] = bFirst + i;
  }
}

}  // namespace

MCLayoutMatrix::MCLayoutMatrix(uint64_t lineLength) : lineLength_(lineLength) { sections_.reserve(16); }

void MCLayoutMatrix::setLineLength(uint64_t lineLength) {
  if (lineLength == lineLength_) return;
  lineLength_ = lineLength;
  layoutSections();
}

const MCLayoutMatrixSection& MCLayoutMatrix::sectionAt(uint64_t section, const char* operation) const {
  if (section >= sections_.size()) throwOutOfRange(operation, section, sections_.size());
  return sections_[section];
}

MCLayoutMatrixSection& MCLayoutMatrix::sectionAt(uint64_t section, const char* operation) {
  if (section >= sections_.size()) throwOutOfRange(operation, section, sections_.size());
  return sections_[section];
}

MCRange MCLayoutMatrix::cellsRangeOfSectionAtIndex(uint64_t section) const {
  return sectionAt(section, "MCLayoutMatrix::cellsRangeOfSectionAtIndex").cellsRange();
}

MCRange MCLayoutMatrix::linesRangeOfSectionAtIndex(uint64_t section) const {
  return sectionAt(section, "MCLayoutMatrix::linesRangeOfSectionAtIndex").linesRange();
}

MCRange MCLayoutMatrix::itemsRangeOfSectionAtIndex(uint64_t section) const {
  return sectionAt(section, "MCLayoutMatrix::itemsRangeOfSectionAtIndex").itemsRange();
}

void MCLayoutMatrix::endEditing() {
  if (editingCount_ == 0) return;
  if (--editingCount_ == 0) layoutSections();
}

void MCLayoutMatrix::addSectionWithSize(int64_t size) {
  beginEditing();
  sections_.emplace_back(sizeFromSigned(size));
  endEditing();
}

void MCLayoutMatrix::insertSectionAtIndex(uint64_t section, int64_t size) {
  if (section > sections_.size()) throwOutOfRange("MCLayoutMatrix::insertSectionAtIndex", section, sections_.size());
  beginEditing();
  sections_.emplace(sections_.begin() + static_cast<std::ptrdiff_t>(section), sizeFromSigned(size));
  endEditing();
}

void MCLayoutMatrix::removeSectionAtIndex(uint64_t section) {
  sectionAt(section, "MCLayoutMatrix::removeSectionAtIndex");
  beginEditing();
  sections_.erase(sections_.begin() + static_cast<std::ptrdiff_t>(section));
  endEditing();
}

void MCLayoutMatrix::increaseSection(uint64_t section, uint64_t by) {
  MCLayoutMatrixSection& s = sectionAt(section, "MCLayoutMatrix::increaseSection");
  beginEditing();
  s.increaseBy(by);
  endEditing();
}

void MCLayoutMatrix::decreaseSection(uint64_t section, uint64_t by) {
  MCLayoutMatrixSection& s = sectionAt(section, "MCLayoutMatrix::decreaseSection");
  beginEditing();
  s.decreaseBy(by);
  endEditing();
}

void MCLayoutMatrix::rebuild(const std::function<uint64_t(uint64_t, uint64_t)>& sizeOfSection) {
  const uint64_t oldCount = sections_.size();
  std::vector<MCLayoutMatrixSection> rebuilt;
  rebuilt.reserve(std::max<uint64_t>(oldCount, 16));
  for (uint64_t k = 0;; ++k) {
    uint64_t size = sizeOfSection(k, k < oldCount ? sections_[k].size() : 0);
    if (size == NSNotFound) break;
    rebuilt.emplace_back(size);
  }
  beginEditing();
  sections_ = std::move(rebuilt);
  endEditing();
}

void MCLayoutMatrix::removeAllSections() {
  numberOfItems_ = numberOfLines_ = numberOfCells_ = 0;
  lineToSection_.removeAllIndexes();
  itemToCell_.removeAllIndexes();
  cellToItem_.removeAllIndexes();
  sections_.clear();
}

MCIndexSet MCLayoutMatrix::itemIndexesForSectionIndexes(const MCIndexSet& sections) const {
  MCIndexSet items;
  for (const MCRange& run : sections.ranges())
    for (uint64_t s = run.location; s < run.end(); ++s)
      items.addIndexesInRange(itemsRangeOfSectionAtIndex(s));
  return items;
}

MCIndexSet MCLayoutMatrix::sectionIndexesForItemIndexes(const MCIndexSet& items) const {
  MCIndexSet sections;
  for (const MCRange& run : items.ranges()) {
    const uint64_t first = sectionIndexFromItemIndex(run.location);
    if (run.length >= 2) {
      const uint64_t last = sectionIndexFromItemIndex(run.location + run.length - 1);
      if (last > first) {
        sections.addIndexesInRange({first, last - first + 1});
        continue;
      }
    }
    sections.addIndex(first);
  }
  return sections;
}

void MCLayoutMatrix::layoutSections() {
  // Size the tables first, so that a grid too large for memory fails before anything changes and
  // the fill below never reallocates.
  uint64_t items = 0, lines = 0, cells = 0;
  if (lineLength_ > 0) {
    for (const MCLayoutMatrixSection& s : sections_) {
      const uint64_t n = s.size();
      if (n == 0) continue;
      const uint64_t sectionLines = n / lineLength_ + (n % lineLength_ != 0 ? 1 : 0);
      uint64_t sectionCells;
      if (__builtin_mul_overflow(sectionLines, lineLength_, &sectionCells) || addOverflows(items, n, items) ||
          addOverflows(lines, sectionLines, lines) || addOverflows(cells, sectionCells, cells) ||
          cells > (UINT64_MAX >> 4))
        throw std::length_error(fmt::format("*** MCLayoutMatrix::layoutSections: the grid of {} sections at line length {} "
                                            "has too many cells",
                                            sections_.size(), lineLength_));
    }
  }
  lineToSection_.reserve(lines);
  itemToCell_.reserve(items);
  cellToItem_.reserve(cells);

  numberOfItems_ = numberOfLines_ = numberOfCells_ = 0;
  lineToSection_.removeAllIndexes();
  itemToCell_.removeAllIndexes();
  cellToItem_.removeAllIndexes();
  if (lineLength_ == 0) return;  // no line can hold a cell
  for (uint64_t i = 0; i < sections_.size(); ++i) layoutSection(sections_[i], i);
}

void MCLayoutMatrix::layoutSection(MCLayoutMatrixSection& section, uint64_t index) {
  const uint64_t n = section.size();
  if (n == 0 || lineLength_ == 0) return;
  const uint64_t lines = n / lineLength_ + (n % lineLength_ != 0 ? 1 : 0);
  const uint64_t cells = lines * lineLength_;
  section.setItemsRange({numberOfItems_, n});
  section.setLinesRange({numberOfLines_, lines});
  section.setCellsRange({numberOfCells_, cells});
  lineToSection_.addIndex(index, lines);
  // One pass over the items fills both directions; the gap cells follow.
  uint64_t* cellOfItem = itemToCell_.growBy(n);
  uint64_t* itemOfCell = cellToItem_.growBy(cells);
  const uint64_t firstCell = numberOfCells_, firstItem = numberOfItems_;
  countUp(cellOfItem, firstCell, itemOfCell, firstItem, n);
  std::fill(itemOfCell + n, itemOfCell + cells, NSNotFound);
  numberOfCells_ += cells;
  numberOfLines_ += lines;
  numberOfItems_ += n;
}
