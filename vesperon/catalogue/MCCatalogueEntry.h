#pragma once
// What a catalogue answers a browser with: its files sorted by capture date, and the runs of one
// day among them.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

/// One file of a sorted answer: its path and, when it has one, its capture date.
struct MCCatalogueEntry {
  std::filesystem::path path;  ///< the file, as the scan found it
  /// The Exif capture date as the file holds it ("2024:05:01 10:00:00"), else empty.
  std::string captureDate;
  /// The day the entry is grouped under, "YYYY-MM-DD": its capture date's, else its modification
  /// date's (local time).
  std::string day;
  /// The file's size as the last scan found it, so that a browser can show the entry before it
  /// looks at the file.
  int64_t size = 0;
  /// The file's modification time in seconds since the epoch, as the last scan found it.
  int64_t modificationTime = 0;
};

/// A run of entries of one day in a sorted answer.
struct MCCatalogueDayGroup {
  std::string day;        ///< "YYYY-MM-DD"
  std::size_t first = 0;  ///< index of its first entry
  std::size_t count = 0;  ///< how many entries it holds
};
