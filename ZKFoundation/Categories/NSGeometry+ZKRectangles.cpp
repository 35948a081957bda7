#include "ZKFoundation/Categories/NSGeometry+ZKRectangles.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <Foundation/NSException.h>
#include <Foundation/NSValue.h>

namespace {

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

NSRect ZKMakeRectFromPoint(NSPoint p) { return {p, {0, 0}}; }

NSRect ZKRectWithSizeAndOriginAtCenter(NSSize size) {
  return {{size.width * -0.5, size.height * -0.5}, size};
}

NSRect ZKMakeRectFromTwoPoints(NSPoint a, NSPoint b) {
  return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::abs(b.x - a.x), std::abs(b.y - a.y)}};
}

NSPoint ZKGetPointOfRect(NSUInteger handle, NSRect rect) {
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

bool ZKIsCorner(NSUInteger handle) { return handle >= ZKHandleMinXMinY && handle < ZKHandleCenter; }

NSUInteger ZKOppositePointIndex(NSUInteger handle) {
  constexpr std::array<NSUInteger, 9> opposites = {2, 3, 0, 1, 6, 7, 4, 5, 8};
  return handle < opposites.size() ? opposites[handle] : ~NSUInteger{0};
}

NSPoint ZKOppositePoint(NSUInteger handle, NSRect rect) {
  return ZKGetPointOfRect(ZKOppositePointIndex(handle), rect);
}

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

NSRect ZKCenterOnPoint(NSRect rect, NSPoint p) {
  return NSOffsetRect(rect, p.x - NSMidX(rect), p.y - NSMidY(rect));
}

NSRect ZKCenterOn(NSRect rect, NSPoint p) { return ZKCenterOnPoint(rect, p); }

namespace {

// Along one axis: grows [start, start + length] to include a coordinate.
void extend(CGFloat& start, CGFloat& length, CGFloat coordinate) {
  if (coordinate < start) {
    length += start - coordinate;
    start = coordinate;
  } else if (coordinate > start + length) {
    length = coordinate - start;
  }
}

void normalize(CGFloat& start, CGFloat& length) {
  if (length < 0) {
    start += length;
    length = -length;
  }
}

}  // namespace

NSRect ZKExtendRectByPoint(NSRect rect, NSPoint p) {
  extend(rect.origin.x, rect.size.width, p.x);
  extend(rect.origin.y, rect.size.height, p.y);
  return rect;
}

NSRect ZKUnionRect(NSRect a, NSRect b) {
  return ZKMakeRectFromTwoPoints({std::min(NSMinX(b), NSMinX(a)), std::min(NSMinY(b), NSMinY(a))},
                                 {std::max(NSMaxX(a), NSMaxX(b)), std::max(NSMaxY(a), NSMaxY(b))});
}

NSRect ZKNormalizedRect(NSRect rect) {
  normalize(rect.origin.x, rect.size.width);
  normalize(rect.origin.y, rect.size.height);
  return rect;
}

bool ZKIntersectsRect(bool usesCenter, NSRect a, NSRect b) {
  return usesCenter ? NSPointInRect({NSMidX(a), NSMidY(a)}, b) : NSIntersectsRect(a, b);
}

bool ZKAreSimilarRects(NSRect a, NSRect b, double tolerance) {
  const auto differ = [=](CGFloat u, CGFloat v) { return std::abs(u - v) > tolerance; };
  return !differ(a.origin.x, b.origin.x) && !differ(a.origin.y, b.origin.y) &&
         !differ(a.size.width, b.size.width) && !differ(a.size.height, b.size.height);
}

CGFloat ZKCoordinateForRectEdge(NSUInteger edge, NSRect rect) {
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
