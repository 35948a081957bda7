// Here the small functions become the library's own.
#define ZK_INLINE
#include "ZKFoundation/Categories/NSGeometry+ZKAffineTransform.h"

#include <algorithm>
#include <cmath>

#include <ZKFoundation/Categories/ZKUnitScale.h>
#include <ZKFoundation/detail/Transforms.h>

ZKAffineTransform ZKMakeRotation(double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {cosine, sine, -sine, cosine, 0, 0};
}

std::optional<ZKAffineTransform> ZKInverseTransform(ZKAffineTransform transform) {
  // Each axis of its own size: one may be many orders of magnitude longer than the other.
  const double scaleX = ZKUnitScale(std::max(std::abs(transform.a), std::abs(transform.b)));
  const double scaleY = ZKUnitScale(std::max(std::abs(transform.c), std::abs(transform.d)));
  const double a = transform.a * scaleX;
  const double b = transform.b * scaleX;
  const double c = transform.c * scaleY;
  const double d = transform.d * scaleY;
  const double determinant = a * d - b * c;
  const double rounding = 0x1p-52 * (std::abs(a * d) + std::abs(b * c));
  if (!(std::abs(determinant) > rounding)) return std::nullopt;
  const double factorX = scaleX / determinant;
  const double factorY = scaleY / determinant;
  ZKAffineTransform inverse = {d * factorX, -b * factorY, -c * factorX, a * factorY, 0, 0};
  const NSPoint origin = ZKTransformVector({transform.tx, transform.ty}, inverse);
  inverse.tx = -origin.x;
  inverse.ty = -origin.y;
  const auto isFinite = [](const ZKAffineTransform& t) {
    return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
           std::isfinite(t.tx) && std::isfinite(t.ty);
  };
  if (!isFinite(transform) || !isFinite(inverse)) return std::nullopt;
  return inverse;
}
