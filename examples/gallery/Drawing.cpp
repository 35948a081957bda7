#include "examples/gallery/Drawing.h"

#include <array>
#include <cmath>
#include <cstdio>

#include <ZKFoundation/ZKFoundation.h>

namespace {

std::string number(double value) {
  std::array<char, 32> text;
  // Without a sign before what rounds to zero.
  const int length = std::snprintf(text.data(), text.size(), "%.2f", value + 0.0);
  return std::string(text.data(), static_cast<std::size_t>(length));
}

}  // namespace

std::string Drawing::at(NSPoint point) const {
  return number(point.x) + ' ' + number(_size.height - point.y);
}

void Drawing::shape(std::string_view element, const Style& style) {
  _shapes << '<' << element << " stroke=\"" << style.stroke << "\" stroke-width=\""
          << number(style.width) << "\" fill=\"" << style.fill << "\" stroke-dasharray=\""
          << style.dash << "\"/>\n";
}

void Drawing::polygon(std::span<const NSPoint> points, const Style& style, bool isClosed) {
  std::string path = "path d=\"";
  for (const NSPoint point : points) path += (path.back() == '"' ? "M " : " L ") + at(point);
  shape(path + (isClosed ? " Z\"" : "\""), style);
}

void Drawing::line(NSPoint a, NSPoint b, const Style& style) { polygon(std::array{a, b}, style); }

void Drawing::arrow(NSPoint a, NSPoint b, const Style& style) {
  line(a, b, style);
  const double direction = ZKSlope(a, b);
  const auto barb = [&](double turn) {
    return ZKSumPoint(b, {7 * std::cos(direction + turn), 7 * std::sin(direction + turn)});
  };
  Style solid = style;
  solid.dash = "none";
  polygon(std::array{barb(2.7), b, barb(-2.7)}, solid);
}

void Drawing::rect(NSRect rect, const Style& style) {
  std::array<NSPoint, 4> corners;
  for (NSUInteger k = 0; k < 4; ++k) corners[k] = ZKGetPointOfRect(ZKHandleMinXMinY + k, rect);
  polygon(corners, style, true);
}

void Drawing::circle(NSPoint center, double radius, const Style& style) {
  shape("circle cx=\"" + number(center.x) + "\" cy=\"" + number(_size.height - center.y) +
            "\" r=\"" + number(radius) + "\"",
        style);
}

void Drawing::dot(NSPoint center, std::string_view color, double radius) {
  circle(center, radius, {.stroke = "none", .fill = color});
}

void Drawing::cubic(std::span<const NSPoint, 4> points, const Style& style) {
  shape("path d=\"M " + at(points[0]) + " C " + at(points[1]) + ", " + at(points[2]) + ", " +
            at(points[3]) + "\"",
        style);
}

void Drawing::text(NSPoint center, std::string_view text, std::string_view color) {
  _shapes << "<text x=\"" << number(center.x) << "\" y=\"" << number(_size.height - center.y + 4)
          << "\" fill=\"" << color << "\">" << text << "</text>\n";
}

std::vector<NSPoint> Drawing::grid(NSRect area, double pitch) {
  std::vector<NSPoint> points;
  const int columns = static_cast<int>(area.size.width / pitch);
  const int rows = static_cast<int>(area.size.height / pitch);
  for (int column = 0; column <= columns; ++column) {
    for (int row = 0; row <= rows; ++row) {
      points.push_back(ZKSumPoint(area.origin, {column * pitch, row * pitch}));
    }
  }
  return points;
}

std::string Drawing::svg() const {
  const std::string width = number(_size.width);
  const std::string height = number(_size.height);
  std::ostringstream out;
  out << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 " << width << ' ' << height
      << "' width='" << width << "' height='" << height
      << "' font-family='sans-serif' font-size='11' text-anchor='middle'>\n"
      << "<rect width='100%' height='100%' fill='white'/>\n"
      << _shapes.str() << "</svg>\n";
  return out.str();
}
