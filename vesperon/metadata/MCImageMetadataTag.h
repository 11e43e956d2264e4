#pragma once
// MCImageMetadataTag: one XMP property read out of an MCImageMetadata, with its value: a text, an
// array of tags or a structure of tags. A tag is a snapshot; it does not change with its metadata.

#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

/// The form of a tag's value, numbered as the platform numbers them.
enum MCImageMetadataType : int {
  kMCImageMetadataTypeInvalid = -1,
  kMCImageMetadataTypeDefault = 0,
  kMCImageMetadataTypeString = 1,
  kMCImageMetadataTypeArrayUnordered = 2,
  kMCImageMetadataTypeArrayOrdered = 3,
  kMCImageMetadataTypeAlternateArray = 4,
  kMCImageMetadataTypeAlternateText = 5,
  kMCImageMetadataTypeStructure = 6,
};

class MCImageMetadataTag {
 public:
  /// A shared tag.
  using Ptr = std::shared_ptr<const MCImageMetadataTag>;
  /// Items of an array or alternative, in stored order.
  using Array = std::vector<Ptr>;
  /// Fields of a structure, by field name without prefix.
  using Structure = std::map<std::string, Ptr>;
  /// A tag's value: text, an array of tags or a structure of named tags.
  using Value = std::variant<std::string, Array, Structure>;

  /// A tag of `name` in the namespace, of `type`, holding `value`.
  MCImageMetadataTag(std::string namespaceURI, std::string prefix, std::string name, MCImageMetadataType type,
                     Value value, std::string language = {})
      : namespaceURI_(std::move(namespaceURI)),
        prefix_(std::move(prefix)),
        name_(std::move(name)),
        type_(type),
        value_(std::move(value)),
        language_(std::move(language)) {}

  /// The namespace's URI.
  const std::string& namespaceURI() const { return namespaceURI_; }
  /// The namespace's prefix ("exif").
  const std::string& prefix() const { return prefix_; }
  /// The local name; empty for array items.
  const std::string& name() const { return name_; }
  /// What kind of value the tag holds.
  MCImageMetadataType type() const { return type_; }
  /// A string for kMCImageMetadataTypeString, an Array for the array and alternative types, a
  /// Structure for kMCImageMetadataTypeStructure.
  const Value& value() const { return value_; }
  /// The xml:lang of an item of alternate text, or empty.
  const std::string& language() const { return language_; }

  /// The text; none for another kind.
  const std::string* stringValue() const { return std::get_if<std::string>(&value_); }
  /// The array; none for another kind.
  const Array* arrayValue() const { return std::get_if<Array>(&value_); }
  /// The structure; none for another kind.
  const Structure* structureValue() const { return std::get_if<Structure>(&value_); }

 private:
  std::string namespaceURI_;
  std::string prefix_;
  std::string name_;
  MCImageMetadataType type_;
  Value value_;
  std::string language_;
};
