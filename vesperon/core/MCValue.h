#pragma once
// MCValue: one metadata value — none, boolean, integer, double, string, bytes, array, dictionary,
// Exif rational or Exif comment — and MCDictionary, an ordered map from string keys to values.
//
// The nested image property dictionary of the library is an MCDictionary whose sub-dictionary
// keys ("{Exif}", "{TIFF}", …) hold further dictionaries.

#include <vesperon/metadata/MCExifComment.h>
#include <vesperon/metadata/MCExifRational.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

class MCValue {
 public:
  /// Byte data.
  using Data = std::vector<uint8_t>;
  /// A list of values.
  using Array = std::vector<MCValue>;
  /// Values by key, ordered by key.
  using Dictionary = std::map<std::string, MCValue>;
  /// What a value holds: none or one of the kinds.
  using Storage = std::variant<std::monostate, bool, int64_t, double, std::string, Data, Array, Dictionary,
                               MCExifRational, MCExifComment>;

  MCValue() = default;
  /// @name Making values
  //@{
  /// A value of each kind: none, a boolean, an integer (any integral type), a double (or float), a
  /// string, byte data, an array, a dictionary, an Exif rational or an Exif comment.
  MCValue(std::nullptr_t) {}
  MCValue(bool v) : storage_(v) {}
  template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
  MCValue(T v) : storage_(static_cast<int64_t>(v)) {}
  MCValue(double v) : storage_(v) {}
  MCValue(float v) : storage_(static_cast<double>(v)) {}
  MCValue(const char* v) : storage_(std::string(v)) {}
  MCValue(std::string v) : storage_(std::move(v)) {}
  MCValue(Data v) : storage_(std::move(v)) {}
  MCValue(Array v) : storage_(std::move(v)) {}
  MCValue(Dictionary v) : storage_(std::move(v)) {}
  MCValue(MCExifRational v) : storage_(v) {}
  MCValue(MCExifComment v) : storage_(std::move(v)) {}
  //@}

  /// @name Kinds
  //@{
  /// Whether the value is of that kind (an integer is not a double, nor the reverse).
  bool isNone() const { return std::holds_alternative<std::monostate>(storage_); }
  bool isBool() const { return std::holds_alternative<bool>(storage_); }
  bool isInteger() const { return std::holds_alternative<int64_t>(storage_); }
  bool isDouble() const { return std::holds_alternative<double>(storage_); }
  //@}
  /// Booleans, integers and doubles are numbers, as on the platform.
  bool isNumber() const { return isBool() || isInteger() || isDouble(); }
  /// @name More kinds
  //@{
  /// Whether the value is of that kind.
  bool isString() const { return std::holds_alternative<std::string>(storage_); }
  bool isData() const { return std::holds_alternative<Data>(storage_); }
  bool isArray() const { return std::holds_alternative<Array>(storage_); }
  bool isDictionary() const { return std::holds_alternative<Dictionary>(storage_); }
  bool isRational() const { return std::holds_alternative<MCExifRational>(storage_); }
  bool isComment() const { return std::holds_alternative<MCExifComment>(storage_); }
  //@}

  /// Numbers (and rationals, by their signed value) as a double; none otherwise.
  std::optional<double> doubleValue() const;
  /// Numbers as an integer (doubles truncated toward zero, held to the 64-bit range, NaN as 0);
  /// none otherwise.
  std::optional<int64_t> integerValue() const;

  /// The held value of that kind, or nullptr.
  const std::string* string() const { return std::get_if<std::string>(&storage_); }
  /// @name Access by kind
  //@{
  /// The content when the value is of that kind; none otherwise.
  const Data* data() const { return std::get_if<Data>(&storage_); }
  const Array* array() const { return std::get_if<Array>(&storage_); }
  Array* array() { return std::get_if<Array>(&storage_); }
  const Dictionary* dictionary() const { return std::get_if<Dictionary>(&storage_); }
  Dictionary* dictionary() { return std::get_if<Dictionary>(&storage_); }
  const MCExifRational* rational() const { return std::get_if<MCExifRational>(&storage_); }
  const MCExifComment* comment() const { return std::get_if<MCExifComment>(&storage_); }
  //@}

  /// The variant itself, for std::visit.
  const Storage& storage() const { return storage_; }
  /// The variant itself, to change in place.
  Storage& storage() { return storage_; }

  /// Same kind and same content. An integer and a double of equal value are equal, as numbers are.
  friend bool operator==(const MCValue& a, const MCValue& b);

 private:
  Storage storage_;
};

using MCDictionary = MCValue::Dictionary;
using MCArray = MCValue::Array;
using MCData = MCValue::Data;

/// The value under `key`, or nullptr.
const MCValue* MCDictionaryGet(const MCDictionary& dictionary, const std::string& key);
/// The sub-dictionary under `key`, or nullptr when absent or not a dictionary.
const MCDictionary* MCDictionaryGetDictionary(const MCDictionary& dictionary, const std::string& key);
