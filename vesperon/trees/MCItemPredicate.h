#pragma once
// MCItemPredicate<T>: the filter of the smart tree — a callable that answers true for the items
// to keep. Any lambda or function object of (const T&) -> bool converts to it:
//
//   MCItemPredicate<PhotoPtr> starred = [](const PhotoPtr& p) { return p->rating >= 4; };
//
// Sort orders are lists of MCSortDescriptor<T> (vesperon/core/MCSortDescriptor.h): each a
// comparator, or a key compared with < and ==, and a direction.

#include <functional>

template <typename T>
using MCItemPredicate = std::function<bool(const T&)>;
