#pragma once

#include <cstddef>
#include <optional>

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/ZKExport.h>
#include <ZKFoundation/detail/Inline.h>

// Affine transforms of the plane, and points, sizes, rectangles and curves under them. Nothing here
// fails: coordinates that are infinite or NaN give what the arithmetic makes of them.

/// Maps (x, y) to (a x + c y + tx, b x + d y + ty).
struct ZKAffineTransform {
  CGFloat a;
  CGFloat b;
  CGFloat c;
  CGFloat d;
  CGFloat tx;
  CGFloat ty;

  friend constexpr bool operator==(const ZKAffineTransform&, const ZKAffineTransform&) = default;
};

/// Maps every point to itself.
inline constexpr ZKAffineTransform ZKIdentityTransform = {1, 0, 0, 1, 0, 0};

extern "C" {

/// Makes the transform that moves points by dx and dy.
[[nodiscard]] ZK_EXPORT ZKAffineTransform ZKMakeTranslation(CGFloat dx, CGFloat dy);
/// Makes the transform that multiplies x and y, with (0, 0) fixed; factors below 0 mirror.
[[nodiscard]] ZK_EXPORT ZKAffineTransform ZKMakeScaling(CGFloat sx, CGFloat sy);
/// Makes the rotation about (0, 0) by an angle in radians that turns the x axis towards the y axis.
/// Its cosine and sine are rounded: a quarter turn leaves 6e-17 where 0 would be.
[[nodiscard]] ZK_EXPORT ZKAffineTransform ZKMakeRotation(double angle);
/// Makes the transform that applies `first`, and `second` to what that gives.
[[nodiscard]] ZK_EXPORT ZKAffineTransform ZKConcatTransforms(ZKAffineTransform first,
                                                             ZKAffineTransform second);

/// Gives the place of a point under the transform.
[[nodiscard]] ZK_EXPORT NSPoint ZKTransformPoint(NSPoint p, ZKAffineTransform transform);
/// Gives a vector under the transform, which its translation does not move.
[[nodiscard]] ZK_EXPORT NSPoint ZKTransformVector(NSPoint v, ZKAffineTransform transform);
/// Gives a size under the transform, as a vector: width and height may come out below 0.
[[nodiscard]] ZK_EXPORT NSSize ZKTransformSize(NSSize size, ZKAffineTransform transform);
/// Gives the smallest rectangle, of no negative size, around the places of the rectangle's corners.
[[nodiscard]] ZK_EXPORT NSRect ZKTransformRect(NSRect rect, ZKAffineTransform transform);
/// Stores the places of `count` points at `places`, which may be `points` itself: those of control
/// points are the control points of the transformed curve.
ZK_EXPORT void ZKTransformPoints(const NSPoint* points, std::size_t count,
                                 ZKAffineTransform transform, NSPoint* places);

}  // extern "C"

/// Gives the transform that undoes this one. None when it is singular, that is when its determinant
/// is 0 within rounding, and when an element of either is infinite or NaN.
[[nodiscard]] ZK_EXPORT std::optional<ZKAffineTransform> ZKInverseTransform(
    ZKAffineTransform transform);

#ifdef ZK_CALCULATES_INLINE
#include <ZKFoundation/detail/Transforms.h>  // the bodies of the small functions
#endif
