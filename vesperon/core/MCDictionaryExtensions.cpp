#include <vesperon/core/MCDictionaryExtensions.h>

void mergeWithDictionary(MCDictionary& receiver, const MCDictionary& other, bool recursively,
                         const MCMergeResolver& resolving) {
  for (const auto& [key, theirs] : other) {
    auto it = receiver.find(key);
    if (it == receiver.end()) {
      receiver.emplace(key, theirs);
      continue;
    }
    MCValue& ours = it->second;
    if (recursively && ours.isDictionary() && theirs.isDictionary())
      mergeWithDictionary(*ours.dictionary(), *theirs.dictionary(), recursively, resolving);
    else
      ours = resolving(key, ours, theirs);
  }
}

MCDictionary merge(const MCDictionary& first, const MCDictionary& second, bool recursively,
                   const MCMergeResolver& resolving) {
  MCDictionary result = first;
  mergeWithDictionary(result, second, recursively, resolving);
  return result;
}

std::vector<MCValue> objectsForKeys(const MCDictionary& dictionary, const std::vector<std::string>& keys) {
  std::vector<MCValue> values;
  for (const auto& key : keys)
    if (auto it = dictionary.find(key); it != dictionary.end()) values.push_back(it->second);
  return values;
}

const MCValue* safeNumberForKey(const MCDictionary& dictionary, const std::string& key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value && value->isNumber() ? value : nullptr;
}

const std::string* safeStringForKey(const MCDictionary& dictionary, const std::string& key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value ? value->string() : nullptr;
}

const MCArray* safeArrayForKey(const MCDictionary& dictionary, const std::string& key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value ? value->array() : nullptr;
}

const MCDictionary* safeDictionaryForKey(const MCDictionary& dictionary, const std::string& key) {
  const MCValue* value = MCDictionaryGet(dictionary, key);
  return value ? value->dictionary() : nullptr;
}
