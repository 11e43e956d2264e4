#include "BrowseInfoPanel.h"

#include <vesperon/codecs/MCMovieProperties.h>
#include <vesperon/files/MCWorkspaceExtensions.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/platform/MCGraphicsContext.h>
#include <vesperon/toolkit/MCAttributedString.h>

#include <strings.h>

#include <cmath>
#include <cstdio>

namespace {

const MCValue* find(const MCDictionary& properties, const char* group, const char* key) {
  const MCDictionary* dictionary = &properties;
  if (group) {
    auto it = properties.find(group);
    if (it == properties.end() || !it->second.dictionary()) return nullptr;
    dictionary = it->second.dictionary();
  }
  auto it = dictionary->find(key);
  return it == dictionary->end() || it->second.isNone() ? nullptr : &it->second;
}

std::string text(const MCValue* value) {
  if (!value) return {};
  if (const std::string* s = value->string()) return *s;
  if (auto d = value->doubleValue()) {
    char out[32];
    std::snprintf(out, sizeof out, "%g", *d);
    return out;
  }
  if (const auto* array = value->array(); array && !array->empty()) return text(&array->front());
  return {};
}

std::optional<double> number(const MCValue* value) {
  if (!value) return std::nullopt;
  if (const auto* array = value->array(); array && !array->empty()) return array->front().doubleValue();
  return value->doubleValue();
}

std::string formatted(const char* format, double value) {
  char out[48];
  std::snprintf(out, sizeof out, format, value);
  return out;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> BrowseInfoRows(const MCDictionary& properties,
                                                                 const std::string& pixelSize) {
  std::vector<std::pair<std::string, std::string>> rows;
  auto add = [&](const char* label, std::string value) {
    if (!value.empty()) rows.emplace_back(label, std::move(value));
  };
  const std::string make = text(find(properties, kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFMake));
  std::string model = text(find(properties, kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFModel));
  // Most models begin with the make's first word already ("NIKON CORPORATION", "NIKON Z 6"; "Canon",
  // "Canon EOS R5"): say it once.
  const std::string brand = make.substr(0, make.find(' '));
  const bool named = !brand.empty() && model.size() >= brand.size() &&
                     strncasecmp(model.c_str(), brand.c_str(), brand.size()) == 0;
  add("Camera", make.empty() || named ? model : model.empty() ? make : make + " " + model);
  std::string lens = text(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifLensModel));
  if (lens.empty()) lens = text(find(properties, kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxLensModel));
  add("Lens", lens);
  if (auto t = number(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifExposureTime)); t && *t > 0)
    add("Exposure", *t < 1 ? formatted("1/%.0f s", 1 / *t) : formatted("%g s", *t));
  if (auto f = number(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifFNumber)); f && *f > 0)
    add("Aperture", formatted("f/%.1f", *f));
  if (auto iso = number(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifISOSpeedRatings)))
    add("ISO", formatted("%.0f", *iso));
  if (auto mm = number(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifFocalLength)); mm && *mm > 0)
    add("Focal length", formatted("%g mm", std::round(*mm * 10) / 10));
  if (auto flash = number(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifFlash)))
    add("Flash", (long(*flash) & 1) ? "fired" : "did not fire");
  std::string taken = text(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeOriginal));
  if (!taken.empty()) {
    // Exif writes "2024:03:20 14:05:09"; people read the date with dashes.
    if (taken.size() >= 10 && taken[4] == ':' && taken[7] == ':') taken[4] = taken[7] = '-';
    const std::string offset =
        text(find(properties, kCGImagePropertyExifDictionary, kCGImagePropertyExifOffsetTimeOriginal));
    add("Taken", offset.empty() ? taken : taken + " " + offset);
  }
  const auto latitude = number(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitude));
  const auto longitude = number(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLongitude));
  if (latitude && longitude && std::isfinite(*latitude) && std::isfinite(*longitude)) {
    std::string latRef = text(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitudeRef));
    std::string lonRef = text(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLongitudeRef));
    if (latRef.empty()) latRef = *latitude < 0 ? "S" : "N";
    if (lonRef.empty()) lonRef = *longitude < 0 ? "W" : "E";
    add("Position", formatted("%.5f° ", std::fabs(*latitude)) + latRef + formatted(", %.5f° ", std::fabs(*longitude)) +
                        lonRef);
  }
  add("Dimensions", pixelSize);
  add("Colour profile", text(find(properties, nullptr, kCGImagePropertyProfileName)));
  if (auto seconds = number(find(properties, kMCImagePropertyMovieDictionary, kMCImagePropertyMovieDuration));
      seconds && *seconds >= 0) {
    const long whole = std::lround(*seconds);
    char out[32];
    std::snprintf(out, sizeof out, "%ld:%02ld", whole / 60, whole % 60);
    add("Duration", out);
  }
  add("Codec", text(find(properties, kMCImagePropertyMovieDictionary, kMCImagePropertyMovieCodec)));
  return rows;
}

