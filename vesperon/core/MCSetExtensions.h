#pragma once
// Operations on sets (std::set, std::unordered_set and their kin).

/// `filteredSetUsingBlock:`: the members for which `test(object, stop)` is true; setting `stop`
/// ends the walk after that member.
template <typename Set, typename Test>
Set filteredSetUsingBlock(const Set& set, Test&& test) {
  Set result;
  bool stop = false;
  for (const auto& object : set) {
    if (test(object, stop)) result.insert(object);
    if (stop) break;
  }
  return result;
}
