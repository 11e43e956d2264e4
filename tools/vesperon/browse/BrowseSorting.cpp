#include "BrowseSorting.h"

#include <algorithm>
#include <map>
#include <numeric>

const char* BrowseSortOrder::nameOfKey(BrowseSortKey key) {
  switch (key) {
    case BrowseSortKey::Date: return "date";
    case BrowseSortKey::Name: return "name";
    case BrowseSortKey::Modified: return "modified";
    case BrowseSortKey::Size: return "size";
  }
  return "date";
}

std::optional<BrowseSortKey> BrowseSortOrder::keyNamed(const std::string& name) {
  for (BrowseSortKey key : {BrowseSortKey::Date, BrowseSortKey::Name, BrowseSortKey::Modified, BrowseSortKey::Size})
    if (name == nameOfKey(key)) return key;
  return std::nullopt;
}

std::string BrowseSortOrder::title() const {
  switch (key) {
    case BrowseSortKey::Date: return reversed ? "Capture date, oldest first" : "Capture date, newest first";
    case BrowseSortKey::Name: return reversed ? "Name, Z to A" : "Name, A to Z";
    case BrowseSortKey::Modified: return reversed ? "Modified, oldest first" : "Modified, newest first";
    case BrowseSortKey::Size: return reversed ? "Size, smallest first" : "Size, largest first";
  }
  return "";
}

std::vector<BrowseSortedGroup> BrowseArrange(const std::vector<BrowseFileFacts>& facts, const BrowseSortOrder& order) {
  std::vector<std::size_t> byName(facts.size());
  std::iota(byName.begin(), byName.end(), 0);
  std::stable_sort(byName.begin(), byName.end(), [&](std::size_t a, std::size_t b) { return facts[a].file.native() < facts[b].file.native(); });
  std::vector<BrowseSortedGroup> groups;
  if (order.key == BrowseSortKey::Date) {
    // Newest day first; an unknown day after every known one, whichever way.
    std::map<std::string, std::vector<std::size_t>> byDay;
    std::vector<std::size_t> pending;
    for (std::size_t i : byName) {
      if (facts[i].dayPending) pending.push_back(i);
      else byDay[facts[i].captureDay].push_back(i);
    }
    for (auto& [day, members] : byDay) {
      if (order.reversed) std::reverse(members.begin(), members.end());
      groups.push_back({day.empty() ? "unknown day" : day, std::move(members)});
    }
    const bool hasUnknown = !groups.empty() && byDay.begin()->first.empty();
    auto known = groups.begin() + (hasUnknown ? 1 : 0);
    if (!order.reversed) std::reverse(known, groups.end());
    if (hasUnknown) std::rotate(groups.begin(), groups.begin() + 1, groups.end());
    if (!pending.empty()) groups.push_back({kPendingDayTitle, std::move(pending)});
    return groups;
  }
  // Name ascends by default; modification date and size come largest first.
  std::vector<std::size_t> members = byName;
  if (order.key == BrowseSortKey::Modified)
    std::stable_sort(members.begin(), members.end(), [&](std::size_t a, std::size_t b) { return facts[a].modified > facts[b].modified; });
  else if (order.key == BrowseSortKey::Size)
    std::stable_sort(members.begin(), members.end(), [&](std::size_t a, std::size_t b) { return facts[a].size > facts[b].size; });
  if (order.reversed) std::reverse(members.begin(), members.end());
  if (!members.empty()) groups.push_back({order.title(), std::move(members)});
  return groups;
}
