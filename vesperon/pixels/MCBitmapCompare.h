#pragma once
// Distances between fingerprints.
//
// MCBitmapCompareFast(a, b, length): the mean absolute difference of two byte arrays, scaled to
// 0…1. The bytes are taken in whole groups of 16 (the x86-64 grouping; a shorter rest is not
// counted), the absolute differences summed as a 64-bit integer s, and the result is
// float(double(s) / 255.0 / double(length)) — divided by the full length, rest included. Equal
// arrays give 0 and arrays of opposite extremes 1; length 0 gives NaN (0 / 0), as on the platform.
//
// MCBitmapCompareHistogram(a, b, length): the sum of squared differences of two float arrays,
// neither normalised nor square-rooted. `length` is in bytes; the floats are taken in whole groups
// of four (16 bytes), a rest is not counted. Four single-precision sums s0…s3, one for each place
// in a group, each gathering fma(d, d, s) with d the difference of the pair; the result is
// (s0 + s2) + (s1 + s3). Equal histograms give 0.

#include <cstddef>
#include <cstdint>

/// How alike two byte runs of `length` are (see above).
float MCBitmapCompareFast(const uint8_t* a, const uint8_t* b, std::size_t length);
/// How alike two histograms of `length` bins are (see above).
float MCBitmapCompareHistogram(const float* a, const float* b, std::size_t length);
