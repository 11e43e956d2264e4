#include <vesperon/metadata/MCCGImageMetadataPropertyReader.h>

#include <vesperon/metadata/MCDateExtensions.h>
#include <vesperon/metadata/MCExifUtils.h>
#include <vesperon/metadata/MCImagePropertyKeys.h>
#include <vesperon/metadata/MCXMPPropertyMap.h>

#include <cctype>
#include <cstdio>

MCCGImageMetadataPropertyReader MCCGImageMetadataPropertyReader::exifWithName(std::string name, int64_t type) {
  return {kCGImagePropertyExifDictionary, std::move(name), type};
}
MCCGImageMetadataPropertyReader MCCGImageMetadataPropertyReader::iptcWithName(std::string name, int64_t type) {
  return {kCGImagePropertyIPTCDictionary, std::move(name), type};
}
MCCGImageMetadataPropertyReader MCCGImageMetadataPropertyReader::gpsWithName(std::string name, int64_t type) {
  return {kCGImagePropertyGPSDictionary, std::move(name), type};
}
MCCGImageMetadataPropertyReader MCCGImageMetadataPropertyReader::tiffWithName(std::string name, int64_t type) {
  return {kCGImagePropertyTIFFDictionary, std::move(name), type};
}
MCCGImageMetadataPropertyReader MCCGImageMetadataPropertyReader::exifAuxWithName(std::string name, int64_t type) {
  return {kCGImagePropertyExifAuxDictionary, std::move(name), type};
}

namespace {

MCValue readString(const std::string& text, int64_t elementType) {
  switch (elementType) {
    case MCCGImageMetadataPropertyReader::kElementTypeString:
      return text;
    case MCCGImageMetadataPropertyReader::kElementTypeInteger: {
      // "%lld" alone: "True" is no integer here (exif:MeteringMode = "True" gives none); the
      // flash structure reads its boolean members itself (see readValueFromMetadata).
      long long value = 0;
      if (std::sscanf(text.c_str(), "%lld", &value) != 1) return {};
      return int64_t(value);
    }
    case MCCGImageMetadataPropertyReader::kElementTypeReal: {
      if (auto rational = MCExifRational::createWithString(text)) return rational->numberValue();
      double value = 0;
      if (std::sscanf(text.c_str(), "%lf", &value) != 1) return {};
      return value;
    }
    case MCCGImageMetadataPropertyReader::kElementTypeDate: {
      if (dateFromExifString(text)) return text;
      if (auto date = dateFromXmpString(text)) return exifString(*date);
      return {};
    }
    default:
      return {};
  }
}

// The time of an XMP date ("2021-06-01T12:34:56+02:00") as IIM writes a time, "123456+0200"; none
// for a date without a time.
MCValue iimTimeOfXMPDate(const std::string& date) {
  const auto t = date.find('T');
  if (t == std::string::npos) return {};
  std::string digits, zone;
  std::size_t at = t + 1;
  for (; at < date.size() && (std::isdigit(static_cast<unsigned char>(date[at])) || date[at] == ':'); ++at)
    if (date[at] != ':') digits += date[at];
  if (at < date.size() && date[at] == '.')  // fractions of a second have no place in IIM
    while (++at < date.size() && std::isdigit(static_cast<unsigned char>(date[at]))) {}
  if (digits.size() == 4) digits += "00";  // XMP allows a time without seconds
  if (digits.size() != 6) return {};
  if (at < date.size()) {
    if (date[at] == 'Z') zone = "+0000";
    else if (date[at] == '+' || date[at] == '-') {
      zone = date[at];
      for (std::size_t i = at + 1; i < date.size(); ++i)
        if (date[i] != ':') zone += date[i];
      if (zone.size() != 5) return {};
    } else {
      return {};
    }
  }
  return digits + zone;
}

// The tags whose key the table maps to a property a writer may have spelled otherwise.
const char* secondPath(const std::string& propertyName) {
  if (propertyName == kCGImagePropertyExifFlashPixVersion) return "exif:FlashpixVersion";
  if (propertyName == kCGImagePropertyExifFocalLenIn35mmFilm) return "exif:FocalLengthIn35mmFilm";
  if (propertyName == kCGImagePropertyExifSubjectDistRange) return "exif:SubjectDistanceRange";
  return nullptr;
}

}  // namespace

