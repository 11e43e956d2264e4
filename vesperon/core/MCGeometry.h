#pragma once
// Geometry values and the rectangle functions, with the meanings of the platform's NS… functions.
// Coordinates are doubles. The browser's coordinates are flipped (origin top left, y grows down);
// the functions below do not care, except MCMouseInRect, which takes the flip as an argument.

#include <algorithm>
#include <cmath>

/// A point; y grows downward in the browser's flipped coordinates.
struct MCPoint {
  double x = 0;  ///< The horizontal coordinate.
  double y = 0;  ///< The vertical coordinate.
  friend constexpr bool operator==(const MCPoint&, const MCPoint&) = default;
};

/// A size (it may be negative or zero; the rectangle functions treat such as empty).
struct MCSize {
  double width = 0;   ///< The width.
  double height = 0;  ///< The height.
  friend constexpr bool operator==(const MCSize&, const MCSize&) = default;
};

/// A rectangle by its origin (the corner of the smallest coordinates) and its size.
struct MCRect {
  MCPoint origin;  ///< The corner of the smallest coordinates.
  MCSize size;     ///< The width and height.
  friend constexpr bool operator==(const MCRect&, const MCRect&) = default;
};

/// Insets in the platform's order: top, left, bottom, right.
struct MCEdgeInsets {
  double top = 0;     ///< From the top edge.
  double left = 0;    ///< From the left edge.
  double bottom = 0;  ///< From the bottom edge.
  double right = 0;   ///< From the right edge.
  friend constexpr bool operator==(const MCEdgeInsets&, const MCEdgeInsets&) = default;
};

/// The origin.
inline constexpr MCPoint MCZeroPoint{};
/// The size of nothing.
inline constexpr MCSize MCZeroSize{};
/// The empty rectangle at the origin.
inline constexpr MCRect MCZeroRect{};

/// The point (x, y).
constexpr MCPoint MCMakePoint(double x, double y) { return {x, y}; }
/// The size (w, h).
constexpr MCSize MCMakeSize(double w, double h) { return {w, h}; }
/// The rectangle at (x, y) of size (w, h).
constexpr MCRect MCMakeRect(double x, double y, double w, double h) { return {{x, y}, {w, h}}; }
/// Insets in the platform's order.
constexpr MCEdgeInsets MCEdgeInsetsMake(double top, double left, double bottom, double right) {
  return {top, left, bottom, right};
}

/// @name Edges and middles
//@{
/// The smallest, largest and middle x and y of a rectangle, and its width and height.
constexpr double MCMinX(const MCRect& r) { return r.origin.x; }
constexpr double MCMinY(const MCRect& r) { return r.origin.y; }
constexpr double MCMaxX(const MCRect& r) { return r.origin.x + r.size.width; }
constexpr double MCMaxY(const MCRect& r) { return r.origin.y + r.size.height; }
constexpr double MCMidX(const MCRect& r) { return r.origin.x + r.size.width * 0.5; }
constexpr double MCMidY(const MCRect& r) { return r.origin.y + r.size.height * 0.5; }
constexpr double MCWidth(const MCRect& r) { return r.size.width; }
constexpr double MCHeight(const MCRect& r) { return r.size.height; }
//@}

/// True when the width or the height is not positive.
constexpr bool MCIsEmptyRect(const MCRect& r) { return !(r.size.width > 0 && r.size.height > 0); }
/// @name Equality
//@{
/// Whether two rectangles, sizes or points are equal in every coordinate.
constexpr bool MCEqualRects(const MCRect& a, const MCRect& b) { return a == b; }
constexpr bool MCEqualSizes(const MCSize& a, const MCSize& b) { return a == b; }
constexpr bool MCEqualPoints(const MCPoint& a, const MCPoint& b) { return a == b; }
//@}

