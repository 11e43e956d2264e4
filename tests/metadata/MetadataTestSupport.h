#pragma once
// Readable failure messages for metadata values in the tests of this folder.

#include <vesperon/core/MCValue.h>
#include <vesperon/core/MCValueJSON.h>

#include <ostream>

inline void PrintTo(const MCValue& value, std::ostream* out) { *out << MCValueToJSON(value).dump(); }
