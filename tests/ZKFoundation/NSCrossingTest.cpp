#include "tests/ZKFoundation/CurveCases.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr Cubic parabola = {{{-1, 1}, {-1.0 / 3, -1.0 / 3}, {1.0 / 3, -1.0 / 3}, {1, 1}}};

NSPoint anyPoint() {
  return {static_cast<double>(*rc::gen::inRange(-10, 11)),
          static_cast<double>(*rc::gen::inRange(-10, 11))};
}

double anyParameter() { return *rc::gen::inRange(0, 33) / 32.0; }

auto valuesOf(const ZKCrossing& c) { return std::tuple(c.t, c.u, c.point); }

bool hasPoint(const auto& crossings, NSPoint p, double tolerance) {
  return std::ranges::any_of(
      crossings, [=](const ZKCrossing& c) { return distance(c.point, p) <= tolerance; });
}

TEST(NSCrossing, IsWhereACurveAndALineMeet) {
  const auto three =
      ZKCrossingsWithLine(Cubic{{{0, -1}, {1, 5}, {2, -5}, {3, 1}}}.data(), {9, 0}, {8, 0});
  ASSERT_EQ(three.size(), 3U);
  EXPECT_NEAR(three[0].t, 0.5 - std::sqrt(3) / 4, 1e-15);
  EXPECT_EQ(valuesOf(three[1]), std::tuple(0.5, 7.5, NSMakePoint(1.5, 0)));
  // A touch.
  const auto touch = ZKCrossingsWithLine(parabola.data(), {-5, 0}, {5, 0});
  ASSERT_EQ(touch.size(), 1U);
  EXPECT_NEAR(touch[0].t, 0.5, 1e-15);
  EXPECT_TRUE(ZKCrossingsWithLine(parabola.data(), {2, 2}, {2, 2}).empty());
  EXPECT_TRUE(ZKCrossingsWithLine(parabola.data(), {2, nan}, {0, 2}).empty());
  expectProperty("at a point of both, which is found", [] {
    const Cubic v = anyCubic();
    const double t = anyParameter();
    const NSPoint a = anyPoint(), planted = at(v, t);
    RC_PRE(distance(a, planted) > 0.1);
    const NSPoint b = ZKInterpolate(a, planted, *rc::gen::element(0.25, 1.0, 2.0));
    const auto onLine = ZKCrossingsWithLine(v.data(), a, b);
    const auto onSegment = ZKCrossingsWithSegment(v.data(), a, b);
    for (const ZKCrossing& c : onLine) {
      RC_ASSERT(distance(c.point, ZKInterpolate(a, b, c.u)) < 1e-12);
      RC_ASSERT(distance(c.point, at(v, c.t)) < 1e-12);
    }
    RC_ASSERT(onLine.isOverlap() || hasPoint(onLine, planted, 1e-6));
    const auto countWithin = [&](double slack) {
      return std::ranges::count_if(
          onLine, [=](const ZKCrossing& c) { return c.u >= -slack && c.u <= 1 + slack; });
    };
    if (!onLine.isOverlap()) {
      RC_ASSERT(std::ssize(onSegment) >= countWithin(-1e-12));
      RC_ASSERT(std::ssize(onSegment) <= countWithin(1e-12));
    }
    const auto large =
        ZKCrossingsWithLine(scaled(v, 0x1p1018).data(), scaled({{a, b, a, b}}, 0x1p1018)[0],
                            scaled({{a, b, a, b}}, 0x1p1018)[1]);
    RC_ASSERT(std::ranges::equal(large, onLine, {}, &ZKCrossing::t, &ZKCrossing::t));
  });
}

