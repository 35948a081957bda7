#pragma once

#include <span>

#include <Foundation/NSArray.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSTypes.h>
#include <ZKFoundation/ZKExport.h>
#include <ZKFoundation/detail/Inline.h>

// Rectangles, with handles to drag. Nothing here fails; an index or code without a meaning has the
// answer that its function names. min and max stand for the smaller and the larger coordinate,
// whichever way the axes point.

/// Numbers the nine handles of a rectangle.
enum ZKRectHandle : NSUInteger {
  ZKHandleMinYEdge = 0,
  ZKHandleMinXEdge = 1,
  ZKHandleMaxYEdge = 2,
  ZKHandleMaxXEdge = 3,
  ZKHandleMinXMinY = 4,
  ZKHandleMaxXMinY = 5,
  ZKHandleMaxXMaxY = 6,
  ZKHandleMinXMaxY = 7,
  ZKHandleCenter = 8,
};

/// Says where one rectangle is placed in another; top is max-y, left is min-x.
enum ZKRectAlignment : NSUInteger {
  ZKAlignCenter = 0,
  ZKAlignTop = 1,
  ZKAlignTopLeft = 2,
  ZKAlignTopRight = 3,
  ZKAlignLeft = 4,
  ZKAlignBottom = 5,
  ZKAlignBottomLeft = 6,
  ZKAlignBottomRight = 7,
  ZKAlignRight = 8,
};

/// Says how a rectangle is scaled into another.
enum ZKRectScaling : NSUInteger {
  /// Keeps proportions; never enlarges.
  ZKScaleProportionallyDown = 0,
  /// Keeps proportions.
  ZKScaleProportionallyUpOrDown = 1,
  /// Takes the size of the other.
  ZKScaleAxesIndependently = 2,
};

/// Numbers the edges as the platform does: not as the handles.
enum NSRectEdge : NSUInteger {
  NSMinXEdge = 0,
  NSMinYEdge = 1,
  NSMaxXEdge = 2,
  NSMaxYEdge = 3,
};

extern "C" {

/// Makes the empty rectangle at the point.
[[nodiscard]] ZK_EXPORT NSRect ZKMakeRectFromPoint(NSPoint p);
/// Makes a rectangle of the size, centred on (0, 0).
[[nodiscard]] ZK_EXPORT NSRect ZKRectWithSizeAndOriginAtCenter(NSSize size);
/// Makes the smallest rectangle with both points as corners.
[[nodiscard]] ZK_EXPORT NSRect ZKMakeRectFromTwoPoints(NSPoint a, NSPoint b);

/// Tells where the handle is (`ZKRectHandle`); any other index gives the origin.
[[nodiscard]] ZK_EXPORT NSPoint ZKGetPointOfRect(NSUInteger handle, NSRect rect);
/// Whether the handle is one of the corners.
[[nodiscard]] ZK_EXPORT bool ZKIsCorner(NSUInteger handle);
/// Gives the handle across the rectangle, the centre for the centre; all ones for an index without
/// a handle.
[[nodiscard]] ZK_EXPORT NSUInteger ZKOppositePointIndex(NSUInteger handle);
/// Tells where the handle across the rectangle is; any other index gives the origin.
[[nodiscard]] ZK_EXPORT NSPoint ZKOppositePoint(NSUInteger handle, NSRect rect);

/// Drags a handle of the rectangle to p and gives the handle that the dragged point has become.
/// Edges that the handle does not touch stay; the centre moves the rectangle. Any other index
/// changes nothing and is given back.
///
/// When the drag has carried the handle over the opposite edge, the rectangle is normalised and the
/// handle is another one; else it is left as moved, even with a negative size. Across x the test is
/// made against the opposite edge. Across y only handle 4 is tested so: 2, 5, 6 and 7 compare a
/// coordinate with the new max-x edge, and 0 remains 0 and normalises when max-x exceeds max-y.
/// Applications depend on these answers; `ZKNormalizedRect` gives a rectangle to draw with.
/// The rectangle may not be null.
ZK_EXPORT NSUInteger ZKMovePointTo(NSRect* rect, NSUInteger handle, NSPoint p);

/// Gives the rectangle, moved so that its centre is p.
[[nodiscard]] ZK_EXPORT NSRect ZKCenterOnPoint(NSRect rect, NSPoint p);
/// Gives the rectangle, moved so that its centre is p, as `ZKCenterOnPoint` does.
[[nodiscard]] ZK_EXPORT NSRect ZKCenterOn(NSRect rect, NSPoint p);
/// Gives the rectangle, of no negative size, enlarged to include p.
[[nodiscard]] ZK_EXPORT NSRect ZKExtendRectByPoint(NSRect rect, NSPoint p);
/// Makes the smallest rectangle around both; an empty one counts with its origin.
[[nodiscard]] ZK_EXPORT NSRect ZKUnionRect(NSRect a, NSRect b);
/// Gives the same area with no negative size.
[[nodiscard]] ZK_EXPORT NSRect ZKNormalizedRect(NSRect rect);

/// Whether a and b have an area in common or, with the flag, whether the centre of a lies in b.
[[nodiscard]] ZK_EXPORT bool ZKIntersectsRect(bool usesCenter, NSRect a, NSRect b);
/// Whether neither coordinate, width nor height differs by more than the tolerance.
[[nodiscard]] ZK_EXPORT bool ZKAreSimilarRects(NSRect a, NSRect b, double tolerance);
/// Gives the coordinate of an edge (`NSRectEdge`), 0 for any other code.
[[nodiscard]] ZK_EXPORT CGFloat ZKCoordinateForRectEdge(NSUInteger edge, NSRect rect);

/// Finds the origin that places a rectangle of a's size in b (`ZKRectAlignment`); any other code
/// centres.
[[nodiscard]] ZK_EXPORT NSPoint ZKAlignRectangles(NSUInteger alignment, NSRect a, NSRect b);
/// Gives a, scaled (`ZKRectScaling`; any other mode takes b's size) and aligned in b; a itself when
/// the two are equal. Without width and height, a cannot be scaled proportionally: the result is
/// infinite or NaN.
[[nodiscard]] ZK_EXPORT NSRect ZKScaleRectToFitInRect(NSUInteger scaling, NSUInteger alignment,
                                                      NSRect a, NSRect b);

}  // extern "C"

/// Makes the smallest rectangle with all the points as they are, where `ZKExtendRectByPoint` for
/// one after the other adds rounding up; `NSZeroRect` without any.
[[nodiscard]] ZK_EXPORT NSRect ZKRectAroundPoints(std::span<const NSPoint> points);
/// Makes the smallest rectangle with all the rectangles in it, those without an area too, which
/// `NSUnionRect` ignores; `NSZeroRect` without any.
[[nodiscard]] ZK_EXPORT NSRect ZKRectAroundRects(std::span<const NSRect> rects);

/// Whether p lies in one of the rectangles, boxed in `NSValue`s; looks no further than the first.
/// No for nil. An element that holds no rectangle raises `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT bool ZKPointInRects(const NSRef<NSArray>& rects, NSPoint p);

#ifdef ZK_CALCULATES_INLINE
#include <ZKFoundation/detail/Rectangles.h>  // the bodies of the small functions
#endif
