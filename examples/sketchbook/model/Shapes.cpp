#include "examples/sketchbook/model/Shapes.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

// Straight lines have no width; what lies in it then lies in the middle.
double fraction(double value, double start, double length) {
  return length > 0 ? (value - start) / length : 0.5;
}

// The controls of a smooth line through the points: at each the direction is that from the one
// before to the one after (Catmull and Rom).
std::vector<NSPoint> smoothLine(std::span<const NSPoint> points) {
  std::vector<NSPoint> controls = {points[0]};
  const std::size_t last = points.size() - 1;
  const auto slope = [&](std::size_t k) {
    return (points[std::min(k + 1, last)] - points[k == 0 ? 0 : k - 1]) / 6;
  };
  for (std::size_t k = 0; k < last; ++k) {
    controls.insert(controls.end(),
                    {points[k] + slope(k), points[k + 1] - slope(k + 1), points[k + 1]});
  }
  return controls;
}

NSRect boundsOf(const std::vector<NSPoint>& controls) {
  std::vector<NSPoint> corners;
  for (std::size_t k = 0; k + 3 < controls.size(); k += 3) {
    const NSRect bounds = ZKCurveBounds(&controls[k]);
    corners.insert(corners.end(), {bounds.origin, {NSMaxX(bounds), NSMaxY(bounds)}});
  }
  return ZKRectAroundPoints(corners);
}

NSRef<NSString> numbers(std::initializer_list<double> values) {
  const auto text = NSMake<NSMutableString>();
  for (const double value : values) {
    if (text->length() > 0) text->appendUnits(u" ");
    text->appendString(NSMake<NSNumber>(value)->stringValue());
  }
  return text;
}

}  // namespace

NSRef<NSString> Rectangle::svgElement() const {
  const auto text = [](double value) { return NSMake<NSNumber>(value)->stringValue(); };
  return NSString::stringWithFormat(
      u"<rect x=\"%@\" y=\"%@\" width=\"%@\" height=\"%@\" fill=\"%@\" fill-opacity=\"0.25\" stroke=\"%@\" stroke-width=\"%@\"/>"_ns,
      text(frame.origin.x), text(frame.origin.y), text(frame.size.width), text(frame.size.height),
      svgColour(colour), svgColour(colour), text(lineWidth));
}

Path::Path(const NSRef<NSString>& aName, std::span<const NSPoint> points)
    : Shape(aName, NSZeroRect), _fractions(smoothLine(points)) {
  frame = boundsOf(_fractions);
  for (NSPoint& point : _fractions) {
    point = {fraction(point.x, NSMinX(frame), frame.size.width),
             fraction(point.y, NSMinY(frame), frame.size.height)};
  }
}

Path::Path(const NSRef<NSCoder>& coder) : Shape(coder) {
  const auto text = coder->decodeObjectOfClass<NSString>(u"fractions"_ns);
  for (auto rest = NSViewOf(text); !rest.empty();) {
    const auto x = NSTakeDouble(rest);
    if (rest.starts_with(u' ')) rest.remove_prefix(1);
    const auto y = NSTakeDouble(rest);
    if (rest.starts_with(u' ')) rest.remove_prefix(1);
    constexpr double limit = 1e3;
    if (!x || !y || !(std::abs(*x) <= limit && std::abs(*y) <= limit)) refuse("a broken path");
    _fractions.emplace_back(*x, *y);
  }
  if (_fractions.size() < 4 || _fractions.size() % 3 != 1) refuse("a path without curves");
}

void Path::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  Shape::encodeWithCoder(coder);
  const auto text = NSMake<NSMutableString>();
  for (const NSPoint point : _fractions) {
    appendStrings(text, {numbers({point.x, point.y}), u" "_ns});
  }
  coder->encodeObject_forKey(text->copy(), u"fractions"_ns);
}

std::vector<NSPoint> Path::points() const {
  auto result = _fractions;
  for (NSPoint& point : result) {
    point = frame.origin + NSPoint(point.x * frame.size.width, point.y * frame.size.height);
  }
  return result;
}