TEST(NSCrossing, OfWhatLiesOnALineIsItsEnds) {
  const Cubic straight = {{{0, 0}, {3, 3}, {6, 6}, {9, 9}}};
  const auto onLine = ZKCrossingsWithLine(straight.data(), {1, 1}, {2, 2});
  ASSERT_TRUE(onLine.isOverlap() && onLine.size() == 2);
  EXPECT_EQ(valuesOf(onLine[0]), std::tuple(0.0, -1.0, NSMakePoint(0, 0)));
  EXPECT_EQ(valuesOf(onLine[1]), std::tuple(1.0, 8.0, NSMakePoint(9, 9)));
  const auto onSegment = ZKCrossingsWithSegment(straight.data(), {-3, -3}, {6, 6});
  ASSERT_TRUE(onSegment.isOverlap() && onSegment.size() == 2);
  EXPECT_EQ(onSegment[0].point, NSMakePoint(0, 0));
  EXPECT_EQ(onSegment[1].point, NSMakePoint(6, 6));
  const Cubic folded = {{{0, 0}, {-2, 0}, {3, 0}, {1, 0}}};
  const auto ends = ZKCrossingsWithSegment(folded.data(), {-0.2, 0}, {1.2, 0});
  ASSERT_TRUE(ends.isOverlap() && ends.size() == 4);
  EXPECT_TRUE(ends[0].t == 0 && ends[1].u == 0 && ends[2].u == 1 && ends[3].t == 1);
  const Cubic closed = {{{0, 0}, {1, 0}, {2, 0}, {0, 0}}};
  const auto both = ZKCrossingsWithSegment(closed.data(), {-0.04, 0}, {0, 0});
  EXPECT_TRUE(!both.isOverlap() && both.size() == 2 && both[0].t == 0 && both[1].t == 1);
  const auto end = ZKCrossingsWithSegment(straight.data(), {9, 9}, {20, 20});
  EXPECT_TRUE(!end.isOverlap() && end.size() == 1 && end[0].t == 1 && end[0].u == 0);
  EXPECT_TRUE(ZKCrossingsWithSegment(straight.data(), {10, 10}, {20, 20}).empty());
}

// Whether two curves, as 300 chords each, cross only near places that were found.
bool isComplete(const Cubic& a, const Cubic& b, const ZKCrossingList<9>& found) {
  constexpr int count = 300;
  std::array<NSPoint, count + 1> onA, onB;
  for (int k = 0; k <= count; ++k) onA[std::size_t(k)] = at(a, k / double{count});
  for (int k = 0; k <= count; ++k) onB[std::size_t(k)] = at(b, k / double{count});
  // Beside an end a chord may cross what the curve does not reach.
  for (std::size_t j = 1; j + 1 < count; ++j) {
    for (std::size_t k = 1; k + 1 < count; ++k) {
      const NSPoint p = ZKPointIntersection2(onA[j], onA[j + 1], onB[k], onB[k + 1]);
      const bool isCrossing =
          p != ZKNotFoundPoint &&
          ZKPointIntersection2(onB[k], onB[k + 1], onA[j], onA[j + 1]) != ZKNotFoundPoint;
      // Chords that are almost parallel may cross where the curves pass by each other.
      const NSPoint v = onA[j + 1] - onA[j], w = onB[k + 1] - onB[k];
      const bool isSteep = std::abs(v.x * w.y - v.y * w.x) >
                           0.1 * std::sqrt(ZKSquaredLength(v) * ZKSquaredLength(w));
      if (isCrossing && isSteep && !hasPoint(found, p, 0.3)) return false;
    }
  }
  return true;
}

// How far from a crossing another answer may be: more where both run the same way, or stand still.
double tolerance(const Cubic& a, double t, const Cubic& b, double u, double usual) {
  const auto direction = [](const Cubic& v, double s) {
    return ZKDiffPoint(at(v, std::min(s + 1e-5, 1.0)), at(v, std::max(s - 1e-5, 0.0)));
  };
  const NSPoint v = direction(a, t), w = direction(b, u);
  const double sizes = std::sqrt(ZKSquaredLength(v) * ZKSquaredLength(w));
  return std::abs(v.x * w.y - v.y * w.x) > 1e-3 * sizes ? usual : 1e-3;
}

