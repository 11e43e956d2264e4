#pragma once
// The translation of a predicate into the WHERE clause of a query over the catalogue's files
// table, and the SQL functions that clause calls. Comparisons of a column's key path with a
// constant become SQL over the column: plain SQL where the column's type settles the answer (a
// number against a number, a capture date against a date), otherwise mc_compare, which applies
// the predicate's own comparison to the column's value. A comparison of another key path with a
// constant reads the value out of the stored JSON with json_extract where it is a number or a
// text, and applies mc_compare to it. Every other part becomes mc_part, which evaluates it over
// the row's stored dictionary. Each part gives 0 or 1, never NULL, so NOT, AND
// and OR combine them as the predicate does.

#include <vesperon/predicates/MCPredicateNode.h>

#include <filesystem>
#include <string>
#include <vector>

struct sqlite3;

namespace mc_detail {

/// A key path kept in a column: its SQL expression over the files table.
struct MCCatalogueColumn {
  const char* keyPath;
  const char* column;      ///< the column, as created
  const char* expression;  ///< what a comparison reads (usually the column)
  bool arrayElement;       ///< the value is a one-element array; the column holds its element
};
/// The key-path columns, in the order of the files table.
const std::vector<MCCatalogueColumn>& MCCatalogueColumns();

/// What a translated predicate's SQL functions need while its query runs.
struct MCCataloguePredicateContext {
  std::vector<MCPredicateRef> comparisons;  ///< mc_compare's, by index
  /// A BEGINSWITH, ENDSWITH or CONTAINS of plain ASCII, by mc_compare's index: over a text of
  /// plain ASCII its folding is lower-casing, so mc_compare compares bytes and leaves ICU alone.
  struct AsciiText {
    bool applies = false;
    MCPredicateOperatorType type = MCPredicateOperatorType::BeginsWith;
    bool caseless = false;
    std::string pattern;  ///< lower-cased when caseless
  };
  std::vector<AsciiText> asciiTexts;
  std::vector<MCPredicateRef> parts;        ///< mc_part's, by index (0: the whole predicate)
  std::string error;                        ///< the first evaluation error
  bool joinsProperties = false;             ///< the clause reads properties.json of each row
  /// Paths are stored absolute; "path" shows them under the folder as the caller named it.
  std::string storedFolder;
  std::string shownFolder;
  std::filesystem::path shownPath(const std::string& stored) const {
    if (storedFolder.empty() || stored.size() <= storedFolder.size() || stored.compare(0, storedFolder.size(), storedFolder) != 0 ||
        stored[storedFolder.size()] != '/')
      return stored;
    return std::filesystem::path(shownFolder) / stored.substr(storedFolder.size() + 1);
  }
  // The dictionary of the row last built, so that the parts of one row share it.
  int64_t rowID = -1;
  MCDictionary row;
};

/// The WHERE clause for `predicate`; `translated` false when some part reads the stored dictionary.
std::string MCCatalogueWhereClause(const MCPredicateNode& predicate, MCCataloguePredicateContext& context,
                                   bool& translated);

/// Registers mc_compare, mc_part and mc_mtime_text on `db` over `context`.
void MCCatalogueRegisterFunctions(sqlite3* db, MCCataloguePredicateContext* context);

/// The columns mc_part takes after the part's index: enough to make the searchable dictionary.
inline constexpr const char* kMCCatalogueRowArguments =
    "files.id, path, size, mtime_s, media_type, (SELECT json FROM properties WHERE properties.id = files.id)";

}  // namespace mc_detail
