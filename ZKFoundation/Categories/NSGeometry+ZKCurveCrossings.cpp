#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include <ZKFoundation/Categories/NSGeometry+ZKCrossings.h>
#include <ZKFoundation/Categories/NSGeometry+ZKCurves.h>
#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/ZKUnitScale.h>
#include <ZKFoundation/detail/Vector.h>

namespace {

using Cubic = std::array<ZKVector, 4>;

// Both curves have a size of about 1. Gaps that are not wider may come from rounding alone.
constexpr double gap = 0x1p-49;
// Points that are no farther from each other are the same.
constexpr double meeting = 0x1p-47;
// Crossings that are no farther from each other are the same.
constexpr double likeness = 0x1p-22;
// So far from a touch may flat curves still be too near to each other to tell.
constexpr double contact = 0x1p-18;
// So far apart may parameters of the same crossing be where a curve stands still.
constexpr double standstill = 0x1p-12;

double sizeOf(ZKVector v) { return std::max(std::abs(v.x()), std::abs(v.y())); }

struct Motion {
  ZKVector point;
  ZKVector first;
  ZKVector second;
};

Motion at(const Cubic& v, double t) {
  const ZKVector v01 = ZKLerp(v[0], v[1], t);
  const ZKVector v12 = ZKLerp(v[1], v[2], t);
  const ZKVector v23 = ZKLerp(v[2], v[3], t);
  const ZKVector v012 = ZKLerp(v01, v12, t);
  const ZKVector v123 = ZKLerp(v12, v23, t);
  return {ZKLerp(v012, v123, t), (v123 - v012) * 3, (v23 - v12 - (v12 - v01)) * 6};
}

// A part of a curve, from one parameter to another.
class Piece {
 public:
  Piece(const Cubic& points, double from, double to)
      : v(points),
        low(from),
        high(to),
        _least(min(min(v[0], v[1]), min(v[2], v[3]))),
        _greatest(max(max(v[0], v[1]), max(v[2], v[3]))) {}

  [[nodiscard]] double middle() const { return 0.5 * (low + high); }
  [[nodiscard]] double size() const { return sizeOf(_greatest - _least); }
  [[nodiscard]] bool contains(double t) const { return t >= low - 0x1p-40 && t <= high + 0x1p-40; }

  [[nodiscard]] Piece half(bool isSecond) const {
    const ZKVector v01 = (v[0] + v[1]) * 0.5;
    const ZKVector v12 = (v[1] + v[2]) * 0.5;
    const ZKVector v23 = (v[2] + v[3]) * 0.5;
    const ZKVector v012 = (v01 + v12) * 0.5;
    const ZKVector v123 = (v12 + v23) * 0.5;
    const ZKVector center = (v012 + v123) * 0.5;
    return isSecond ? Piece({center, v123, v23, v[3]}, middle(), high)
                    : Piece({v[0], v01, v012, center}, low, middle());
  }

  [[nodiscard]] bool isApartFrom(const Piece& other) const {
    const ZKVector apart = max(_least - other._greatest, other._least - _greatest);
    return std::max(apart.x(), apart.y()) > gap;
  }

  // Whether the other is on one side of the strip along the chord in which this one lies.
  [[nodiscard]] bool isBeside(const Piece& other) const {
    const ZKVector chord = v[3] - v[0];
    const double h1 = cross(chord, v[1] - v[0]);
    const double h2 = cross(chord, v[2] - v[0]);
    // How far a cubic follows its control points: 3/4 to one side, 4/9 to both.
    const double part = h1 * h2 > 0 ? 0.75 : 4.0 / 9;
    const double slack = gap * (std::abs(chord.x()) + std::abs(chord.y()));
    const double top = part * std::max({h1, h2, 0.0}) + slack;
    const double bottom = part * std::min({h1, h2, 0.0}) - slack;
    const std::array<double, 4> heights = {
        cross(chord, other.v[0] - v[0]), cross(chord, other.v[1] - v[0]),
        cross(chord, other.v[2] - v[0]), cross(chord, other.v[3] - v[0])};
    const auto isAll = [&](auto test) { return std::ranges::all_of(heights, test); };
    return isAll([=](double h) { return h > top; }) || isAll([=](double h) { return h < bottom; });
  }

