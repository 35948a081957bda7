#pragma once

#include <optional>
#include <span>

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/Categories/NSGeometry+ZKRectangles.h>
#include <ZKFoundation/ZKExport.h>

// What a drawing does while something is dragged. Nothing here fails or allocates; what is infinite
// or NaN gives what the arithmetic makes of it.

/// Says how a handle is dragged.
struct ZKDragOptions {
  /// Width and height keep their ratio, as with Shift.
  bool keepsProportions = false;
  /// The centre stays, and the opposite edges move too, as with Alt.
  bool fixesCenter = false;
};

/// A rectangle, and the handle under the pointer.
struct ZKDraggedRect {
  NSRect rect;
  NSUInteger handle;

  friend constexpr bool operator==(const ZKDraggedRect&, const ZKDraggedRect&) = default;
};

/// Drags a handle (`ZKRectHandle`) of the rectangle to p. Where the drag carries it over the
/// opposite edge, or the centre that is fixed, the handle is the one on the other side; on the edge
/// itself it stays what it was. The rectangle may be empty or of a negative size; the result never
/// has a negative size.
///
/// With proportions kept, a corner makes the rectangle as large as it must be to reach p in one
/// direction and p or further in the other; an edge resizes the other direction about its middle.
/// A line keeps its direction, unless an edge is dragged across it: then it becomes a rectangle. A
/// point becomes a square. Give the rectangle and handle with which the drag began at every step: a
/// rectangle that was dragged to a line forgets its proportions.
///
/// The centre moves the rectangle; any other index changes nothing.
[[nodiscard]] ZK_EXPORT ZKDraggedRect ZKDragHandle(NSRect rect, NSUInteger handle, NSPoint p,
                                                   ZKDragOptions options = {});

/// Tells where a rectangle goes when `from`, in which it lies, becomes `to`, as each part of a
/// group does when the group is resized. A direction in which `to` is negative is mirrored, and one
/// in which `from` has no size takes all of `to`. The result never has a negative size.
[[nodiscard]] ZK_EXPORT NSRect ZKMapRect(NSRect rect, NSRect from, NSRect to);

/// Where something snapped to, how far from where it was, and the vertical and the horizontal guide
/// on which it lies then, by their x and y; none of those that were too far.
struct ZKSnappedPoint {
  NSPoint point;
  CGFloat distance;
  std::optional<CGFloat> verticalGuide = {};
  std::optional<CGFloat> horizontalGuide = {};

  friend constexpr bool operator==(const ZKSnappedPoint&, const ZKSnappedPoint&) = default;
};

/// Turns a vector to the nearest multiple of an angle in radians and keeps its length; on an axis
/// the other coordinate is exactly 0. An angle that is not positive, not finite or less than
/// 1e-307, and a vector whose length is beyond all doubles, leave the vector as it is.
[[nodiscard]] ZK_EXPORT ZKSnappedPoint ZKSnapVectorToAngle(NSPoint vector, double angle);

/// Moves p to the nearest point of a grid with that spacing, of which `origin` is one; half way to
/// the larger coordinate. A direction without a positive, finite spacing has no grid, and where the
/// grid is finer than the coordinates themselves p stays.
[[nodiscard]] ZK_EXPORT ZKSnappedPoint ZKSnapPointToGrid(NSPoint p, NSSize spacing,
                                                         NSPoint origin = NSZeroPoint);

/// Moves p to the nearest of the vertical guides, given by their x, and of the horizontal ones,
/// given by their y, each if it is not further than the tolerance; of two that are as near to the
/// first in the list.
[[nodiscard]] ZK_EXPORT ZKSnappedPoint ZKSnapPointToGuides(NSPoint p,
                                                           std::span<const CGFloat> vertical,
                                                           std::span<const CGFloat> horizontal,
                                                           CGFloat tolerance);

/// Moves the rectangle so that its left edge, centre or right edge lies on the nearest vertical
/// guide, and its top, middle or bottom on the nearest horizontal one, each if that is not further
/// than the tolerance. Gives its origin then.
[[nodiscard]] ZK_EXPORT ZKSnappedPoint ZKSnapRectToGuides(NSRect rect,
                                                          std::span<const CGFloat> vertical,
                                                          std::span<const CGFloat> horizontal,
                                                          CGFloat tolerance);