std::string BrowseGeoURI(const MCDictionary& properties) {
  const auto latitude = number(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitude));
  const auto longitude = number(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLongitude));
  if (!latitude || !longitude || !std::isfinite(*latitude) || !std::isfinite(*longitude) || std::fabs(*latitude) > 90 ||
      std::fabs(*longitude) > 180)
    return {};
  // Exif keeps the magnitude and the hemisphere apart; a signed value already says it.
  const std::string latRef = text(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitudeRef));
  const std::string lonRef = text(find(properties, kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLongitudeRef));
  const double lat = latRef == "S" ? -std::fabs(*latitude) : *latitude;
  const double lon = lonRef == "W" ? -std::fabs(*longitude) : *longitude;
  return formatted("geo:%.5f,", lat) + formatted("%.5f", lon);
}

void BrowseInfoPanel::setMapURI(std::string uri) {
  mapURI_ = std::move(uri);
  setNeedsDisplay(true);
}

void BrowseInfoPanel::mouseDown(const MCEvent& event) {
  const MCPoint point = convertPoint(event.locationInWindow(), nullptr);
  if (mapURI_.empty() || !MCPointInRect(point, mapLink_)) return MCView::mouseDown(event);
  if (openMap) openMap(mapURI_);
  else openURI(mapURI_);
}

void BrowseInfoPanel::setRows(std::vector<std::pair<std::string, std::string>> rows) {
  rows_ = std::move(rows);
  setNeedsDisplay(true);
}

void BrowseInfoPanel::drawRect(const MCRect& dirty) {
  MCGraphicsContext* context = MCGraphicsContext::currentContext();
  if (!context) return;
  MCColor::colorWithHex(0x1E1E1E).setFill(*context);
  context->fillRect(dirty);
  mapLink_ = MCZeroRect;
  // Labels in a lighter grey than the values, both above 4.5:1 on the panel.
  MCTextAttributes label, value;
  label.font = MCFont::systemFontOfSize(11);
  label.foregroundColor = MCColor::colorWithHex(0xB0B0B0);
  value.font = MCFont::systemFontOfSize(13);
  value.foregroundColor = MCColor::colorWithHex(0xF0F0F0);
  double y = 14;
  for (const auto& [name, text] : rows_) {
    const MCAttributedString caption(name, label), line(text, value);
    caption.drawAtPoint({14, y}, *context);
    y += caption.size().height + 1;
    line.drawAtPoint({14, y}, *context);
    y += line.size().height;
    if (name == "Position" && !mapURI_.empty()) {
      MCTextAttributes link = value;
      link.foregroundColor = MCColor::colorWithHex(0x8AB4F8);  // 8:1 on the panel
      const MCAttributedString show("Show on map", link);
      mapLink_ = MCMakeRect(14, y + 2, show.size().width, show.size().height);
      show.drawAtPoint(mapLink_.origin, *context);
      link.foregroundColor->setFill(*context);
      context->fillRect(MCMakeRect(14, MCMaxY(mapLink_), show.size().width, 1));  // underlined, as links are
      y += show.size().height + 2;
    }
    y += 10;
  }
}
