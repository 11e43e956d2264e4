#pragma once
// The filter bar of `vesperon browse`: six rows made by MCPredicateEditorBuilder — name, camera
// model, capture date, file size, ISO and f-number — each on or off. The filter is the compound
// row's predicate (all, any or none of them) over the rows that are on; a row that is on but has
// unusable input is true.
// Files are judged by their property dictionaries, the ones `vesperon find` uses, which are read
// once per folder off the main thread.

#include <vesperon/predicates/MCPredicateEditorRowTemplate.h>

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

class MCCatalogue;

class BrowseFilter {
 public:
  struct Row {
    MCPredicateEditorRowTemplateRef row;
    bool enabled = false;
  };
  using Properties = std::unordered_map<std::string, MCDictionary>;

  BrowseFilter();

  std::vector<Row>& rows() { return rows_; }
  /// "All / Any / None of the following are true": how the rows that are on combine.
  const MCPredicateEditorRowTemplateRef& compoundRow() const { return compound_; }
  /// Turns every row off; their values stay for when they are turned on again.
  void clear() {
    for (Row& row : rows_) row.enabled = false;
  }
  /// The compound row's predicate over the rows that are on; none when no row is on.
  MCPredicateRef predicate();

  bool hasProperties() const { return properties_.has_value(); }
  void setProperties(Properties properties) { properties_ = std::move(properties); }
  void forgetProperties() { properties_.reset(); }
  /// Whether the file passes; a file whose properties were not read passes nothing.
  bool passes(const MCPredicateNode& predicate, const std::filesystem::path& file) const;

  /// The searchable properties of each file (keyed by its path), read until `stop` is requested:
  /// from the catalogue where it holds the file (as of its last scan), else read from the file.
  /// With `folder`, the folder all the files lie in, the catalogue is asked once for all of them.
  static Properties readProperties(const std::vector<std::filesystem::path>& files, std::stop_token stop = {},
                                   const MCCatalogue* catalogue = nullptr, const std::filesystem::path& folder = {});

 private:
  MCPredicateEditorRowTemplateRef compound_;
  std::vector<Row> rows_;
  std::optional<Properties> properties_;
};
