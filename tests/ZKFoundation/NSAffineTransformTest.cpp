#include "tests/ZKFoundation/CurveCases.h"

#include <numbers>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(NSAffineTransform, MovesScalesAndTurns) {
  EXPECT_EQ(ZKTransformPoint({3, 4}, ZKMakeTranslation(10, 20)), NSMakePoint(13, 24));
  EXPECT_EQ(ZKTransformVector({3, 4}, ZKMakeTranslation(10, 20)), NSMakePoint(3, 4));
  EXPECT_EQ(ZKTransformSize({3, 4}, ZKMakeScaling(2, -1)), NSMakeSize(6, -4));
  const ZKAffineTransform quarter = ZKMakeRotation(std::numbers::pi / 2);
  EXPECT_LT(distance(ZKTransformPoint({3, 4}, quarter), {-4, 3}), 1e-15);
  EXPECT_EQ(
      ZKTransformPoint({1, 1}, ZKConcatTransforms(ZKMakeTranslation(1, 0), ZKMakeScaling(10, 10))),
      NSMakePoint(20, 10));
  EXPECT_EQ(ZKTransformRect({{1, 2}, {3, 4}}, ZKMakeScaling(-1, 2)), NSMakeRect(-4, 4, 3, 8));
  EXPECT_EQ(ZKTransformRect({{0.1, 0.2}, {0.3, -0.7}}, ZKIdentityTransform),
            NSMakeRect(0.1, 0.2 - 0.7, 0.3, 0.7));
}

TEST(NSAffineTransform, IsUndoneByItsInverse) {
  expectProperty("at any scale, and none is given for a singular one", [] {
    const auto number = [] { return *rc::gen::inRange(-9, 10) / 3.0; };
    const double unit = std::ldexp(1.0, *rc::gen::element(-900, 0, 300));
    const ZKAffineTransform plain = {number(), number(), number(), number(), number(), number()};
    const ZKAffineTransform transform = ZKConcatTransforms(plain, ZKMakeScaling(unit, unit));
    const auto inverse = ZKInverseTransform(transform);
    const double determinant = plain.a * plain.d - plain.b * plain.c;
    RC_ASSERT(inverse.has_value() == (std::abs(determinant) > 1e-9));
    if (!inverse) return;
    const std::array<NSPoint, 2> points = {{{number(), number()}, {number(), number()}}};
    std::array<NSPoint, 2> back;
    ZKTransformPoints(points.data(), 2, ZKConcatTransforms(transform, *inverse), back.data());
    for (std::size_t k = 0; k < 2; ++k) RC_ASSERT(distance(points[k], back[k]) < 1e-12);
  });
  for (const double k : {1e155, 1e160, 1e300}) {
    const auto inverse = ZKInverseTransform(ZKMakeScaling(k, 1 / k));
    ASSERT_TRUE(inverse);
    EXPECT_DOUBLE_EQ(inverse->a, 1 / k);
    EXPECT_DOUBLE_EQ(inverse->d, k);
  }
  EXPECT_FALSE(ZKInverseTransform(ZKMakeTranslation(infinity, 0)));
  EXPECT_FALSE(ZKInverseTransform(ZKMakeScaling(infinity, 1)));
}

}  // namespace
