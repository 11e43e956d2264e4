#pragma once
// Operations on value dictionaries (MCDictionary): the key-by-key merge, ordered lookups of many
// keys, and typed reads that answer nothing for a value of another kind.

#include <vesperon/core/MCValue.h>

#include <functional>
#include <string>
#include <vector>

/// Chooses the value to keep for a key present on both sides: (key, first value, second value).
using MCMergeResolver = std::function<MCValue(const std::string& key, const MCValue& first, const MCValue& second)>;

/// `merge:with:recursively:resolving:`: the union of the keys. A key on one side keeps its value.
/// A key on both sides whose values are both dictionaries, with `recursively` set, merges them the
/// same way; any other key on both sides takes the resolver's answer.
MCDictionary merge(const MCDictionary& first, const MCDictionary& second, bool recursively,
                   const MCMergeResolver& resolving);

/// `mergeWithDictionary:recursively:resolving:`: the same merge in place; the receiver is the first
/// side and keeps its keys that the other lacks.
void mergeWithDictionary(MCDictionary& receiver, const MCDictionary& other, bool recursively,
                         const MCMergeResolver& resolving);

/// The values of the keys in the order given, without the misses.
std::vector<MCValue> objectsForKeys(const MCDictionary& dictionary, const std::vector<std::string>& keys);

/// The value under `key` when it is of that kind (booleans, integers and doubles are numbers);
/// otherwise nullptr.
const MCValue* safeNumberForKey(const MCDictionary& dictionary, const std::string& key);
/// The text under `key`; none when absent or not text.
const std::string* safeStringForKey(const MCDictionary& dictionary, const std::string& key);
/// The array under `key`; none when absent or not an array.
const MCArray* safeArrayForKey(const MCDictionary& dictionary, const std::string& key);
/// The dictionary under `key`; none when absent or not a dictionary.
const MCDictionary* safeDictionaryForKey(const MCDictionary& dictionary, const std::string& key);
