#pragma once
// MCXMPPropertyMap: the one table from image property keys (a sub-dictionary name and a key in it)
// to XMP properties, used both to find a property when reading and to set one when writing.
//
// Exif, TIFF and auxiliary keys follow Adobe's XMP standard for its additional properties (namespaces exif, exifEX, tiff,
// aux, and the TIFF fields that XMP keeps in dc and xmp). IPTC keys follow the IPTC Photo Metadata
// Standard's mapping of IIM fields to XMP (dc, photoshop, Iptc4xmpCore, xmpRights, xmp:Rating).
// The IIM's separate times live in the XMP date of their day: TimeCreated in photoshop:DateCreated
// beside DateCreated, DigitalCreationTime in xmp:CreateDate beside DigitalCreationDate (the form
// TimeOfDate). GPS references are not in the table either: XMP folds them into the coordinate text.
//
// IIM fields with no standard XMP home, which the IPTC's mapping leaves out and so does this table:
// ObjectTypeReference, EditStatus, EditorialUpdate, FixtureIdentifier, ContentLocationCode,
// ContentLocationName, ReleaseDate, ReleaseTime, ExpirationDate, ExpirationTime, ActionAdvised,
// ReferenceService, ReferenceDate, ReferenceNumber, OriginatingProgram, ProgramVersion, ObjectCycle,
// Contact, ImageType, ImageOrientation. The metadata reader never finds them in a sidecar (nothing
// there can hold them), and writing XMP passes them over: setValueMatchingImageProperty answers
// false for them and nothing is written, as for any key the table lacks.

#include <string>
#include <string_view>
#include <vector>

/// The XMP shape a property's value takes.
enum class MCXMPForm {
  Text,            ///< a simple value
  Date,            ///< a simple XMP date text
  OrderedArray,    ///< rdf:Seq of simple values
  UnorderedArray,  ///< rdf:Bag of simple values
  AlternateText,   ///< rdf:Alt of language-tagged texts
  Structure,       ///< fields in the property's namespace
  FlashStructure,  ///< exif:Flash, the fields Fired, Return, Mode, Function, RedEyeMode
  GPSCoordinate,   ///< "DDD,MM.mmk"
  Version,         ///< four digits, "0231"; arrays of version numbers are written this way
  TimeOfDate,      ///< the time of an XMP date whose day another key holds; IIM "HHMMSS±HHMM"
};

/// Where a property key lives in XMP.
struct MCXMPProperty {
  const char* dictionaryName;  ///< kCGImageProperty…Dictionary
  const char* propertyKey;     ///< the key inside it
  /// The XMP namespace.
  const char* namespaceURI;
  const char* prefix;          ///< the usual prefix of the namespace
  const char* name;            ///< the property's local name
  /// How the value is written (simple, array, structure …).
  MCXMPForm form;

  /// "prefix:name", the form CGImageMetadataCopyTagWithPath takes.
  std::string path() const { return std::string(prefix) + ":" + name; }
};

class MCXMPPropertyMap {
 public:
  /// Every entry, in table order.
  static const std::vector<MCXMPProperty>& all();
  /// The entry of a key, or nullptr.
  static const MCXMPProperty* find(std::string_view dictionaryName, std::string_view propertyKey);
  /// The first entry whose property has this "prefix:name" path, or nullptr. Several keys may share a
  /// property (TIFF Artist and IPTC Byline both live in dc:creator); the table order decides.
  static const MCXMPProperty* findPath(std::string_view path);

  /// The namespaces of the table, as (prefix, URI) pairs.
  static const std::vector<std::pair<const char*, const char*>>& namespaces();
};
