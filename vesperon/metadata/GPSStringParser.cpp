#include <vesperon/metadata/GPSStringParser.h>

#include <cstdlib>
#include <cstring>
#include <locale.h>

namespace {

// A number, a "%d/%d" rational text, or a decimal text; none otherwise.
std::optional<double> numericValue(const MCValue& value) {
  if (value.isNumber()) return value.doubleValue();
  if (const std::string* text = value.string()) {
    if (auto rational = MCExifRational::createWithString(*text)) return rational->numberValue();
    return GPSStringParser::strictDecimal(*text);
  }
  return std::nullopt;
}

// "DDD,MM.mmk" where k is `positive` or `negative`.
std::optional<double> parseCoordinate(const std::string& text, char positive, char negative) {
  if (text.empty()) return std::nullopt;
  const char letter = text.back();
  if (letter != positive && letter != negative) return std::nullopt;
  const std::string rest = text.substr(0, text.size() - 1);

  // One split at the first comma; empty parts do not count.
  std::string parts[2];
  int count = 0;
  const auto comma = rest.find(',');
  const std::string pieces[2] = {rest.substr(0, comma), comma == std::string::npos ? std::string() : rest.substr(comma + 1)};
  for (const std::string& piece : pieces) {
    if (!piece.empty()) parts[count++] = piece;
  }
  if (count != 2) return std::nullopt;

  auto degrees = GPSStringParser::strictDecimal(parts[0]);
  auto minutes = GPSStringParser::strictDecimal(parts[1]);
  if (!degrees || !minutes) return std::nullopt;
  double result = *degrees + *minutes / 60.0;
  return letter == negative ? -result : result;
}

std::optional<double> parseSigned(const MCValue& value, const std::optional<std::string>& reference,
                                  const char* negativeReference, char positive, char negative) {
  if (value.isNone()) return std::nullopt;
  if (auto number = numericValue(value)) {
    return reference && *reference == negativeReference ? -*number : *number;
  }
  if (const std::string* text = value.string()) return parseCoordinate(*text, positive, negative);
  return std::nullopt;
}

}  // namespace

std::optional<double> GPSStringParser::strictDecimal(const std::string& text) {
  // strtod skips leading white space, which this reading must refuse; an empty text starts with NUL.
  if (text.empty() || std::strchr(" \t\n\v\f\r", text.front()) != nullptr || text.front() == '\0') {
    return std::nullopt;
  }
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(0));
  char* end = nullptr;
  const double value = strtod_l(text.c_str(), &end, cLocale);
  if (end == text.c_str() || end != text.c_str() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> GPSStringParser::parseAltitude(const MCValue& value,
                                                     const std::optional<std::string>& altitudeRef) const {
  auto number = numericValue(value);
  if (!number) return std::nullopt;
  return altitudeRef && *altitudeRef == "1" ? -*number : *number;
}

std::optional<double> GPSStringParser::parseLatitude(const MCValue& value,
                                                     const std::optional<std::string>& latitudeRef) const {
  return parseSigned(value, latitudeRef, "S", 'N', 'S');
}

std::optional<double> GPSStringParser::parseLongitude(const MCValue& value,
                                                      const std::optional<std::string>& longitudeRef) const {
  return parseSigned(value, longitudeRef, "W", 'E', 'W');
}

std::optional<double> GPSStringParser::parseXMPLongitude(const std::optional<std::string>& value) const {
  if (!value) return std::nullopt;
  return parseCoordinate(*value, 'E', 'W');
}
