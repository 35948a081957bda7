#pragma once

#include <vector>

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/ZKExport.h>

// Measures of cubic Bezier curves, each given by its 4 control points. Nothing here fails, at any
// scale: coordinates that are infinite or NaN, or whose differences are, give what the arithmetic
// makes of them.

/// The point of a curve that is nearest to another, its parameter, and the distance of the two.
struct ZKCurveProjection {
  NSPoint point;
  double t;
  double distance;
};

extern "C" {

/// Gives the smallest rectangle, of no negative size, around a cubic, which is often smaller than
/// that around its control points. It is exact but for the last bits of the coordinates.
[[nodiscard]] ZK_EXPORT NSRect ZKCurveBounds(const NSPoint* points);

/// Gives the length of a cubic, wrong by no more than the tolerance, which has the coordinates'
/// unit; what doubles cannot tell apart, about 1e-15 of the length, is always tolerated, so that 0
/// asks for the best there is. NaN counts as 0.
[[nodiscard]] ZK_EXPORT double ZKCurveLength(const NSPoint* points, double tolerance);

/// Gives the parameter up to which a cubic has a length, wrong by no more than the tolerance as
/// `ZKCurveLength` understands it. A length of 0 or less, or NaN, gives 0; one that is not below
/// the whole length gives 1.
[[nodiscard]] ZK_EXPORT double ZKCurveParameterAtLength(const NSPoint* points, double length,
                                                        double tolerance);

/// Finds the point of a cubic that is nearest to p, as `ZKNearestPointOnCurveRefined` does.
[[nodiscard]] ZK_EXPORT ZKCurveProjection ZKProjectOnCurve(const NSPoint* points, NSPoint p);

}  // extern "C"

/// Finds points of a cubic, both its ends among them, such that the curve between neighbours is
/// nowhere farther from the segment between them than the tolerance, in the coordinates' unit; and
/// so few that each segment takes almost all of it; where a straight curve turns back it takes some
/// more. A tolerance below 1e-12 of the curve's size, or NaN, counts as that much, which is up to a
/// million points. Coordinates that are infinite or NaN give the ends alone.
[[nodiscard]] ZK_EXPORT std::vector<NSPoint> ZKFlattenCurve(const NSPoint* points,
                                                            double tolerance);
