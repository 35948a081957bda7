// Here the small functions become the library's own.
#define ZK_INLINE
#include "ZKFoundation/Categories/NSGeometry+ZKRectangles.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <Foundation/NSException.h>
#include <Foundation/NSValue.h>
#include <ZKFoundation/detail/Rectangles.h>

namespace {

struct Corners {
  NSPoint min;
  NSPoint max;

  void include(NSPoint p) {
    min = {std::min(min.x, p.x), std::min(min.y, p.y)};
    max = {std::max(max.x, p.x), std::max(max.y, p.y)};
  }
};

void dragMinX(NSRect& rect, CGFloat x) {
  rect.size.width -= x - rect.origin.x;
  rect.origin.x = x;
}
void dragMinY(NSRect& rect, CGFloat y) {
  rect.size.height -= y - rect.origin.y;
  rect.origin.y = y;
}
void dragMaxX(NSRect& rect, CGFloat x) { rect.size.width += x - NSMaxX(rect); }
void dragMaxY(NSRect& rect, CGFloat y) { rect.size.height += y - NSMaxY(rect); }

void moveHandle(NSRect& rect, NSUInteger handle, NSPoint p) {
  switch (handle) {
    case ZKHandleMinYEdge:
      return dragMinY(rect, p.y);
    case ZKHandleMinXEdge:
      return dragMinX(rect, p.x);
    case ZKHandleMaxYEdge:
      return dragMaxY(rect, p.y);
    case ZKHandleMaxXEdge:
      return dragMaxX(rect, p.x);
    case ZKHandleMinXMinY:
      dragMinX(rect, p.x);
      return dragMinY(rect, p.y);
    case ZKHandleMaxXMinY:
      dragMaxX(rect, p.x);
      return dragMinY(rect, p.y);
    case ZKHandleMaxXMaxY:
      dragMaxX(rect, p.x);
      return dragMaxY(rect, p.y);
    case ZKHandleMinXMaxY:
      dragMinX(rect, p.x);
      return dragMaxY(rect, p.y);
    default:
      return;
  }
}

// The handle that the dragged point has become. The comparisons of max-y with max-x are the
// contract, not a slip.
NSUInteger handleAfterMove(const NSRect& moved, NSUInteger handle, NSPoint p) {
  const CGFloat nx = NSMaxX(moved);
  const CGFloat ny = NSMaxY(moved);
  // For the handles of the max-x edge, whether it has not passed the min-x edge.
  const bool keepsX = nx >= NSMinX(moved);
  switch (handle) {
    case ZKHandleMinXEdge:
      return p.x <= nx ? handle : ZKHandleMaxXEdge;
    case ZKHandleMaxYEdge:
      return ny >= nx ? handle : ZKHandleMinYEdge;
    case ZKHandleMaxXEdge:
      return keepsX ? handle : ZKHandleMinXEdge;
    case ZKHandleMinXMinY:
      if (p.x <= nx) return p.y <= ny ? handle : ZKHandleMinXMaxY;
      return p.y > ny ? ZKHandleMaxXMaxY : ZKHandleMaxXMinY;
    case ZKHandleMaxXMinY:
      if (keepsX) return nx <= ny ? handle : ZKHandleMaxXMaxY;
      return nx > ny ? ZKHandleMinXMaxY : ZKHandleMinXMinY;
    case ZKHandleMaxXMaxY:
      if (keepsX) return ny >= nx ? handle : ZKHandleMaxXMinY;
      return ny < nx ? ZKHandleMinXMinY : ZKHandleMinXMaxY;
    case ZKHandleMinXMaxY:
      if (p.x <= nx) return ny >= nx ? handle : ZKHandleMinXMinY;
      return ny < nx ? ZKHandleMaxXMinY : ZKHandleMaxXMaxY;
    default:
      return handle;
  }
}

}  // namespace

