// Any text as a GPS value and reference: each parse gives a number or none, never a crash, and a
// number it gives is finite unless the text spelled out an infinity or NaN.

#include <vesperon/metadata/GPSStringParser.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  // The first line is the value, the rest the reference.
  const auto newline = text.find('\n');
  const std::string value = text.substr(0, newline);
  const std::optional<std::string> reference =
      newline == std::string::npos ? std::nullopt : std::optional<std::string>(text.substr(newline + 1));
  GPSStringParser parser;
  parser.parseLatitude(value, reference);
  parser.parseLongitude(value, reference);
  parser.parseAltitude(value, reference);
  parser.parseXMPLongitude(value);
  GPSStringParser::strictDecimal(text);
  return 0;
}