TEST(NSCrossing, IsWhereTwoCurvesMeet) {
  expectProperty("at a point of both, which is found, as are all others", [] {
    const Cubic a = anyCubic();
    Cubic b = anyCubic();
    const double t = anyParameter(), u = anyParameter();
    const NSPoint planted = at(a, t), offset = ZKDiffPoint(planted, at(b, u));
    ZKTransformPoints(b.data(), 4, ZKMakeTranslation(offset.x, offset.y), b.data());
    const auto found = ZKCrossingsOfCurves(a.data(), b.data());
    for (const ZKCrossing& c : found) {
      RC_ASSERT(distance(c.point, at(a, c.t)) < 1e-12);
      RC_ASSERT(distance(c.point, at(b, c.u)) < (found.isOverlap() ? 1e-7 : 1e-12));
    }
    if (found.isOverlap()) return;
    RC_ASSERT(hasPoint(found, planted, tolerance(a, t, b, u, 1e-6)));
    if (*rc::gen::inRange(0, 5) == 0) RC_ASSERT(isComplete(a, b, found));
    for (const double scale : {0x1p1018, 0x1p-1030}) {
      const auto other = ZKCrossingsOfCurves(scaled(a, scale).data(), scaled(b, scale).data());
      RC_ASSERT(std::ranges::equal(other, found, {}, &ZKCrossing::t, &ZKCrossing::t));
    }
    const auto swapped = ZKCrossingsOfCurves(b.data(), a.data());
    for (const ZKCrossing& c : found) {
      RC_ASSERT(swapped.isOverlap() || hasPoint(swapped, c.point, tolerance(a, c.t, b, c.u, 1e-5)));
    }
  });
  // y = T(x) and x = T(y) for Chebyshev's polynomial of degree 3.
  const Cubic wave = {{{-1, -1}, {-1.0 / 3, 5}, {1.0 / 3, -5}, {1, 1}}};
  const Cubic other = {{{-1, -1}, {5, -1.0 / 3}, {-5, 1.0 / 3}, {1, 1}}};
  const auto nine = ZKCrossingsOfCurves(wave.data(), other.data());
  EXPECT_EQ(nine.size(), 9U);
  for (const int parts : {4, 5}) {
    for (int k = 0; k <= parts; ++k) {
      const double x = std::cos(k * std::numbers::pi / parts);
      EXPECT_TRUE(hasPoint(nine, {x, 4 * x * x * x - 3 * x}, 1e-14)) << x;
    }
  }
}

TEST(NSCrossing, TellsCurvesApartThatAlmostCoincide) {
  struct Row {
    Cubic a, b;
    bool isOverlap;
    std::vector<std::pair<double, double>> places;
  };
  for (const auto& [a, b, isOverlap, places] : std::vector<Row>{
           // All but an end is shared, as when that is dragged.
           {{{{0, 0}, {0, 1}, {1, 1}, {0, 0}}},
            {{{0, 0}, {0, 1}, {1, 1}, {1, 0}}},
            false,
            {{0, 0}, {0.558257569496, 0.441742430504}, {1, 0}}},
           {{{{1, 2}, {1, 2}, {0, -2}, {1, -1}}},
            {{{1, 2}, {1, 2}, {-7, 1}, {8, -8}}},
            false,
            {{0, 0}}},
           // Ends that stand still, on curves that run the same way.
           {{{{0, 2}, {1, 0}, {0, 2}, {2, 0}}},
            {{{0, 2}, {0, 2}, {1, 0}, {1, 0}}},
            false,
            {{0, 0}}},
           {{{{2, 2}, {2, 2}, {2, 2}, {2, 1}}},
            {{{2, 2}, {2, 0}, {0, 1}, {1, 0}}},
            false,
            {{0, 0}}},
           // Ends beside the other curve, at 1e-7 and at 1e-9 of it.
           {{{{0, 0}, {1, 7}, {5, -3}, {9, 2}}},
            {{{0, -1e-7}, {1, 7 - 1e-7}, {5, -3 + 1e-7}, {9, 2 + 1e-7}}},
            false,
            {{0.5, 0.5}}},
           {{{{0, -5.0000013969838619},
              {1, 3.0000000931322575},
              {2, 6.0000000186264515},
              {3, -6.0000000111758709}}},
            {{{0, -5}, {1, 3}, {2, 6}, {3, -6}}},
            false,
            {{0.8333, 0.8333}}},
           // An end on the other curve, which runs almost the same way.
           {{{{-3, 0}, {3, -2}, {3, -1}, {2, 2}}},
            {{{2.3385037913561222, -0.68005968254446314},
              {2.129539791796208, -0.97257849927378681},
              {1.6938329565636936, -1.0935751846443533},
              {0.93786924395646909, -1.0203979481692711}}},
            false,
            {{0.43675, 0.49912}, {0.570314308376486, 0}}},
           // A small curve that crosses twice where both are almost straight.
           {{{{8, -1}, {-5, 0}, {-2, 3}, {2, 0}}},
            {{{1.6372151759523788, -0.14671581908524264},
              {1.6371208018482197, -0.1466949781661584},
              {1.6370264302294479, -0.14667413720988431},
              {1.6369320610934703, -0.14665329619180759}}},
            false,
            {{0.217338, 0.2513}, {0.217342, 0.5156}}},
           // A curve that meets itself, and half of it.
           {{{{2, -2}, {-2, -2}, {1, -1}, {2, -2}}},
            {{{2, -2}, {0, -2}, {-0.25, -1.75}, {0.125, -1.625}}},
            true,
            {{0, 0}, {0.5, 1}, {1, 0}}},
       }) {
    const auto found = ZKCrossingsOfCurves(a.data(), b.data());
    const auto swapped = ZKCrossingsOfCurves(b.data(), a.data());
    EXPECT_TRUE(found.isOverlap() == isOverlap && swapped.isOverlap() == isOverlap);
    ASSERT_TRUE(found.size() == places.size() && swapped.size() == places.size());
    for (std::size_t k = 0; k < places.size(); ++k) {
      const auto [t, u] = places[k];
      EXPECT_NEAR(found[k].t, t, t == 0 || t == 1 ? 0 : 4e-3);
      EXPECT_NEAR(found[k].u, u, u == 0 || u == 1 ? 0 : 4e-3);
    }
  }
}

