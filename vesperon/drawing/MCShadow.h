#pragma once
// MCShadow: a drop shadow — colour, offset and blur radius — as drawing sets it under what it
// draws. The offset is in the platform's sense: positive y goes up, so (0, -1) falls one point
// below the shape.

#include <vesperon/core/MCGeometry.h>
#include <vesperon/toolkit/MCColor.h>

#include <cmath>

struct MCShadow {
  /// The shadow's colour.
  MCColor shadowColor = MCColor::blackColor().colorWithAlphaComponent(1.0 / 3.0);
  /// How far the shadow falls from what casts it (y up).
  MCSize shadowOffset{0, 0};
  /// The blur radius.
  double shadowBlurRadius = 0;

  /// The room a shadow needs around a shape along x and along y: the offset and the blur.
  double marginX() const { return std::ceil(std::fabs(shadowOffset.width) + std::max(shadowBlurRadius, 0.0)); }
  /// How far the shadow reaches beyond the shape vertically.
  double marginY() const { return std::ceil(std::fabs(shadowOffset.height) + std::max(shadowBlurRadius, 0.0)); }

  /// Whether colour, offset and blur are equal.
  bool operator==(const MCShadow&) const = default;
};
