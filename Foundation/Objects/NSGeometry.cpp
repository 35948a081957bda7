#include "Foundation/NSGeometry.h"

#include <array>
#include <charconv>
#include <ostream>
#include <string_view>

namespace {

void printNumber(std::ostream& out, double value) {
  // The longest shortest form of a double, "-2.2250738585072014e-308", has 24 characters.
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  out << std::string_view(text.data(), static_cast<std::size_t>(end - text.data()));
}

std::ostream& printPair(std::ostream& out, double first, double second) {
  out << '{';
  printNumber(out, first);
  out << ", ";
  printNumber(out, second);
  return out << '}';
}

}  // namespace

std::ostream& operator<<(std::ostream& out, NSPoint point) {
  return printPair(out, point.x, point.y);
}

std::ostream& operator<<(std::ostream& out, NSSize size) {
  return printPair(out, size.width, size.height);
}

std::ostream& operator<<(std::ostream& out, NSRect rect) {
  return out << '{' << rect.origin << ", " << rect.size << '}';
}
