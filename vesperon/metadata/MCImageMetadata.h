#pragma once
// MCImageMetadata: a tree of XMP properties, parsed from a packet or built up and serialised again,
// on Exempi. Properties are found by image property key through MCXMPPropertyMap, or by path.
//
// An object is used by one thread at a time; different objects may be used on different threads.

#include <vesperon/core/MCValue.h>
#include <vesperon/metadata/MCImageMetadataTag.h>

#include <memory>
#include <optional>
#include <string>

class MCImageMetadata {
 public:
  /// Deeper XML than this is refused before parsing: real packets nest a few levels, and the XMP
  /// parser recurses once per level.
  static constexpr int kMaximumNestingDepth = 256;

  /// Parses an XMP packet (with or without its x:xmpmeta and xpacket wrappers). None for empty data,
  /// XML that is not well formed, XML without an rdf:RDF element, or nesting deeper than the limit.
  static std::shared_ptr<MCImageMetadata> createFromXMPData(const MCData& data);
  /// A new, empty object to set values in.
  static std::shared_ptr<MCImageMetadata> createMutable();

  ~MCImageMetadata();
  MCImageMetadata(const MCImageMetadata&) = delete;
  MCImageMetadata& operator=(const MCImageMetadata&) = delete;

  /// The property that `propertyName` of the sub-dictionary `dictionaryName` maps to, or null
  /// when the key has no XMP property or the property is absent.
  MCImageMetadataTag::Ptr copyTagMatchingImageProperty(const std::string& dictionaryName,
                                                       const std::string& propertyName) const;
  /// The property at a path such as "exif:FlashpixVersion" or "exif:Flash/exif:Mode", or null.
  /// The prefix must be one that the library knows (MCXMPPropertyMap::namespaces) or that the
  /// XMP toolkit registers itself.
  MCImageMetadataTag::Ptr copyTagWithPath(const std::string& path) const;

  /// Stores `value` in the XMP form of the property the key maps to, replacing what was there:
  /// arrays as rdf:Seq or rdf:Bag (a single value becomes one item), alternate text under
  /// "x-default", the flash number as the exif:Flash structure, dictionaries as structures, Exif
  /// dates as XMP dates, version arrays as "0231". False when the key has no property or the value
  /// has no XMP form.
  bool setValueMatchingImageProperty(const std::string& dictionaryName, const std::string& propertyName,
                                     const MCValue& value);

  /// The serialised packet, with its xpacket wrapper; none if serialising fails.
  std::optional<MCData> createXMPData() const;

 private:
  explicit MCImageMetadata(void* xmp) : xmp_(xmp) {}
  void* xmp_;  // XmpPtr, owned
};
