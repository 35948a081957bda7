#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>

#include <ZKFoundation/Categories/ZKCubicPiece.h>

/// The places at which two curves meet, up to nine. Where the curves are too near to each other to
/// tell, what is found there is one place.
class ZKMeetings {
 public:
  struct Meeting {
    double t;
    double u;
    // Where they cannot be told apart; t and u alone if they soon can.
    ZKParameters onFirst;
    ZKParameters onSecond;
  };

  static constexpr std::size_t capacity = 9;

  /// Both curves must outlive it.
  ZKMeetings(const ZKCubic& first, const ZKCubic& second) : _first(first), _second(second) {}

  [[nodiscard]] std::span<const Meeting> all() const { return std::span(_places).first(_count); }
  void clear() { _count = 0; }

  /// Whether the curves meet at these parameters.
  [[nodiscard]] bool isMeeting(double t, double u) const {
    return distance(t, u) <= ZKCubicPiece::meeting;
  }
  [[nodiscard]] double distance(double t, double u) const {
    return ZKSizeOf(ZKMotionAt(_first, t).point - ZKMotionAt(_second, u).point);
  }

  /// Gives where on the second curve the point next to one of the first is, found from a place near
  /// it.
  [[nodiscard]] double besideOnSecond(double t, double near) const {
    return std::clamp(ZKFoot(_second, ZKMotionAt(_first, t).point, near), 0.0, 1.0);
  }
  /// The same the other way round.
  [[nodiscard]] double besideOnFirst(double u, double near) const {
    return std::clamp(ZKFoot(_first, ZKMotionAt(_second, u).point, near), 0.0, 1.0);
  }

  /// Adds a place that is not known, at the ends themselves if these meet too.
  void add(double t, double u) {
    Meeting place = {t, u, {t, t}, {u, u}};
    if (isNearEnd(t) || isNearEnd(u)) snap(place);
    place.onFirst = {place.t, place.t};
    place.onSecond = {place.u, place.u};
    add(place);
  }

  /// Adds a place together with what cannot be told apart from it.
  void addWithSurroundings(double t, double u) {
    if (!isFlat(t, u)) return add(t, u);
    const auto [lowT, lowU] = follow(t, u, -1, surely);
    const auto [highT, highU] = follow(t, u, 1, surely);
    add({t, u, {lowT, highT}, ZKParameters{u, u}.united(ZKParametersBetween(lowU, highU))});
  }

  /// Whether a place that is known has both pieces.
  [[nodiscard]] bool has(const ZKCubicPiece& a, const ZKCubicPiece& b) const {
    return std::ranges::any_of(all(), [&](const Meeting& known) {
      return a.range.low >= known.onFirst.low && a.range.high <= known.onFirst.high &&
             b.range.low >= known.onSecond.low && b.range.high <= known.onSecond.high;
    });
  }

  /// Puts each place to where it tells most: of those that cannot be told apart that is an end, or
  /// the middle, which is next to where the curves truly cross.
  void settle() {
    for (Meeting& place : std::span(_places).first(_count)) {
      if (place.onFirst.length() > 0) {
        settle(place);
      } else if (isNearEnd(place.t) || isNearEnd(place.u)) {
        snap(place);
      }
    }
  }

 private:
  // Places that are no farther from each other are one.
  static constexpr double likeness = 0x1p-30;
  // Farther than places may be apart: so the ends of what is followed have none beside them.
  static constexpr double surely = 2 * ZKCubicPiece::meeting;

  // Far enough for a curve that stands still at its end.
  [[nodiscard]] static bool isNearEnd(double t) { return std::abs(t - 0.5) > 0.5 - 0x1p-9; }

  // Whether the curves run almost the same way.
  [[nodiscard]] bool isFlat(double t, double u) const {
    const ZKVector a = ZKTangent(_first, t, t);
    const ZKVector b = ZKTangent(_second, u, u);
    return std::abs(cross(a, b)) <= 0x1p-16 * std::sqrt(dot(a, a) * dot(b, b));
  }

