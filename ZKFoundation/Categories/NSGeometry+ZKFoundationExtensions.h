#pragma once

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/Categories/NSGeometry+ZKNearestPoint.h>
#include <ZKFoundation/ZKExport.h>
#include <ZKFoundation/detail/Inline.h>

// Points, lines, angles and Bezier curves; it includes the exact search for the nearest point of a
// curve, so that this header has all of them. Nothing here raises: what the arithmetic makes of
// degenerate input is given, except where a guard is named. "Float precision" is that of the
// single-precision `atan2f` and `hypotf`, about seven digits, after differences that are taken in
// double and then rounded.

extern "C" {

/// Stands for no point: what `ZKPointIntersection2` gives when there is no intersection:
/// (-10000000.2, -999999.6).
ZK_EXPORT extern const NSPoint ZKNotFoundPoint;

/// Gives the multiple of 45 degrees, below 360, that is nearest to an angle of 0 to 360 degrees;
/// half way the lower one. Gives 0 below 0, above 337.5 and for NaN.
[[nodiscard]] ZK_EXPORT double ZKSnapAngleToStandardAngles(double angle);

/// Gives the direction from a to b in radians, -π to π, in float precision. An angle, not dy/dx.
[[nodiscard]] ZK_EXPORT CGFloat ZKSlope(NSPoint a, NSPoint b);
/// Gives the distance from a to p as a fraction of the length from a to b; 0 when a and b coincide.
/// In float precision.
[[nodiscard]] ZK_EXPORT CGFloat ZKRelPoint(NSPoint p, NSPoint a, NSPoint b);
/// Gives the distance from a to b, in float precision.
[[nodiscard]] ZK_EXPORT CGFloat ZKLineLength(NSPoint a, NSPoint b);
/// Gives the point half way from a to b.
[[nodiscard]] ZK_EXPORT NSPoint ZKBisectLine(NSPoint a, NSPoint b);
/// Gives the point at a + (b - a) t; t is not clamped.
[[nodiscard]] ZK_EXPORT NSPoint ZKInterpolate(NSPoint a, NSPoint b, double t);

/// Gives |v|².
[[nodiscard]] ZK_EXPORT CGFloat ZKSquaredLength(NSPoint v);
/// Gives a - b.
[[nodiscard]] ZK_EXPORT NSPoint ZKDiffPoint(NSPoint a, NSPoint b);
/// Gives |a - b|².
[[nodiscard]] ZK_EXPORT CGFloat ZKDiffPointSquaredLength(NSPoint a, NSPoint b);
/// Gives a + b.
[[nodiscard]] ZK_EXPORT NSPoint ZKSumPoint(NSPoint a, NSPoint b);
/// Gives a · b.
[[nodiscard]] ZK_EXPORT CGFloat ZKDotProduct(NSPoint a, NSPoint b);

/// Finds where the lines y = m x + k through a and through c meet, with the directions of a to b
/// and of c to d in radians (`ZKSlope`) as m: near the true intersection only for lines that run to
/// the right and are almost level; `ZKPointIntersection2` gives it for all. Lines of the same
/// direction give infinities or NaN.
[[nodiscard]] ZK_EXPORT NSPoint ZKPointIntersection(NSPoint a, NSPoint b, NSPoint c, NSPoint d);
/// Finds where the segment from a to b crosses the infinite line through c and d. `ZKNotFoundPoint`
/// when it does not, when the two are parallel, and for NaN.
[[nodiscard]] ZK_EXPORT NSPoint ZKPointIntersection2(NSPoint a, NSPoint b, NSPoint c, NSPoint d);

/// Gives the direction of a to b minus that of b to c: radians in float precision, -2π to 2π.
[[nodiscard]] ZK_EXPORT CGFloat ZKAngleBetween(NSPoint a, NSPoint b, NSPoint c);
/// Finds the point of the segment from a to b that is nearest to p, with the length of the segment
/// in float precision; a when float sees no length.
[[nodiscard]] ZK_EXPORT NSPoint ZKNearestPointOnLine(NSPoint p, NSPoint a, NSPoint b);

/// Whether neither coordinate differs by more than the tolerance; NaN differs by no more.
[[nodiscard]] ZK_EXPORT bool ZKAreSimilarPoints(NSPoint a, NSPoint b, double tolerance);
/// Whether neither width nor height differs by more than the tolerance; NaN differs by no more.
[[nodiscard]] ZK_EXPORT bool ZKAreSimilarSizes(NSSize a, NSSize b, double tolerance);

/// Finds the centre of the circle through three points; infinities or NaN when they lie on a line.
[[nodiscard]] ZK_EXPORT NSPoint ZKCenterOfCircleFromThreePoints(NSPoint a, NSPoint b, NSPoint c);

/// Gives the point at t of the Bezier curve of a degree of 0 to 5 with the degree + 1 control
/// points, by de Casteljau's method; t is not clamped. When `left` and `right` are not null, the
/// control points of the curve's two parts before and after t are stored there, degree + 1 each;
/// either may be `points` itself. Any other degree stores nothing and gives (0, 0).
ZK_EXPORT NSPoint ZKBezier(const NSPoint* points, int degree, double t, NSPoint* left,
                           NSPoint* right);

/// Gives the direction of the tangent of a cubic (4 control points) at t, which is clamped to 0 to
/// 1, in radians. A curve that stands still has none: at t = 0 that gives 0, elsewhere what
/// rounding leaves.
[[nodiscard]] ZK_EXPORT double ZKBezierSlope(const NSPoint* points, double t);

/// Finds the point of a cubic (4 control points) that is nearest to p; its parameter is stored at t
/// unless that is null. At equal distances the smallest parameter is taken. Coordinates that are
/// infinite or NaN, or whose products overflow, give some point that the arithmetic leads to.
/// Differences of about 1e-160, whose products are next to the smallest double, can end the process
/// with the assertion message of `ZKFindRoots`.
///
/// The answer is bit for bit that of the method in the first volume of "Graphics Gems" (1990),
/// whose search stops at a fixed flatness: the distance is exact to about 1e-5 of the curve's size
/// for curves of a size of 1e-4 to 1e3, and coarser for others, up to some hundredths at 1e6.
/// `ZKNearestPointOnCurveRefined` is exact at every scale.
ZK_EXPORT NSPoint ZKNearestPointOnCurve(const NSPoint* points, double* t, NSPoint p);

/// Finds the roots of a polynomial of degree 5 in Bezier form, in increasing order: stores up to
/// five parameters at t and gives their number. The polynomial is the six points' y over their x,
/// which are evenly spaced; a root is a change between y below 0 and y of 0 or more.
///
/// Recursive subdivision, where it is sure of one root, ends when that is found as exactly as
/// `ZKNearestPointOnCurve` says, or 64 levels down; `depth`, 0 for a whole search, is the level it
/// starts at. Roots that coincide take as many levels as doubles can tell them apart, at most some
/// 2,200: heights that are infinite could go on for ever, and what still crosses the axis more than
/// once there has no root.
///
/// Heights next to the smallest double may round to more roots than there are: of six to ten the
/// first five are given, and when six turn up in one half of the curve, the process ends with an
/// assertion message. A search takes well below 1 µs, of such heights from a negative depth up to
/// 5 ms.
ZK_EXPORT int ZKFindRoots(const NSPoint* points, double* t, int depth);

}  // extern "C"

#ifdef ZK_CALCULATES_INLINE
#include <ZKFoundation/detail/Points.h>  // the bodies of the small functions
#endif
