#include <vesperon/core/MCStringExtensions.h>

#include <unicode/calendar.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace {

int sign(int v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }

// The text as it takes part in a comparison with `options`, as UTF-32 code points.
std::u32string comparisonForm(std::string_view text, uint64_t options) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString s = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), int32_t(text.size())));
  if (options & MCWidthInsensitiveSearch) {
    // Compatibility decomposition folds full- and half-width forms into their plain letters.
    const icu::Normalizer2* nfkd = icu::Normalizer2::getNFKDInstance(status);
    if (U_SUCCESS(status)) s = nfkd->normalize(s, status);
  } else if (!(options & MCLiteralSearch) || (options & MCDiacriticInsensitiveSearch)) {
    const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_SUCCESS(status)) s = nfd->normalize(s, status);
  }
  if (options & MCCaseInsensitiveSearch) s.foldCase(U_FOLD_CASE_DEFAULT);
  std::u32string out;
  out.reserve(size_t(s.length()));
  for (int32_t i = 0; i < s.length();) {
    UChar32 c = s.char32At(i);
    i += U16_LENGTH(c);
    if ((options & MCDiacriticInsensitiveSearch) && u_charType(c) == U_NON_SPACING_MARK) continue;
    out.push_back(char32_t(c));
  }
  return out;
}

bool isDigit(char32_t c) { return u_isdigit(UChar32(c)); }

// Code point order, with runs of digits compared by value when `numeric` is set.
int compareForms(const std::u32string& a, const std::u32string& b, bool numeric) {
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (numeric && isDigit(a[i]) && isDigit(b[j])) {
      size_t ei = i, ej = j;
      while (ei < a.size() && isDigit(a[ei])) ++ei;
      while (ej < b.size() && isDigit(b[ej])) ++ej;
      size_t si = i, sj = j;  // skip leading zeros
      while (si + 1 < ei && u_charDigitValue(UChar32(a[si])) == 0) ++si;
      while (sj + 1 < ej && u_charDigitValue(UChar32(b[sj])) == 0) ++sj;
      if (ei - si != ej - sj) return ei - si < ej - sj ? -1 : 1;
      for (; si < ei; ++si, ++sj) {
        int da = u_charDigitValue(UChar32(a[si])), db = u_charDigitValue(UChar32(b[sj]));
        if (da != db) return da < db ? -1 : 1;
      }
      i = ei;
      j = ej;
      continue;
    }
    if (a[i] != b[j]) return a[i] < b[j] ? -1 : 1;
    ++i;
    ++j;
  }
  if (i < a.size()) return 1;
  if (j < b.size()) return -1;
  return 0;
}

int compareUTF8CodePoints(std::string_view a, std::string_view b) {
  // UTF-8 byte order is code point order.
  return sign(a.compare(b));
}

bool equalIgnoringCase(const std::string& a, const std::string& b) {
  return compareString(a, b, MCCaseInsensitiveSearch) == 0;
}

}  // namespace

int compareString(std::optional<std::string_view> a, std::optional<std::string_view> b) {
  if (!a || !b) return a ? 1 : (b ? -1 : 0);
  return compareUTF8CodePoints(*a, *b);
}

int compareString(std::optional<std::string_view> a, std::optional<std::string_view> b, uint64_t options) {
  if (!a || !b) return a ? 1 : (b ? -1 : 0);
  if (a->data() == b->data() && a->size() == b->size()) return 0;
  int result = compareForms(comparisonForm(*a, options), comparisonForm(*b, options), options & MCNumericSearch);
  if (result == 0 && (options & MCForcedOrderingSearch)) result = compareUTF8CodePoints(*a, *b);
  return result;
}

bool isEqualString(std::optional<std::string_view> a, std::optional<std::string_view> b) {
  if (!a || !b) return !a && !b;
  return *a == *b;
}

bool isEqualString(std::optional<std::string_view> a, std::optional<std::string_view> b, uint64_t options) {
  if (!a || !b) return !a && !b;
  return compareString(a, b, options) == 0;
}

std::string pathFromDate(MCDate date, const std::string& fileName) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(status));
  if (U_FAILURE(status)) return fileName;
  UDate milliseconds = double(date.time_since_epoch().count()) / 1000.0;
  calendar->setTime(milliseconds, status);
  int32_t year = calendar->get(UCAL_YEAR, status);
  int32_t month = calendar->get(UCAL_MONTH, status) + 1;
  int32_t day = calendar->get(UCAL_DATE, status);
  return fmt::format("{}/{}/{}/{}", year, month, day, fileName);
}

std::vector<std::string> pathComponents(std::string_view path) {
  std::vector<std::string> components;
  if (path.empty()) return components;
  if (path.front() == '/') components.push_back("/");
  size_t i = 0;
  while (i < path.size()) {
    size_t slash = path.find('/', i);
    if (slash == std::string_view::npos) slash = path.size();
    if (slash > i) components.emplace_back(path.substr(i, slash - i));
    i = slash + 1;
  }
  if (path.size() > 1 && path.back() == '/') components.push_back("/");
  return components;
}

std::string pathWithComponents(const std::vector<std::string>& components) {
  std::string path;
  for (size_t i = 0; i < components.size(); ++i) {
    const std::string& c = components[i];
    if (c == "/") {
      if (i == 0) path.push_back('/');
      continue;
    }
    if (!path.empty() && path.back() != '/') path += '/';
    path += c;
  }
  return path;
}

std::optional<std::string> commonPathForPaths(const std::vector<std::string>& paths) {
  if (paths.empty()) return std::nullopt;
  if (paths.size() == 1) return paths.front();
  // A prefix shared by the two extremes is shared by every path between them.
  auto less = [](const std::string& a, const std::string& b) { return compareString(a, b, MCCaseInsensitiveSearch) < 0; };
  const std::string& smallest = *std::min_element(paths.begin(), paths.end(), less);
  const std::string& largest = *std::max_element(paths.begin(), paths.end(), less);
  auto first = pathComponents(smallest);
  auto last = pathComponents(largest);
  std::vector<std::string> common;
  for (size_t i = 0; i < first.size() && i < last.size() && equalIgnoringCase(first[i], last[i]); ++i)
    common.push_back(first[i]);
  if (common.empty()) return std::nullopt;
  return pathWithComponents(common);
}

bool isDescendantOfPath(std::string_view path, std::string_view ancestor) {
  if (path.empty() || ancestor.empty()) return false;
  if (path.size() == ancestor.size()) return path == ancestor;
  if (ancestor.size() < path.size()) {
    if (ancestor.back() != '/' && path[ancestor.size()] != '/') return false;
    return path.substr(0, ancestor.size()) == ancestor;
  }
  // The ancestor is longer: only by a trailing "/", so "/a" lies under "/a/".
  if (ancestor.size() != path.size() + 1 || ancestor.back() != '/') return false;
  return ancestor.substr(0, path.size()) == path;
}

std::optional<std::string> relativePathToSourcePath(const std::string& path, const std::string& sourcePath) {
  auto r = pathComponents(path);
  auto s = pathComponents(sourcePath);
  size_t ri = 0, si = 0;
  while (s.size() - si >= 2 && r.size() - ri >= 2 && s[si] == r[ri]) {
    ++si;
    ++ri;
  }
  if (s.size() - si == 1 && r.size() - ri >= 1 && s[si] == r[ri])
    return pathWithComponents(std::vector<std::string>(r.begin() + long(ri), r.end()));
  return std::nullopt;
}