NSUInteger ZKMovePointTo(NSRect* rect, NSUInteger handle, NSPoint p) {
  if (handle == ZKHandleCenter) {
    *rect = ZKCenterOnPoint(*rect, p);
    return handle;
  }
  moveHandle(*rect, handle, p);
  const NSUInteger result = handleAfterMove(*rect, handle, p);
  const bool isMinYOverMaxX = handle == ZKHandleMinYEdge && NSMaxX(*rect) > NSMaxY(*rect);
  if (result != handle || isMinYOverMaxX) *rect = ZKNormalizedRect(*rect);
  return result;
}

NSPoint ZKAlignRectangles(NSUInteger alignment, NSRect a, NSRect b) {
  const CGFloat centerX = NSMinX(b) + (b.size.width * 0.5 - a.size.width * 0.5);
  const CGFloat centerY = NSMinY(b) + (b.size.height * 0.5 - a.size.height * 0.5);
  const CGFloat left = NSMinX(b);
  const CGFloat right = NSMaxX(b) - a.size.width;
  const CGFloat bottom = NSMinY(b);
  const CGFloat top = NSMaxY(b) - a.size.height;
  switch (alignment) {
    case ZKAlignTop:
      return {centerX, top};
    case ZKAlignTopLeft:
      return {left, top};
    case ZKAlignTopRight:
      return {right, top};
    case ZKAlignLeft:
      return {left, centerY};
    case ZKAlignBottom:
      return {centerX, bottom};
    case ZKAlignBottomLeft:
      return {left, bottom};
    case ZKAlignBottomRight:
      return {right, bottom};
    case ZKAlignRight:
      return {right, centerY};
    default:
      return {centerX, centerY};
  }
}

NSRect ZKScaleRectToFitInRect(NSUInteger scaling, NSUInteger alignment, NSRect a, NSRect b) {
  if (NSEqualRects(a, b)) return a;
  const CGFloat sx = b.size.width / a.size.width;
  const CGFloat sy = b.size.height / a.size.height;
  const CGFloat factor = sx < sy ? sx : sy;
  const NSSize proportional = {a.size.width * factor, a.size.height * factor};
  NSSize size = b.size;
  if (scaling == ZKScaleProportionallyUpOrDown) {
    size = proportional;
  } else if (scaling == ZKScaleProportionallyDown) {
    const bool isLarger = a.size.width > b.size.width || a.size.height > b.size.height;
    size = isLarger ? proportional : a.size;
  }
  return {ZKAlignRectangles(alignment, {a.origin, size}, b), size};
}

NSRect ZKRectAroundPoints(std::span<const NSPoint> points) {
  if (points.empty()) return NSZeroRect;
  Corners corners = {points.front(), points.front()};
  for (const NSPoint p : points) corners.include(p);
  return ZKMakeRectFromTwoPoints(corners.min, corners.max);
}

NSRect ZKRectAroundRects(std::span<const NSRect> rects) {
  if (rects.empty()) return NSZeroRect;
  Corners corners = {rects.front().origin, rects.front().origin};
  for (const NSRect& rect : rects) {
    corners.include(rect.origin);
    corners.include({NSMaxX(rect), NSMaxY(rect)});
  }
  return ZKMakeRectFromTwoPoints(corners.min, corners.max);
}

bool ZKPointInRects(const NSRef<NSArray>& rects, NSPoint p) {
  if (!rects) return false;
  // Held while it is walked, whoever else lets go of it.
  const auto held = NSRef<NSArray>::share(rects.get());
  return std::ranges::any_of(held->objects(), [&](const NSRef<NSObject>& element) {
    const auto* const value = element.cast<NSValue>();
    if (value == nullptr) {
      NSException::raise(NSInvalidArgumentException,
                         "an element is not an NSValue (in 'ZKPointInRects')");
    }
    const auto* const rect = value->get<NSRect>();
    // What is no rectangle raises.
    return NSPointInRect(p, rect != nullptr ? *rect : value->rectValue());
  });
}
