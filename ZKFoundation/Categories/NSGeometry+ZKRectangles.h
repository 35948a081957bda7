#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSTypes.h>
#include <ZKFoundation/ZKExport.h>

// Rectangles, with handles to drag. Nothing here fails; an index or code without a meaning has the
// answer that its function names. min and max stand for the smaller and the larger coordinate,
// whichever way the axes point.

/// The nine handles of a rectangle.
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

/// Where one rectangle is placed in another; top is max-y, left is min-x.
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

/// How a rectangle is scaled into another.
enum ZKRectScaling : NSUInteger {
  /// Keeps its proportions and grows never.
  ZKScaleProportionallyDown = 0,
  /// Keeps its proportions.
  ZKScaleProportionallyUpOrDown = 1,
  /// Takes the size of the other.
  ZKScaleAxesIndependently = 2,
};

/// The edges as the platform counts them, other than the handles.
enum NSRectEdge : NSUInteger {
  NSMinXEdge = 0,
  NSMinYEdge = 1,
  NSMaxXEdge = 2,
  NSMaxYEdge = 3,
};

extern "C" {

/// The empty rectangle at the point.
ZK_EXPORT NSRect ZKMakeRectFromPoint(NSPoint p);
/// A rectangle of the size, centred on (0, 0).
ZK_EXPORT NSRect ZKRectWithSizeAndOriginAtCenter(NSSize size);
/// The smallest rectangle with both points as corners.
ZK_EXPORT NSRect ZKMakeRectFromTwoPoints(NSPoint a, NSPoint b);

/// Where the handle is (`ZKRectHandle`); any other index gives the origin.
ZK_EXPORT NSPoint ZKGetPointOfRect(NSUInteger handle, NSRect rect);
/// Whether the handle is one of the corners.
ZK_EXPORT bool ZKIsCorner(NSUInteger handle);
/// The handle across the rectangle, the centre for itself; all ones for an index without a handle.
ZK_EXPORT NSUInteger ZKOppositePointIndex(NSUInteger handle);
/// Where that handle is.
ZK_EXPORT NSPoint ZKOppositePoint(NSUInteger handle, NSRect rect);

/// Drags a handle of the rectangle to p and gives the handle that the dragged point is afterwards.
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

/// The rectangle moved so that its centre is p.
ZK_EXPORT NSRect ZKCenterOnPoint(NSRect rect, NSPoint p);
/// The same under another name.
ZK_EXPORT NSRect ZKCenterOn(NSRect rect, NSPoint p);
/// The rectangle, of no negative size, grown to include p.
ZK_EXPORT NSRect ZKExtendRectByPoint(NSRect rect, NSPoint p);
/// The smallest rectangle around both; an empty one counts with its origin.
ZK_EXPORT NSRect ZKUnionRect(NSRect a, NSRect b);
/// The same area with no negative size.
ZK_EXPORT NSRect ZKNormalizedRect(NSRect rect);

/// Whether a and b have an area in common or, with the flag, whether the centre of a lies in b.
ZK_EXPORT bool ZKIntersectsRect(bool usesCenter, NSRect a, NSRect b);
/// Whether neither coordinate, width nor height differs by more than the tolerance.
ZK_EXPORT bool ZKAreSimilarRects(NSRect a, NSRect b, double tolerance);
/// The coordinate of an edge (`NSRectEdge`), 0 for any other code.
ZK_EXPORT CGFloat ZKCoordinateForRectEdge(NSUInteger edge, NSRect rect);

/// The origin that places a rectangle of a's size in b (`ZKRectAlignment`); any other code centres.
ZK_EXPORT NSPoint ZKAlignRectangles(NSUInteger alignment, NSRect a, NSRect b);
/// a scaled (`ZKRectScaling`; any other mode takes b's size) and aligned in b; a itself when the
/// two are equal. Without width and height, a cannot be scaled proportionally: the result is
/// infinite or NaN.
ZK_EXPORT NSRect ZKScaleRectToFitInRect(NSUInteger scaling, NSUInteger alignment, NSRect a,
                                        NSRect b);

}  // extern "C"

/// Whether p lies in one of the rectangles, boxed in `NSValue`s; looks no further than the first.
/// No for nil. An element that holds no rectangle raises `NSInvalidArgumentException`.
ZK_EXPORT bool ZKPointInRects(const NSRef<NSArray>& rects, NSPoint p);
