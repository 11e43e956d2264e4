#pragma once
// Operations on strings (UTF-8) and on paths held as strings.
//
// The comparisons are nil-safe: std::nullopt is nil, sorts before any string and equals only nil.
// With options they compare as the platform's string comparison does, on ICU: canonically
// equivalent texts are equal unless MCLiteralSearch is given; MCCaseInsensitiveSearch folds case;
// MCDiacriticInsensitiveSearch drops accents; MCWidthInsensitiveSearch folds full- and half-width
// forms; MCNumericSearch compares runs of digits by their value ("file9" < "file10");
// MCForcedOrderingSearch breaks a tie of texts that differ with the literal order.

#include <vesperon/metadata/MCDate.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Options of compareString, with the platform's values.
enum MCStringCompareOptions : uint64_t {
  MCCaseInsensitiveSearch = 1,
  MCLiteralSearch = 2,
  MCNumericSearch = 64,
  MCDiacriticInsensitiveSearch = 128,
  MCWidthInsensitiveSearch = 256,
  MCForcedOrderingSearch = 512,
};

/// -1, 0 or 1, nil first; without options by code points.
int compareString(std::optional<std::string_view> a, std::optional<std::string_view> b);
/// The same with MCStringCompareOptions.
int compareString(std::optional<std::string_view> a, std::optional<std::string_view> b, uint64_t options);
/// Nil-safe equality: none equals only none.
bool isEqualString(std::optional<std::string_view> a, std::optional<std::string_view> b);
/// Equal when the comparison with `options` answers 0.
bool isEqualString(std::optional<std::string_view> a, std::optional<std::string_view> b, uint64_t options);

/// "year/month/day/fileName" of the date in the current calendar and time zone, without zero
/// padding: "2024/3/9/x.jpg".
std::string pathFromDate(MCDate date, const std::string& fileName);

/// The deepest folder that holds all the paths, compared without regard to case and spelled as the
/// smallest path (case-insensitively) spells it. None for no paths or no component in common; a
/// single path gives itself, file or folder.
std::optional<std::string> commonPathForPaths(const std::vector<std::string>& paths);

/// Whether `path` lies under `ancestor` by their texts (no file system access). A path is a
/// descendant of itself, and "/a" of "/a/"; "/a/bc" is not one of "/a/b". Empty texts never are.
bool isDescendantOfPath(std::string_view path, std::string_view ancestor);

/// The receiver relative to the folder that holds the source's last component: for
/// "/a/b/c/d.jpg" and "/a/b", "b/c/d.jpg". None when the receiver does not lie under the source.
std::optional<std::string> relativePathToSourcePath(const std::string& path, const std::string& sourcePath);

/// The platform's path components: a leading "/" is a component of its own, empty components are
/// dropped, and a trailing "/" is a last component: "/a/b/" gives "/", "a", "b", "/".
std::vector<std::string> pathComponents(std::string_view path);
/// The inverse of pathComponents, without the trailing "/".
std::string pathWithComponents(const std::vector<std::string>& components);