MCValue MCCGImageMetadataPropertyReader::readValueFromTag(const MCImageMetadataTag& tag, int64_t elementType) const {
  switch (tag.type()) {
    case kMCImageMetadataTypeString:
      return tag.stringValue() ? readString(*tag.stringValue(), elementType) : MCValue();
    case kMCImageMetadataTypeArrayUnordered:
    case kMCImageMetadataTypeArrayOrdered: {
      MCArray values;
      if (const auto* items = tag.arrayValue()) {
        for (const auto& item : *items) {
          MCValue value = readValueFromTag(*item, elementType);
          if (!value.isNone()) values.push_back(std::move(value));
        }
      }
      return values;
    }
    case kMCImageMetadataTypeAlternateArray:
    case kMCImageMetadataTypeAlternateText:
      if (const auto* items = tag.arrayValue()) {
        for (const auto& item : *items) {
          MCValue value = readValueFromTag(*item, elementType);
          if (!value.isNone()) return value;
        }
      }
      return {};
    case kMCImageMetadataTypeStructure: {
      MCDictionary fields;
      if (const auto* members = tag.structureValue()) {
        for (const auto& [name, member] : *members) {
          MCValue value = readValueFromTag(*member, elementType);
          if (!value.isNone()) fields.emplace(name, std::move(value));
        }
      }
      return fields;
    }
    default:
      return {};
  }
}

MCValue MCCGImageMetadataPropertyReader::readValueFromMetadata(const MCImageMetadata& metadata) const {
  MCImageMetadataTag::Ptr tag = metadata.copyTagMatchingImageProperty(dictionaryName_, propertyName_);
  if (!tag) {
    const char* path = secondPath(propertyName_);
    if (path) tag = metadata.copyTagWithPath(path);
    if (!tag) return {};
  }
  if (propertyName_ == kCGImagePropertyExifFlash && tag->type() == kMCImageMetadataTypeStructure) {
    // The flash structure's members are booleans ("True", "False") and integers: read as text,
    // each by its own kind.
    MCDictionary members;
    const MCValue texts = readValueFromTag(*tag, kElementTypeString);
    if (const MCDictionary* fields = texts.dictionary()) {
      for (const auto& [name, field] : *fields) {
        const std::string* text = field.string();
        if (!text) continue;
        long long number = 0;
        if (*text == "True" || *text == "False") members.emplace(name, MCValue(*text == "True"));
        else if (std::sscanf(text->c_str(), "%lld", &number) == 1) members.emplace(name, MCValue(int64_t(number)));
      }
    }
    return exifFlashValueFromXMPFlashStruct(MCValue(std::move(members)));
  }
  MCValue value = readValueFromTag(*tag, type_);

  if (const MCXMPProperty* entry = MCXMPPropertyMap::find(dictionaryName_, propertyName_);
      entry && entry->form == MCXMPForm::TimeOfDate) {
    const std::string* date = value.string();
    return date ? iimTimeOfXMPDate(*date) : MCValue();
  }
  if (propertyName_ == kCGImagePropertyExifFlash) {
    if (value.isDictionary()) return exifFlashValueFromXMPFlashStruct(value);
  } else if (propertyName_ == kCGImagePropertyExifVersion || propertyName_ == kCGImagePropertyExifFlashPixVersion) {
    const std::string* text = value.string();
    if (!text) return {};
    const auto* bytes = reinterpret_cast<const uint8_t*>(text->data());
    auto parts = propertyName_ == kCGImagePropertyExifVersion ? MCExifUtils::arrayFromExifVersionData(bytes, text->size())
                                                              : MCExifUtils::arrayFromFlashPixVersionData(bytes, text->size());
    return parts ? MCValue(std::move(*parts)) : MCValue();
  } else if (propertyName_ == kCGImagePropertyExifISOSpeedRatings) {
    if (const MCArray* items = value.array()) {
      MCArray numbers;
      for (const MCValue& item : *items) {
        if (item.isNumber()) numbers.push_back(item);
      }
      return numbers.empty() ? MCValue() : MCValue(std::move(numbers));
    }
    if (value.isNumber()) return MCArray{value};
    return {};
  }
  return value;
}

int64_t MCCGImageMetadataPropertyReader::exifFlashValueFromXMPFlashStruct(const MCValue& flash) {
  const MCDictionary* members = flash.dictionary();
  if (!members) return 0;
  auto integer = [&](const char* name) -> int64_t {
    const MCValue* member = MCDictionaryGet(*members, name);
    return member && member->isNumber() ? member->integerValue().value_or(0) : 0;
  };
  auto flag = [&](const char* name) {
    const MCValue* member = MCDictionaryGet(*members, name);
    return member && member->isNumber() && member->doubleValue().value_or(0) != 0;
  };
  int64_t value = 0;
  if (flag("Fired")) value |= 0x01;
  switch (integer("Return")) {
    case 2: value |= 0x04; break;
    case 3: value |= 0x06; break;
  }
  switch (integer("Mode")) {
    case 1: value |= 0x08; break;
    case 2: value |= 0x10; break;
    case 3: value |= 0x18; break;
  }
  if (flag("Function")) value |= 0x20;
  if (flag("RedEyeMode")) value |= 0x40;
  return value;
}
