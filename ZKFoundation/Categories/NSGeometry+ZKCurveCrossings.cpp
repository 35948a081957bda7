#include <algorithm>
#include <array>
#include <cmath>

#include <ZKFoundation/Categories/NSGeometry+ZKCrossings.h>
#include <ZKFoundation/Categories/NSGeometry+ZKFoundationExtensions.h>
#include <ZKFoundation/Categories/ZKCurveOverlap.h>
#include <ZKFoundation/Categories/ZKMeetings.h>
#include <ZKFoundation/Categories/ZKUnitScale.h>

namespace {

using Piece = ZKCubicPiece;

// So far from a touch may flat curves still be too near to each other to tell.
constexpr double contact = 0x1p-18;
// So far apart may parameters of the same touch be where a curve stands still.
constexpr double standstill = 0x1p-12;

// Coordinates near the least double make no difference, but are slow to reckon with.
ZKVector withoutTraces(ZKVector v) {
  const auto keep = [](double x) { return std::abs(x) < 0x1p-100 ? 0 : x; };
  return {keep(v.x()), keep(v.y())};
}

class CurveCrossings {
 public:
  CurveCrossings(const ZKCubic& first, const ZKCubic& second)
      : _first(first), _second(second), _meetings(_first, _second) {}

  // Finds the crossings, with points of this curve.
  [[nodiscard]] ZKCrossingList<9> find(const NSPoint* points) {
    search(Piece(_first, {0, 1}), Piece(_second, {0, 1}));
    ZKCrossingList<9> result;
    result.setOverlap(_visits > mostVisits || _isOverlap);
    if (result.isOverlap()) {
      _meetings.clear();
      ZKAddSharedEnds(_first, _second, _meetings);
    } else {
      _meetings.settle();
    }
    for (const auto& each : _meetings.all()) {
      result.insert({each.t, each.u, ZKBezier(points, 3, each.t, nullptr, nullptr)});
    }
    return result;
  }

 private:
  // Crossings that are not degenerate take some dozens of pairs of pieces, others some hundreds.
  static constexpr int fewVisits = 1 << 6;
  static constexpr int mostVisits = 1 << 13;