  // Whether no tangent of this one is parallel to any of the other, so that they cross once at
  // most: the chord between two crossings would have the direction of means of both.
  [[nodiscard]] bool turnsAwayFrom(const Piece& other) const {
    double least = 0;
    double greatest = 0;
    double sum = 0;
    for (std::size_t k = 1; k < v.size(); ++k) {
      for (std::size_t j = 1; j < v.size(); ++j) {
        const double turn = cross(v[k] - v[k - 1], other.v[j] - other.v[j - 1]);
        least = std::min(least, turn);
        greatest = std::max(greatest, turn);
        sum += turn;
      }
    }
    return (least == 0 || greatest == 0) && std::abs(sum) > 0x1p-40 * size() * other.size();
  }

  Cubic v;
  double low;
  double high;

 private:
  ZKVector _least;
  ZKVector _greatest;
};

// Parameters at which curves meet, or among which they are too near to each other to tell.
struct Meeting {
  double t;
  double u;
  double lowestT, highestT;
  double lowestU, highestU;
};

class CurveCrossings {
 public:
  CurveCrossings(const Cubic& first, const Cubic& second) : _first(first), _second(second) {}

  // Finds the crossings, with points of this curve.
  [[nodiscard]] ZKCrossingList<9> find(const NSPoint* points) {
    search(Piece(_first, 0, 1), Piece(_second, 0, 1));
    ZKCrossingList<9> result;
    result.setOverlap(_visits > mostVisits || _isOverlap);
    if (result.isOverlap()) findSharedEnds();
    for (const Meeting& each : std::span(_meetings).first(_count)) {
      result.insert({each.t, each.u, ZKBezier(points, 3, each.t, nullptr, nullptr)});
    }
    return result;
  }

 private:
  // Crossings that are not degenerate take some dozens of pairs of pieces.
  static constexpr int fewVisits = 1 << 8;
  static constexpr int mostVisits = 1 << 18;

  void search(const Piece& a, const Piece& b) {
    if (_isOverlap || a.isApartFrom(b) || a.isBeside(b) || b.isBeside(a)) return;
    if (++_visits == fewVisits) _isOverlap = isOverlap();
    if (_isOverlap || _visits > mostVisits) return;
    if (a.turnsAwayFrom(b) && addCrossing(a, b)) return;
    const double sizeA = a.size();
    const double sizeB = b.size();
    if (std::max(sizeA, sizeB) <= 0x1p-26 && addTouch(a, b)) return;
    if (std::max(sizeA, sizeB) <= meeting) return add(a.middle(), b.middle());
    const bool splitsA = sizeA >= 0.5 * sizeB;
    const bool splitsB = sizeB >= 0.5 * sizeA;
    for (const bool isSecondA : {false, true}) {
      if (!splitsA && isSecondA) break;
      const Piece partA = splitsA ? a.half(isSecondA) : a;
      for (const bool isSecondB : {false, true}) {
        if (!splitsB && isSecondB) break;
        search(partA, splitsB ? b.half(isSecondB) : b);
      }
    }
  }

