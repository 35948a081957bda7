#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/Categories/NSGeometry+ZKRectangles.h>

// NOLINTBEGIN(misc-definitions-in-headers): they are inline but in the source that is to hold them.

ZK_INLINE NSRect ZKMakeRectFromPoint(NSPoint p) { return {p, {0, 0}}; }

ZK_INLINE NSRect ZKRectWithSizeAndOriginAtCenter(NSSize size) {
  return {{size.width * -0.5, size.height * -0.5}, size};
}

ZK_INLINE NSRect ZKMakeRectFromTwoPoints(NSPoint a, NSPoint b) {
  return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::abs(b.x - a.x), std::abs(b.y - a.y)}};
}

ZK_INLINE NSPoint ZKGetPointOfRect(NSUInteger handle, NSRect rect) {
  switch (handle) {
    case ZKHandleMinYEdge:
      return {NSMidX(rect), NSMinY(rect)};
    case ZKHandleMinXEdge:
      return {NSMinX(rect), NSMidY(rect)};
    case ZKHandleMaxYEdge:
      return {NSMidX(rect), NSMaxY(rect)};
    case ZKHandleMaxXEdge:
      return {NSMaxX(rect), NSMidY(rect)};
    case ZKHandleMaxXMinY:
      return {NSMaxX(rect), NSMinY(rect)};
    case ZKHandleMaxXMaxY:
      return {NSMaxX(rect), NSMaxY(rect)};
    case ZKHandleMinXMaxY:
      return {NSMinX(rect), NSMaxY(rect)};
    case ZKHandleCenter:
      return {NSMidX(rect), NSMidY(rect)};
    default:
      return rect.origin;
  }
}

ZK_INLINE bool ZKIsCorner(NSUInteger handle) {
  return handle >= ZKHandleMinXMinY && handle < ZKHandleCenter;
}

ZK_INLINE NSUInteger ZKOppositePointIndex(NSUInteger handle) {
  constexpr std::array<NSUInteger, 9> opposites = {2, 3, 0, 1, 6, 7, 4, 5, 8};
  return handle < opposites.size() ? opposites[handle] : ~NSUInteger{0};
}

ZK_INLINE NSPoint ZKOppositePoint(NSUInteger handle, NSRect rect) {
  return ZKGetPointOfRect(ZKOppositePointIndex(handle), rect);
}

ZK_INLINE NSRect ZKCenterOnPoint(NSRect rect, NSPoint p) {
  return NSOffsetRect(rect, p.x - NSMidX(rect), p.y - NSMidY(rect));
}

ZK_INLINE NSRect ZKCenterOn(NSRect rect, NSPoint p) { return ZKCenterOnPoint(rect, p); }

/// Along one axis: grows [start, start + length] to include a coordinate.
inline void ZKExtend(CGFloat& start, CGFloat& length, CGFloat coordinate) {
  if (coordinate < start) {
    length += start - coordinate;
    start = coordinate;
  } else if (coordinate > start + length) {
    length = coordinate - start;
  }
}

inline void ZKNormalize(CGFloat& start, CGFloat& length) {
  if (length < 0) {
    start += length;
    length = -length;
  }
}

ZK_INLINE NSRect ZKExtendRectByPoint(NSRect rect, NSPoint p) {
  ZKExtend(rect.origin.x, rect.size.width, p.x);
  ZKExtend(rect.origin.y, rect.size.height, p.y);
  return rect;
}

ZK_INLINE NSRect ZKUnionRect(NSRect a, NSRect b) {
  return ZKMakeRectFromTwoPoints({std::min(NSMinX(b), NSMinX(a)), std::min(NSMinY(b), NSMinY(a))},
                                 {std::max(NSMaxX(a), NSMaxX(b)), std::max(NSMaxY(a), NSMaxY(b))});
}

ZK_INLINE NSRect ZKNormalizedRect(NSRect rect) {
  ZKNormalize(rect.origin.x, rect.size.width);
  ZKNormalize(rect.origin.y, rect.size.height);
  return rect;
}

ZK_INLINE bool ZKIntersectsRect(bool usesCenter, NSRect a, NSRect b) {
  return usesCenter ? NSPointInRect({NSMidX(a), NSMidY(a)}, b) : NSIntersectsRect(a, b);
}

ZK_INLINE bool ZKAreSimilarRects(NSRect a, NSRect b, double tolerance) {
  const auto differ = [=](CGFloat u, CGFloat v) { return std::abs(u - v) > tolerance; };
  return !differ(a.origin.x, b.origin.x) && !differ(a.origin.y, b.origin.y) &&
         !differ(a.size.width, b.size.width) && !differ(a.size.height, b.size.height);
}

ZK_INLINE CGFloat ZKCoordinateForRectEdge(NSUInteger edge, NSRect rect) {
  switch (edge) {
    case NSMinXEdge:
      return NSMinX(rect);
    case NSMinYEdge:
      return NSMinY(rect);
    case NSMaxXEdge:
      return NSMaxX(rect);
    case NSMaxYEdge:
      return NSMaxY(rect);
    default:
      return 0.0;
  }
}

// NOLINTEND(misc-definitions-in-headers)