/// Half-open containment: the minimum edges belong to the rectangle, the maximum edges do not.
constexpr bool MCPointInRect(const MCPoint& p, const MCRect& r) {
  return p.x >= MCMinX(r) && p.x < MCMaxX(r) && p.y >= MCMinY(r) && p.y < MCMaxY(r);
}
/// As MCPointInRect; in an unflipped space the bottom edge belongs instead of the top one.
constexpr bool MCMouseInRect(const MCPoint& p, const MCRect& r, bool flipped) {
  return flipped ? MCPointInRect(p, r)
                 : (p.x >= MCMinX(r) && p.x < MCMaxX(r) && p.y > MCMinY(r) && p.y <= MCMaxY(r));
}
/// True when b is non-empty and lies wholly inside a.
constexpr bool MCContainsRect(const MCRect& a, const MCRect& b) {
  return !MCIsEmptyRect(b) && MCMinX(a) <= MCMinX(b) && MCMinY(a) <= MCMinY(b) && MCMaxX(a) >= MCMaxX(b) &&
         MCMaxY(a) >= MCMaxY(b);
}
/// True when the two share an area of positive size.
constexpr bool MCIntersectsRect(const MCRect& a, const MCRect& b) {
  return !MCIsEmptyRect(a) && !MCIsEmptyRect(b) && MCMinX(a) < MCMaxX(b) && MCMinX(b) < MCMaxX(a) &&
         MCMinY(a) < MCMaxY(b) && MCMinY(b) < MCMaxY(a);
}
/// The common area, or the zero rectangle when there is none.
constexpr MCRect MCIntersectionRect(const MCRect& a, const MCRect& b) {
  if (!MCIntersectsRect(a, b)) return MCZeroRect;
  double x0 = std::max(MCMinX(a), MCMinX(b)), y0 = std::max(MCMinY(a), MCMinY(b));
  double x1 = std::min(MCMaxX(a), MCMaxX(b)), y1 = std::min(MCMaxY(a), MCMaxY(b));
  return MCMakeRect(x0, y0, x1 - x0, y1 - y0);
}
/// The smallest rectangle holding both; an empty rectangle does not count.
constexpr MCRect MCUnionRect(const MCRect& a, const MCRect& b) {
  if (MCIsEmptyRect(a)) return MCIsEmptyRect(b) ? MCZeroRect : b;
  if (MCIsEmptyRect(b)) return a;
  double x0 = std::min(MCMinX(a), MCMinX(b)), y0 = std::min(MCMinY(a), MCMinY(b));
  double x1 = std::max(MCMaxX(a), MCMaxX(b)), y1 = std::max(MCMaxY(a), MCMaxY(b));
  return MCMakeRect(x0, y0, x1 - x0, y1 - y0);
}
/// The rectangle moved by (dx, dy).
constexpr MCRect MCOffsetRect(const MCRect& r, double dx, double dy) {
  return MCMakeRect(r.origin.x + dx, r.origin.y + dy, r.size.width, r.size.height);
}
/// Shrinks by dx on the left and right and dy on top and bottom (negative values grow).
constexpr MCRect MCInsetRect(const MCRect& r, double dx, double dy) {
  return MCMakeRect(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx, r.size.height - 2 * dy);
}
/// Applies edge insets to a rectangle in flipped coordinates (top inset moves the origin down).
constexpr MCRect MCInsetRectWithEdgeInsets(const MCRect& r, const MCEdgeInsets& in) {
  return MCMakeRect(r.origin.x + in.left, r.origin.y + in.top, r.size.width - in.left - in.right,
                    r.size.height - in.top - in.bottom);
}
/// The smallest rectangle with integral edges that holds r; an empty rectangle gives the zero rectangle.
inline MCRect MCIntegralRect(const MCRect& r) {
  if (MCIsEmptyRect(r)) return MCZeroRect;
  double x0 = std::floor(MCMinX(r)), y0 = std::floor(MCMinY(r));
  double x1 = std::ceil(MCMaxX(r)), y1 = std::ceil(MCMaxY(r));
  return MCMakeRect(x0, y0, x1 - x0, y1 - y0);
}

/// The edges of a rectangle, for MCDivideRect.
enum class MCRectEdge { MinX = 0, MinY = 1, MaxX = 2, MaxY = 3 };
/// Cuts `amount` off `r` along `edge` into `slice`, the rest into `remainder` (NSDivideRect): the
/// amount is held to 0 and the rectangle's extent on that axis.
inline void MCDivideRect(const MCRect& r, MCRect* slice, MCRect* remainder, double amount, MCRectEdge edge) {
  const bool alongX = edge == MCRectEdge::MinX || edge == MCRectEdge::MaxX;
  const double length = alongX ? r.size.width : r.size.height;
  amount = std::clamp(amount, 0.0, std::max(0.0, length));
  MCRect s = r, rest = r;
  switch (edge) {
    case MCRectEdge::MinX: s.size.width = amount; rest.origin.x += amount; rest.size.width -= amount; break;
    case MCRectEdge::MaxX: s.origin.x = MCMaxX(r) - amount; s.size.width = amount; rest.size.width -= amount; break;
    case MCRectEdge::MinY: s.size.height = amount; rest.origin.y += amount; rest.size.height -= amount; break;
    case MCRectEdge::MaxY: s.origin.y = MCMaxY(r) - amount; s.size.height = amount; rest.size.height -= amount; break;
  }
  if (slice) *slice = s;
  if (remainder) *remainder = rest;
}