  // Whether a curve stays at a place from one range of parameters to the other.
  [[nodiscard]] static bool staysBetween(const ZKCubic& curve, ZKParameters a, ZKParameters b) {
    const double from = std::min(a.high, b.high);
    const double to = std::max(a.low, b.low);
    if (from >= to) return true;
    const ZKVector start = ZKPolarForm(curve, from, from, from);
    const auto isThere = [&](ZKVector v) { return ZKSizeOf(v - start) <= likeness; };
    return isThere(ZKPolarForm(curve, to, to, to)) && isThere(ZKPolarForm(curve, from, from, to)) &&
           isThere(ZKPolarForm(curve, from, to, to));
  }

  // Adds a place with those from which it cannot be told apart.
  void add(Meeting place) {
    for (std::size_t k = 0; k < _count;) {
      const Meeting& known = _places[k];
      if (!staysBetween(_first, known.onFirst, place.onFirst) ||
          !staysBetween(_second, known.onSecond, place.onSecond)) {
        ++k;
        continue;
      }
      place = {known.t, known.u, known.onFirst.united(place.onFirst),
               known.onSecond.united(place.onSecond)};
      _places[k] = _places[--_count];
      k = 0;
    }
    if (_count < _places.size()) _places[_count++] = place;
  }

  // Goes along both curves from a place, on the first one in that direction, for as long as they
  // are no farther apart than that.
  [[nodiscard]] std::pair<double, double> follow(double t, double u, double direction,
                                                 double apart) const {
    const double start = t;
    bool isGrowing = true;
    const auto isFine = [&](double step) {
      return step < std::max(likeness, 0x1p-16 * std::abs(t - start));
    };
    for (double step = likeness; isGrowing || !isFine(step); step *= isGrowing ? 2 : 0.5) {
      const double next = std::clamp(t + direction * step, 0.0, 1.0);
      if (next == t) break;
      const double other = besideOnSecond(next, u);
      const bool isNear = distance(next, other) <= apart;
      isGrowing = isGrowing && isNear;
      if (isNear) {
        t = next, u = other;
      } else if (other == 0 || other == 1) {
        // The other curve ends before.
        const double back = besideOnFirst(other, t);
        const double middle = 0.5 * (u + other);
        if ((back - t) * direction >= 0 && distance(back, other) <= apart &&
            distance(besideOnFirst(middle, t), middle) <= apart) {
          return {back, other};
        }
      }
    }
    return {t, u};
  }

  void settle(Meeting& place) const {
    // Farther away rounding matters less, and that the curves are not symmetric does more.
    constexpr double apart = 0x1p6 * ZKCubicPiece::meeting;
    const double low = follow(place.t, place.u, -1, apart).first;
    const double high = follow(place.t, place.u, 1, apart).first;
    // Of two places so near to each other the middle would be the same.
    const bool isAlone = std::ranges::none_of(all(), [&](const Meeting& other) {
      return &other != &place && other.t >= low && other.t <= high;
    });
    const bool isSymmetric = isAlone && low > 0 && high < 1;
    const double t = isSymmetric ? 0.5 * (low + high) : isAlone ? place.t : place.onFirst.middle();
    const double u = besideOnSecond(t, place.u);
    if (isMeeting(t, u)) place.t = t, place.u = u;
    snap(place);
  }

  // Puts a place to an end that cannot be told apart from it.
  void snap(Meeting& place) const {
    const auto isOnFirst = [&](double end) {
      return staysBetween(_first, place.onFirst, {end, end});
    };
    const auto isOnSecond = [&](double end) {
      return staysBetween(_second, place.onSecond, {end, end});
    };
    for (const double t : {0.0, 1.0}) {
      for (const double u : {0.0, 1.0}) {
        if (!isMeeting(t, u) || !isOnFirst(t) || !isOnSecond(u)) continue;
        place.t = t, place.u = u;
        return;
      }
    }
    for (const double end : {0.0, 1.0}) {
      if (!isOnFirst(end)) continue;
      const double other = besideOnSecond(end, place.u);
      if (isMeeting(end, other)) place.t = end, place.u = other;
    }
    for (const double end : {0.0, 1.0}) {
      if (!isOnSecond(end)) continue;
      const double other = besideOnFirst(end, place.t);
      if (isMeeting(other, end)) place.t = other, place.u = end;
    }
  }

  const ZKCubic& _first;
  const ZKCubic& _second;
  std::array<Meeting, capacity> _places;
  std::size_t _count = 0;
};