  // Newton's method from where the chords cross. Gives whether it has led to a crossing of the
  // pieces.
  bool addCrossing(const Piece& a, const Piece& b) {
    const ZKVector chordA = a.v[3] - a.v[0];
    const ZKVector chordB = b.v[3] - b.v[0];
    const ZKVector between = b.v[0] - a.v[0];
    const double turn = cross(chordA, chordB);
    double t = a.low + (a.high - a.low) * std::clamp(cross(between, chordB) / turn, 0.0, 1.0);
    double u = b.low + (b.high - b.low) * std::clamp(cross(between, chordA) / turn, 0.0, 1.0);
    for (int step = 0; step < 10; ++step) {
      const Motion onA = at(_first, t);
      const Motion onB = at(_second, u);
      const ZKVector apart = onB.point - onA.point;
      const double speeds = cross(onA.first, onB.first);
      const double moveT = cross(apart, onB.first) / speeds;
      const double moveU = cross(apart, onA.first) / speeds;
      t += moveT;
      u += moveU;
      if (!(std::abs(t - 0.5) <= 1 && std::abs(u - 0.5) <= 1)) return false;
      if (std::max(std::abs(moveT), std::abs(moveU)) > 0x1p-46) continue;
      if (!a.contains(t) || !b.contains(u)) return false;
      t = std::clamp(t, 0.0, 1.0);
      u = std::clamp(u, 0.0, 1.0);
      if (sizeOf(at(_first, t).point - at(_second, u).point) > meeting) return false;
      add(t, u);
      return true;
    }
    return false;
  }

  // Newton's method for where tangents are parallel and square to what is between the curves.
  // Gives whether the curves touch there.
  bool addTouch(const Piece& a, const Piece& b) {
    double t = a.middle();
    double u = b.middle();
    for (int step = 0; step < 4; ++step) {
      const Motion onA = at(_first, t);
      const Motion onB = at(_second, u);
      const ZKVector apart = onA.point - onB.point;
      const double turn = cross(onA.first, onB.first);
      const double along = dot(apart, onA.first);
      const ZKVector byT(cross(onA.second, onB.first),
                         dot(onA.first, onA.first) + dot(apart, onA.second));
      const ZKVector byU(cross(onA.first, onB.second), -dot(onA.first, onB.first));
      const double determinant = cross(byT, byU);
      t -= cross(ZKVector(turn, along), byU) / determinant;
      u -= cross(byT, ZKVector(turn, along)) / determinant;
    }
    if (!(std::abs(t - a.middle()) <= standstill && std::abs(u - b.middle()) <= standstill)) {
      return false;
    }
    t = std::clamp(t, 0.0, 1.0);
    u = std::clamp(u, 0.0, 1.0);
    const Motion onA = at(_first, t);
    const Motion onB = at(_second, u);
    if (sizeOf(onA.point - a.v[0]) > contact || sizeOf(onB.point - b.v[0]) > contact) return false;
    const bool isParallel =
        std::abs(cross(onA.first, onB.first)) <=
        0x1p-20 * std::sqrt(dot(onA.first, onA.first) * dot(onB.first, onB.first));
    if (!isParallel || sizeOf(onA.point - onB.point) > meeting) return false;
    add(t, u);
    return true;
  }

  // Adds a place that is not known, at the ends themselves if these meet too.
  void add(double t, double u) {
    const auto isMeeting = [&](double onA, double onB) {
      return sizeOf(at(_first, onA).point - at(_second, onB).point) <= meeting;
    };
    const double endT = std::round(t);
    const double endU = std::round(u);
    if (std::abs(t - endT) <= likeness && isMeeting(endT, u)) t = endT;
    if (std::abs(u - endU) <= likeness && isMeeting(t, endU)) u = endU;
    for (Meeting& known : std::span(_meetings).first(_count)) {
      const auto isNear = [&](double distance) {
        return t >= known.lowestT - distance && t <= known.highestT + distance &&
               u >= known.lowestU - distance && u <= known.highestU + distance;
      };
      const auto isSamePoint = [&] {
        return sizeOf(at(_first, t).point - at(_first, known.t).point) <= likeness;
      };
      if (!isNear(likeness) && !(isNear(standstill) && isSamePoint())) continue;
      known.lowestT = std::min(known.lowestT, t);
      known.highestT = std::max(known.highestT, t);
      known.lowestU = std::min(known.lowestU, u);
      known.highestU = std::max(known.highestU, u);
      return;
    }
    if (_count < _meetings.size()) _meetings[_count++] = {t, u, t, t, u, u};
  }

