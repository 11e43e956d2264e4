#include "BrowsePreferences.h"

#include <algorithm>
#include <cmath>

std::optional<double> BrowsePreferences::scale(double minimum, double maximum) const {
  const auto value = defaults_.objectForKey(kScaleKey);
  const auto number = value ? value->doubleValue() : std::nullopt;
  if (!number || !std::isfinite(*number)) return std::nullopt;
  return std::clamp(*number, minimum, maximum);
}

void BrowsePreferences::setScale(double scale) {
  if (const auto kept = defaults_.objectForKey(kScaleKey); kept && kept->doubleValue() == scale) return;
  defaults_.setObject(scale, kScaleKey);
}

BrowseSortOrder BrowsePreferences::sortOrder() const {
  BrowseSortOrder order;
  if (const auto name = defaults_.objectForKey(kSortKey); name && name->string())
    order.key = BrowseSortOrder::keyNamed(*name->string()).value_or(BrowseSortKey::Date);
  if (const auto reversed = defaults_.objectForKey(kSortReversedKey))
    if (const bool* flag = std::get_if<bool>(&reversed->storage())) order.reversed = *flag;
  return order;
}

void BrowsePreferences::setSortOrder(const BrowseSortOrder& order) {
  defaults_.setObject(BrowseSortOrder::nameOfKey(order.key), kSortKey);
  defaults_.setObject(order.reversed, kSortReversedKey);
}
