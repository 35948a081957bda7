#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <Foundation/NSGeometry.h>

/// The nearest-point method as it is published, level by level, with a bound on what it may take.
class BezierModel {
 public:
  static NSPoint bezier(const NSPoint* points, int degree, double t, NSPoint* left,
                        NSPoint* right) {
    std::array<std::array<NSPoint, 6>, 6> table;
    std::copy_n(points, degree + 1, table[0].begin());
    for (std::size_t i = 1; i <= std::size_t(degree); ++i) {
      for (std::size_t j = 0; j <= std::size_t(degree) - i; ++j) {
        const NSPoint a = table[i - 1][j], b = table[i - 1][j + 1];
        table[i][j] = {(1 - t) * a.x + t * b.x, (1 - t) * a.y + t * b.y};
      }
    }
    for (std::size_t j = 0; j <= std::size_t(degree); ++j) {
      if (left != nullptr) left[j] = table[j][0];
      if (right != nullptr) right[j] = table[std::size_t(degree) - j][j];
    }
    return table[std::size_t(degree)][0];
  }

  /// Whether the last search came to its end by itself, and in order.
  [[nodiscard]] bool hasEnded() const { return !_isLost; }

  const std::vector<double>& findRoots(const NSPoint* w, int depth) {
    _isLost = false;
    _calls = 0;
    _roots.clear();
    search(w, depth, 0);
    return _roots;
  }

  NSPoint nearestPoint(const NSPoint* v, double* t, NSPoint p) {
    constexpr std::array<std::array<double, 4>, 3> z = {
        {{1, 0.6, 0.3, 0.1}, {0.4, 0.6, 0.6, 0.4}, {0.1, 0.3, 0.6, 1}}};
    constexpr std::array<double, 6> x = {0, 0.2, 0.4, 0.6, 0.8, 1.0};
    std::array<NSPoint, 6> w;
    for (std::size_t k = 0; k <= 5; ++k) {
      w[k] = {x[k], 0};
      for (std::size_t i = k < 2 ? 0 : k - 2; i <= std::min<std::size_t>(k, 3); ++i) {
        const std::size_t j = k - i;
        const NSPoint c = {v[i].x - p.x, v[i].y - p.y};
        const NSPoint d = {3 * (v[j + 1].x - v[j].x), 3 * (v[j + 1].y - v[j].y)};
        w[k].y += (d.x * c.x + d.y * c.y) * z[j][i];
      }
    }
    const auto distance = [p](NSPoint q) {
      return (q.x - p.x) * (q.x - p.x) + (q.y - p.y) * (q.y - p.y);
    };
    double least = distance(v[0]);
    *t = 0;
    for (const double root : findRoots(w.data(), 0)) {
      const double other = distance(bezier(v, 3, root, nullptr, nullptr));
      if (other < least) {
        least = other;
        *t = root;
      }
    }
    if (distance(v[3]) < least) *t = 1;
    return bezier(v, 3, *t, nullptr, nullptr);
  }

 private:
  static bool isFlat(const NSPoint* w) {
    const double a = w[0].y - w[5].y, b = w[5].x - w[0].x;
    const double c = w[0].x * w[5].y - w[5].x * w[0].y;
    const double ab2 = a * a + b * b;
    double above = 0, below = 0;
    for (int i = 1; i <= 4; ++i) {
      const double v = a * w[i].x + b * w[i].y + c;
      const double squared = v > 0 ? v * v / ab2 : v < 0 ? -(v * v / ab2) : 0;
      if (squared > above) above = squared;
      if (squared < below) below = squared;
    }
    const double inverse = 1 / (0 * b - a * 1);
    const double i1 = (1 * (c + above) - b * 0) * inverse;
    const double i2 = (1 * (c + below) - b * 0) * inverse;
    return 0.5 * (std::max(i1, i2) - std::min(i1, i2)) < std::ldexp(1.0, -65);
  }

  // Adds the roots and gives their number.
  int search(const NSPoint* w, int depth, int level) {
    _isLost = _isLost || level > 2150 || ++_calls > 15000;
    if (_isLost) return 0;
    int crossings = 0;
    for (int k = 1; k <= 5; ++k) crossings += (w[k - 1].y < 0) != (w[k].y < 0) ? 1 : 0;
    if (crossings == 0) return 0;
    if (crossings == 1 && (depth >= 64 || isFlat(w))) {
      const double width = w[5].x - w[0].x, height = w[5].y - w[0].y;
      _roots.push_back(depth >= 64 ? (w[0].x + w[5].x) * 0.5
                                   : (width * w[0].y - height * w[0].x) / (width * 0 - height));
      return 1;
    }
    std::array<NSPoint, 6> left, right;
    bezier(w, 5, 0.5, left.data(), right.data());
    const int leftCount = search(left.data(), depth + 1, level + 1);
    const int rightCount = search(right.data(), depth + 1, level + 1);
    _isLost = _isLost || leftCount >= 6 || rightCount >= 6;
    return leftCount + rightCount;
  }

  std::vector<double> _roots;
  bool _isLost = false;
  int _calls = 0;
};