  using Points = std::array<NSPoint, 4>;
  static Points pointsOf(const Cubic& v) {
    return {v[0].point(), v[1].point(), v[2].point(), v[3].point()};
  }
  // What counts as no distance between curves that overlap.
  [[nodiscard]] double nearness() const {
    return std::max(meeting,
                    0x1p-30 * std::min(Piece(_first, 0, 1).size(), Piece(_second, 0, 1).size()));
  }

  void findSharedEnds() {
    _count = 0;
    const Points first = pointsOf(_first);
    const Points second = pointsOf(_second);
    for (const double end : {0.0, 1.0}) {
      const auto onSecond = ZKProjectOnCurve(second.data(), first[end == 0 ? 0 : 3]);
      if (onSecond.distance <= nearness()) add(end, onSecond.t);
      const auto onFirst = ZKProjectOnCurve(first.data(), second[end == 0 ? 0 : 3]);
      if (onFirst.distance <= nearness()) add(onFirst.t, end);
    }
  }

  // Whether all control points lie on one line, of which both curves cover a stretch.
  [[nodiscard]] bool areOnOneLine() const {
    ZKVector way = _first[3] - _first[0];
    const auto widen = [&](ZKVector v) {
      if (dot(v - _first[0], v - _first[0]) > dot(way, way)) way = v - _first[0];
    };
    const auto isOff = [&](ZKVector v) {
      return std::abs(cross(way, v - _first[0])) > nearness() * std::sqrt(dot(way, way));
    };
    std::ranges::for_each(_first, widen);
    std::ranges::for_each(_second, widen);
    if (std::ranges::any_of(_first, isOff) || std::ranges::any_of(_second, isOff)) return false;
    const NSRect a = ZKCurveBounds(pointsOf(_first).data());
    const NSRect b = ZKCurveBounds(pointsOf(_second).data());
    return std::min(NSMaxX(a), NSMaxX(b)) - std::max(NSMinX(a), NSMinX(b)) > likeness ||
           std::min(NSMaxY(a), NSMaxY(b)) - std::max(NSMinY(a), NSMinY(b)) > likeness;
  }

  // Whether the stretch between ends that lie on the other curve does so too. More than nine points
  // of it tell: different curves have no more in common.
  [[nodiscard]] bool isOverlap() {
    if (areOnOneLine()) return true;
    const auto known = _meetings;
    const auto knownCount = _count;
    findSharedEnds();
    double low = 1;
    double high = 0;
    for (const Meeting& each : std::span(_meetings).first(_count)) {
      low = std::min(low, each.t);
      high = std::max(high, each.t);
    }
    _meetings = known;
    _count = knownCount;
    if (!(low < high)) return false;
    const Points second = pointsOf(_second);
    for (int k = 1; k < 12; ++k) {
      const NSPoint p = at(_first, low + (high - low) * k / 12).point.point();
      if (ZKProjectOnCurve(second.data(), p).distance > nearness()) return false;
    }
    return true;
  }

  Cubic _first;
  Cubic _second;
  std::array<Meeting, 9> _meetings;
  std::size_t _count = 0;
  int _visits = 0;
  bool _isOverlap = false;
};

}  // namespace

ZKCrossingList<9> ZKCrossingsOfCurves(const NSPoint* first, const NSPoint* second) {
  Cubic a;
  Cubic b;
  const ZKVector origin = first[0];
  double size = 0;
  for (std::size_t k = 0; k < 4; ++k) {
    a[k] = first[k] - origin;
    b[k] = second[k] - origin;
    for (const ZKVector v : {a[k], b[k]}) {
      if (!std::isfinite(v.x()) || !std::isfinite(v.y())) return {};
      size = std::max(size, sizeOf(v));
    }
  }
  const double scale = ZKUnitScale(size);
  for (std::size_t k = 0; k < 4; ++k) {
    a[k] = a[k] * scale;
    b[k] = b[k] * scale;
  }
  return CurveCrossings(a, b).find(first);
}
