#pragma once
// Date texts and nil-tolerant comparisons of MCDate.
//
// The date texts of Exif ("2021:06:01 12:00:00"), XMP ("2021-06-01T12:00:00", with or without a
// zone and fractions) and the plain ISO 8601 scan. Texts without a zone are wall-clock times in the
// default (local) zone. Every function may be called from any thread.

#include <vesperon/core/MCTypes.h>
#include <vesperon/metadata/MCDate.h>

#include <optional>
#include <string>

/// Same for two nones; a first date of none sorts first, a second of none last; else by instant.
MCComparisonResult compareDate(const std::optional<MCDate>& date, const std::optional<MCDate>& toDate);

/// As compareDate, but dates at most `deviation` seconds apart (bounds included) are the same.
MCComparisonResult compareDate(const std::optional<MCDate>& date, const std::optional<MCDate>& toDate,
                               double deviation);

/// Equal instants, or both none.
bool isEqualDate(const std::optional<MCDate>& date, const std::optional<MCDate>& toDate);

/// True when both are none, or both are dates at most `inTimeRange` seconds apart.
bool isDate(const std::optional<MCDate>& date, const std::optional<MCDate>& fromDate, double inTimeRange);

/// Scans "%d-%d-%dT%d:%d:%d" and ignores whatever follows, a zone included: the fields are read
/// as local wall-clock time and not checked (they roll over). None when a field is missing.
std::optional<MCDate> dateFromISO8601String(const std::optional<std::string>& string);

/// "yyyy:MM:dd HH:mm:ss" as local wall-clock time. None unless all six fields scan, the year is at
/// least 1, the month 1 to 12, the day 1 to 31 and the time fields not negative — so
/// "0000:00:00 00:00:00", the usual empty value, gives none.
std::optional<MCDate> dateFromExifString(const std::optional<std::string>& string);

/// The first that reads the whole text: "yyyy-MM-dd'T'HH:mm:ss" in the local zone; the Internet
/// date-time form with a zone ("…:ss+02:00", "…:ssZ"); the same with fractional seconds, of which
/// digits past the ninth are ignored (a date holds no finer time). None for a text that no form can
/// match: one that is not ASCII, has another number of more than nine digits, or is too long.
std::optional<MCDate> dateFromXmpString(const std::optional<std::string>& string);

/// "yyyy:MM:dd HH:mm:ss" in the default locale and the local zone.
std::string exifString(MCDate date);

/// "yyyy-MM-dd'T'HH:mm:ss" in the local zone, with no zone designator.
std::string xmpString(MCDate date);