bool Path::isHit(NSPoint point, double tolerance) const {
  const double reach = tolerance + lineWidth / 2;
  if (!NSPointInRect(point, NSInsetRect(frame, -reach, -reach))) return false;
  const auto controls = points();
  for (std::size_t k = 0; k + 3 < controls.size(); k += 3) {
    const NSPoint nearest = ZKNearestPointOnCurveRefined(&controls[k], nullptr, point);
    if (ZKDiffPointSquaredLength(nearest, point) <= reach * reach) return true;
  }
  return false;
}

void Path::flip(bool horizontally, bool vertically) {
  for (NSPoint& point : _fractions) {
    if (horizontally) point.x = 1 - point.x;
    if (vertically) point.y = 1 - point.y;
  }
}

NSRef<NSString> Path::svgElement() const {
  const auto data = NSMake<NSMutableString>();
  const auto controls = points();
  for (std::size_t k = 0; k < controls.size(); ++k) {
    const auto letter = k == 0 ? u"M "_ns : k % 3 == 1 ? u" C "_ns : u" "_ns;
    appendStrings(data, {letter, numbers({controls[k].x, controls[k].y})});
  }
  return NSString::stringWithFormat(
      u"<path d=\"%@\" fill=\"none\" stroke=\"%@\" stroke-width=\"%@\"/>"_ns, data,
      svgColour(colour), NSMake<NSNumber>(lineWidth));
}

Label::Label(const NSRef<NSString>& aName, NSPoint origin, double lineHeight,
             const NSRef<NSString>& text)
    : Label(aName, NSRect(origin, {0, lineHeight}), u""_ns) {
  setText(text);
}

Label::Label(const NSRef<NSCoder>& coder)
    : Shape(coder), _text(coder->decodeObjectOfClass<NSString>(u"text"_ns)) {
  if (!_text) refuse("a label without a text");
}

void Label::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  Shape::encodeWithCoder(coder);
  coder->encodeObject_forKey(_text, u"text"_ns);
}

void Label::setText(const NSRef<NSString>& text) {
  const double height = lineHeight();
  _text = text->copy();
  NSUInteger longest = 1;
  for (const auto& line : lines()->each<NSString>()) longest = std::max(longest, line->length());
  // Letters are about half as wide as they are high; only the window knows fonts.
  frame.size = {height * 0.42 * static_cast<double>(longest),
                height * static_cast<double>(lines()->count())};
}

double Label::lineHeight() const {
  return frame.size.height / static_cast<double>(lines()->count());
}

NSRef<NSString> Label::svgElement() const {
  const auto text = NSMake<NSMutableString>();
  const double size = lineHeight() * 0.75;
  double baseline = frame.origin.y + size;
  for (const auto& line : lines()->each<NSString>()) {
    text->appendString(NSString::stringWithFormat(
        u"<text x=\"%@\" y=\"%@\" font-family=\"sans-serif\" font-size=\"%@\" fill=\"%@\" xml:space=\"preserve\">%@</text>"_ns,
        NSMake<NSNumber>(frame.origin.x), NSMake<NSNumber>(baseline), NSMake<NSNumber>(size),
        svgColour(colour), svgText(line)));
    baseline += lineHeight();
  }
  return text;
}

NSRef<NSData> dataWithShapes(const NSRef<NSArray>& shapes) {
  return NSKeyedArchiver::archivedDataWithRootObject(shapes);
}

NSRef<NSArray> shapesWithData(const NSRef<NSData>& data, NSRef<NSError>* error) {
  NSKeyedUnarchiver::registerClass<Rectangle>();
  NSKeyedUnarchiver::registerClass<Path>();
  NSKeyedUnarchiver::registerClass<Label>();
  const auto shapes =
      NSKeyedUnarchiver::unarchivedObjectOfClass_fromData_error<NSArray>(data, error);
  if (!shapes) return nullptr;
  if (arrayWithObjectsKindOfClass(shapes, NSClass::of<Shape>())->count() != shapes->count()) {
    if (error != nullptr) {
      *error = NSError::errorWithDomain_code_userInfo(NSCocoaErrorDomain(), NSCoderReadCorruptError,
                                                      nullptr);
    }
    return nullptr;
  }
  return shapes->copy();
}

}  // namespace sketchbook
