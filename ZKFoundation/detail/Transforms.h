#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <ZKFoundation/Categories/NSGeometry+ZKAffineTransform.h>

// NOLINTBEGIN(misc-definitions-in-headers): they are inline but in the source that is to hold them.

ZK_INLINE ZKAffineTransform ZKMakeTranslation(CGFloat dx, CGFloat dy) {
  return {1, 0, 0, 1, dx, dy};
}

ZK_INLINE ZKAffineTransform ZKMakeScaling(CGFloat sx, CGFloat sy) { return {sx, 0, 0, sy, 0, 0}; }

ZK_INLINE NSPoint ZKTransformVector(NSPoint v, ZKAffineTransform transform) {
  return {transform.a * v.x + transform.c * v.y, transform.b * v.x + transform.d * v.y};
}

ZK_INLINE NSPoint ZKTransformPoint(NSPoint p, ZKAffineTransform transform) {
  const NSPoint v = ZKTransformVector(p, transform);
  return {v.x + transform.tx, v.y + transform.ty};
}

ZK_INLINE NSSize ZKTransformSize(NSSize size, ZKAffineTransform transform) {
  const NSPoint v = ZKTransformVector({size.width, size.height}, transform);
  return {v.x, v.y};
}

ZK_INLINE ZKAffineTransform ZKConcatTransforms(ZKAffineTransform first, ZKAffineTransform second) {
  const NSPoint x = ZKTransformVector({first.a, first.b}, second);
  const NSPoint y = ZKTransformVector({first.c, first.d}, second);
  const NSPoint origin = ZKTransformPoint({first.tx, first.ty}, second);
  return {x.x, x.y, y.x, y.y, origin.x, origin.y};
}

ZK_INLINE NSRect ZKTransformRect(NSRect rect, ZKAffineTransform transform) {
  const auto along = [&](CGFloat ofX, CGFloat ofY, CGFloat& start, CGFloat& length) {
    const CGFloat x = ofX * rect.size.width;
    const CGFloat y = ofY * rect.size.height;
    start += std::min(x, 0.0) + std::min(y, 0.0);
    length = std::abs(x) + std::abs(y);
  };
  NSRect result = {ZKTransformPoint(rect.origin, transform), {0, 0}};
  along(transform.a, transform.c, result.origin.x, result.size.width);
  along(transform.b, transform.d, result.origin.y, result.size.height);
  return result;
}

ZK_INLINE void ZKTransformPoints(const NSPoint* points, std::size_t count,
                                 ZKAffineTransform transform, NSPoint* places) {
  for (std::size_t k = 0; k < count; ++k) places[k] = ZKTransformPoint(points[k], transform);
}

// NOLINTEND(misc-definitions-in-headers)