TEST(NSCrossing, CountsTouchesOnceAndFollowsNoOverlap) {
  Cubic hanging = parabola;
  ZKTransformPoints(hanging.data(), 4, ZKMakeScaling(1, -1), hanging.data());
  const auto touch = ZKCrossingsOfCurves(parabola.data(), hanging.data());
  ASSERT_EQ(touch.size(), 1U);
  EXPECT_NEAR(touch[0].t, 0.5, 1e-12);
  EXPECT_LT(distance(touch[0].point, {0, 0}), 1e-12);

  const Cubic curve = {{{0, 0}, {1, 7}, {5, -3}, {9, 2}}};
  Cubic rest, start, end, middle;
  ZKBezier(curve.data(), 3, 0.25, start.data(), rest.data());
  ZKBezier(rest.data(), 3, 2.0 / 3, middle.data(), end.data());
  const auto join = ZKCrossingsOfCurves(start.data(), rest.data());
  EXPECT_TRUE(join.size() == 1 && join[0].t == 1 && join[0].u == 0 && !join.isOverlap());
  EXPECT_TRUE(ZKCrossingsOfCurves(start.data(), end.data()).empty());
  for (const auto& [part, low, high] :
       {std::tuple(curve, 0.0, 1.0), {middle, 0.25, 0.75}, {end, 0.75, 1.0}}) {
    const auto shared = ZKCrossingsOfCurves(curve.data(), part.data());
    ASSERT_TRUE(shared.isOverlap() && shared.size() == 2) << low;
    EXPECT_NEAR(shared[0].t, low, 1e-9);
    EXPECT_NEAR(shared[1].t, high, 1e-9);
    EXPECT_TRUE(shared[0].u == 0 && shared[1].u == 1);
  }
  // Beside each other, at a distance that doubles can tell.
  Cubic beside = curve;
  for (NSPoint& p : beside) p.y += 1e-7;
  EXPECT_TRUE(ZKCrossingsOfCurves(curve.data(), beside.data()).empty());
  const Cubic dot = {{at(curve, 0.3), at(curve, 0.3), at(curve, 0.3), at(curve, 0.3)}};
  const auto onDot = ZKCrossingsOfCurves(curve.data(), dot.data());
  ASSERT_EQ(onDot.size(), 1U);
  EXPECT_NEAR(onDot[0].t, 0.3, 1e-12);
  Cubic broken = curve;
  broken[2].x = nan;
  EXPECT_TRUE(ZKCrossingsOfCurves(curve.data(), broken.data()).empty());
}

}  // namespace
