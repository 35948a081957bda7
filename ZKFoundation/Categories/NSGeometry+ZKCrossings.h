#pragma once

#include <array>
#include <cstddef>

#include <Foundation/NSGeometry.h>
#include <ZKFoundation/ZKExport.h>

// Where cubic Bezier curves, each given by its 4 control points, cross lines and each other.
// Touching counts as crossing, and so do ends: what is nearer than rounding, about 1e-14 of the
// sizes, meets. Nothing here fails, at any scale; coordinates that are infinite or NaN, or whose
// differences are, give no crossing.

/// A place where a curve meets a line or another curve: its parameter on the curve, that on the
/// other (of a line from a to b 0 is a and 1 is b), and the point of the curve there.
struct ZKCrossing {
  double t;
  double u;
  NSPoint point;

  friend constexpr bool operator==(const ZKCrossing&, const ZKCrossing&) = default;
};

/// Holds crossings, as many as there can be, in the order of t and, for the same t, of u.
template <std::size_t capacity>
class ZKCrossingList {
 public:
  [[nodiscard]] const ZKCrossing* begin() const { return _crossings.data(); }
  [[nodiscard]] const ZKCrossing* end() const { return begin() + _count; }
  [[nodiscard]] std::size_t size() const { return _count; }
  [[nodiscard]] bool empty() const { return _count == 0; }
  /// Gives the crossing at an index below `size()`.
  [[nodiscard]] const ZKCrossing& operator[](std::size_t index) const { return _crossings[index]; }

  /// Whether the two have a stretch in common, and so more crossings than could be listed. The list
  /// has then only those ends of either that lie on the other, which may be none.
  [[nodiscard]] bool isOverlap() const { return _isOverlap; }

  /// Adds a crossing in its place; forgets it when the list is full.
  void insert(const ZKCrossing& crossing) {
    if (_count == capacity) return;
    std::size_t place = _count++;
    const auto isLater = [&](const ZKCrossing& other) {
      return other.t > crossing.t || (other.t == crossing.t && other.u > crossing.u);
    };
    for (; place > 0 && isLater(_crossings[place - 1]); --place) {
      _crossings[place] = _crossings[place - 1];
    }
    _crossings[place] = crossing;
  }
  void setOverlap(bool isOverlap) { _isOverlap = isOverlap; }

 private:
  std::array<ZKCrossing, capacity> _crossings;
  std::size_t _count = 0;
  bool _isOverlap = false;
};

/// Finds where a cubic crosses the infinite line through a and b: at most three places. None when a
/// and b are the same.
[[nodiscard]] ZK_EXPORT ZKCrossingList<3> ZKCrossingsWithLine(const NSPoint* points, NSPoint a,
                                                              NSPoint b);

/// Finds where a cubic crosses the segment from a to b, its ends included: at most three places,
/// or the four ends of an overlap. None when a and b are the same.
[[nodiscard]] ZK_EXPORT ZKCrossingList<4> ZKCrossingsWithSegment(const NSPoint* points, NSPoint a,
                                                                 NSPoint b);

/// Finds where two cubics cross: at most nine places, each with its parameters on both. Those
/// between which the curves are no farther apart than rounding are given as one, at an end that is
/// among them, else in their middle: so where curves touch that are curved the same. Those that are
/// less than 1e-9 of the curves' sizes apart may be given as one, too. Of a curve that is a point
/// the parameter means nothing.
///
/// Curves are taken to overlap where they have a stretch in common within 1e-9 of their sizes,
/// straight ones within rounding. Takes about 0.5 µs, 10 to 30 µs where curves run beside each
/// other, however near, and some 100 µs where they touch and are curved the same.
[[nodiscard]] ZK_EXPORT ZKCrossingList<9> ZKCrossingsOfCurves(const NSPoint* first,
                                                              const NSPoint* second);
