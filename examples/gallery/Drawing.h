#pragma once

#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <Foundation/NSGeometry.h>

/// An SVG picture with its y axis upwards.
class Drawing {
 public:
  explicit Drawing(NSSize size) : _size(size) {}

  /// What a shape is drawn with: a stroke of SVG's colours and, where it has one, a filling.
  struct Style {
    std::string_view stroke = "#333";
    double width = 1;
    std::string_view fill = "none";
    std::string_view dash = "none";
  };

  void polygon(std::span<const NSPoint> points, const Style& style, bool isClosed = false);
  void line(NSPoint a, NSPoint b, const Style& style);
  void arrow(NSPoint a, NSPoint b, const Style& style);
  void rect(NSRect rect, const Style& style);
  void circle(NSPoint center, double radius, const Style& style);
  void dot(NSPoint center, std::string_view color, double radius = 3);
  void cubic(std::span<const NSPoint, 4> points, const Style& style);
  /// Centred on the point.
  void text(NSPoint center, std::string_view text, std::string_view color = "#333");

  /// Points so far apart in rows and columns.
  static std::vector<NSPoint> grid(NSRect area, double pitch);

  /// The picture as a document.
  std::string svg() const;

 private:
  void shape(std::string_view element, const Style& style);
  std::string at(NSPoint point) const;

  NSSize _size;
  std::ostringstream _shapes;
};

// Colours that mean the same in every picture.
inline constexpr std::string_view givenColor = "#888";
inline constexpr std::string_view resultColor = "#1668b8";
inline constexpr std::string_view otherColor = "#c8501e";
inline constexpr std::string_view faintColor = "#ccc";