  void search(const Piece& a, const Piece& b) {
    if (_isOverlap || a.isApartFrom(b) || a.isBeside(b) || b.isBeside(a)) return;
    if (++_visits == fewVisits) _isOverlap = ZKAreOverlapping(_first, _second);
    if (_isOverlap || _visits > mostVisits) return;
    if (_visits > fewVisits && (_meetings.has(a, b) || areTold(a, b))) return;
    if ((_visits > fewVisits || a.turnsAwayFrom(b)) && addCrossing(a, b)) return;
    const double sizeA = a.size();
    const double sizeB = b.size();
    if (std::max(sizeA, sizeB) <= 0x1p-26 && addTouch(a, b)) return;
    if (std::max(sizeA, sizeB) <= Piece::meeting) {
      return _meetings.add(a.range.middle(), b.range.middle());
    }
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

  // Whether pieces that run beside each other do not meet, or are the same and so one place, which
  // is added.
  bool areTold(const Piece& a, const Piece& b) {
    const ZKSide sideA = ZKSideOf(a, b, _second);
    const ZKSide sideB = ZKSideOf(b, a, _first);
    if (sideA == ZKSide::one || sideB == ZKSide::one) return true;
    if (sideA == ZKSide::unclear && sideB == ZKSide::unclear) return false;
    const auto common = [](const ZKCubic& curve, const Piece& own, const Piece& other) {
      const auto foot = [&](ZKVector point) {
        return std::clamp(own.foot(curve, point), own.range.low, own.range.high);
      };
      return 0.5 * (foot(other.v[0]) + foot(other.v[3]));
    };
    const double t = common(_first, a, b);
    const double u = _meetings.besideOnSecond(t, common(_second, b, a));
    if (!_meetings.isMeeting(t, u)) return false;
    _meetings.addWithSurroundings(t, u);
    return true;
  }

  // Whether the pieces have no crossing but that at these parameters, where the curves meet: as in
  // `ZKSideOf`, by the ways between like places, but for how far they are from the crossing.
  [[nodiscard]] bool isOnlyCrossing(const Piece& a, const Piece& b, double t, double u) const {
    const ZKVector onA = ZKTangent(_first, t, t);
    const ZKVector onB = ZKTangent(_second, u, u);
    const double ratio = dot(onA, onB) / dot(onB, onB);
    const ZKParameters range = a.range.united({t, t});
    const ZKParameters like = {u + ratio * (range.low - t), u + ratio * (range.high - t)};
    auto ways = ZKChords(_first, t, range);
    const auto others = ZKChords(_second, u, like);
    for (std::size_t k = 0; k < ways.size(); ++k) ways[k] = ways[k] - others[k] * ratio;
    const auto tangents =
        ZKTangents(_second, b.range.united(ZKParametersBetween(like.low, like.high)));
    return ZKSideOf(ways, tangents, 4 * Piece::gap) == ZKSide::one;
  }

  // Newton's method from where the chords cross. Gives whether it has led to the only crossing that
  // the pieces may have.
  bool addCrossing(const Piece& a, const Piece& b) {
    const ZKVector chordA = a.v[3] - a.v[0];
    const ZKVector chordB = b.v[3] - b.v[0];
    const ZKVector between = b.v[0] - a.v[0];
    const double turn = cross(chordA, chordB);
    const auto start = [](ZKParameters range, double share) {
      return range.low + range.length() * std::clamp(share, 0.0, 1.0);
    };
    double t = start(a.range, cross(between, chordB) / turn);
    double u = start(b.range, cross(between, chordA) / turn);
    bool isSteady = false;
    for (int step = 0; step < 10 && !isSteady; ++step) {
      const ZKMotion onA = ZKMotionAt(_first, t);
      const ZKMotion onB = ZKMotionAt(_second, u);
      const ZKVector apart = onB.point - onA.point;
      const double speeds = cross(onA.first, onB.first);
      const double moveT = cross(apart, onB.first) / speeds;
      const double moveU = cross(apart, onA.first) / speeds;
      t += moveT;
      u += moveU;
      if (!(std::abs(t - 0.5) <= 1 && std::abs(u - 0.5) <= 1)) return false;
      isSteady = std::max(std::abs(moveT), std::abs(moveU)) <= 0x1p-46;
    }
    // Between tangents that are nearly parallel rounding keeps it moving.
    if (!isSteady && _meetings.distance(t, u) > Piece::gap) return false;
    const bool isInside = a.contains(t) && b.contains(u);
    if (_visits > fewVisits ? !isOnlyCrossing(a, b, t, u) : !isInside) return false;
    // Along tangents that are nearly parallel an end may be as near to a place farther on.
    const auto clamped = [](double x) { return std::clamp(x, 0.0, 1.0); };
    if (t != clamped(t)) {
      t = clamped(t);
      u = ZKFoot(_second, ZKMotionAt(_first, t).point, u);
    }
    if (u != clamped(u)) {
      u = clamped(u);
      t = _meetings.besideOnFirst(u, t);
    }
    if (!_meetings.isMeeting(t, u)) return !isInside;
    _meetings.addWithSurroundings(t, u);
    return true;
  }

  // Newton's method for where tangents are parallel and square to what is between the curves.
  // Gives whether the curves touch there.
  bool addTouch(const Piece& a, const Piece& b) {
    double t = a.range.middle();
    double u = b.range.middle();
    for (int step = 0; step < 4; ++step) {
      const ZKMotion onA = ZKMotionAt(_first, t);
      const ZKMotion onB = ZKMotionAt(_second, u);
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
    if (!(std::abs(t - a.range.middle()) <= standstill &&
          std::abs(u - b.range.middle()) <= standstill)) {
      return false;
    }
    t = std::clamp(t, 0.0, 1.0);
    u = std::clamp(u, 0.0, 1.0);
    const ZKMotion onA = ZKMotionAt(_first, t);
    const ZKMotion onB = ZKMotionAt(_second, u);
    if (ZKSizeOf(onA.point - a.v[0]) > contact || ZKSizeOf(onB.point - b.v[0]) > contact)
      return false;
    const bool isParallel =
        std::abs(cross(onA.first, onB.first)) <=
        0x1p-20 * std::sqrt(dot(onA.first, onA.first) * dot(onB.first, onB.first));
    if (!isParallel || !_meetings.isMeeting(t, u)) return false;
    _meetings.addWithSurroundings(t, u);
    return true;
  }

  ZKCubic _first;
  ZKCubic _second;
  ZKMeetings _meetings;
  int _visits = 0;
  bool _isOverlap = false;
};

}  // namespace

ZKCrossingList<9> ZKCrossingsOfCurves(const NSPoint* first, const NSPoint* second) {
  ZKCubic a;
  ZKCubic b;
  const ZKVector origin = first[0];
  double size = 0;
  for (std::size_t k = 0; k < 4; ++k) {
    a[k] = first[k] - origin;
    b[k] = second[k] - origin;
    for (const ZKVector v : {a[k], b[k]}) {
      if (!std::isfinite(v.x()) || !std::isfinite(v.y())) return {};
      size = std::max(size, ZKSizeOf(v));
    }
  }
  // Sizes next to the ends of the range of doubles take two steps.
  const double step = size < 0x1p-900 ? 0x1p200 : size > 0x1p900 ? 0x1p-200 : 1;
  const double scale = ZKUnitScale(size * step);
  for (std::size_t k = 0; k < 4; ++k) {
    a[k] = withoutTraces(a[k] * step * scale);
    b[k] = withoutTraces(b[k] * step * scale);
  }
  return CurveCrossings(a, b).find(first);
}
