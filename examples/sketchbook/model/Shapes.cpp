#include "examples/sketchbook/model/Shapes.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

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
  std::vector<NSRect> bounds;
  for (std::size_t k = 0; k + 3 < controls.size(); k += 3) {
    bounds.push_back(ZKCurveBounds(&controls[k]));
  }
  return ZKRectAroundRects(bounds);
}

// Also a label without a text can be seen and clicked.
double widestOf(const NSRef<NSArray>& lines) {
  double widest = 0.25;
  for (const auto& line : lines->each<NSString>()) {
    widest = std::max(widest, Label::widthOfLine(line));
  }
  return widest;
}

// Takes a number and the blank after it off the text.
double takeFraction(std::u16string_view& text) {
  constexpr double limit = 1e3;
  const auto number = NSTakeDouble(text);
  if (!number || !(std::abs(*number) <= limit) || text.empty()) Shape::refuse("a broken path");
  text.remove_prefix(1);
  return *number;
}

}  // namespace

NSRef<NSString> Rectangle::svgElement() const {
  return NSString::stringWithFormat(
      u"<rect x=\"%.10g\" y=\"%.10g\" width=\"%.10g\" height=\"%.10g\" fill=\"#%06x\" fill-opacity=\"0.25\" stroke=\"#%06x\" stroke-width=\"%g\"/>"_ns,
      frame.origin.x, frame.origin.y, frame.size.width, frame.size.height, colour, colour,
      lineWidth);
}

Path::Path(const NSRef<NSString>& aName, std::span<const NSPoint> points)
    : Shape(aName, NSZeroRect), _fractions(smoothLine(points)) {
  frame = boundsOf(_fractions);
  const auto [width, height] = frame.size;
  for (NSPoint& point : _fractions) {
    // A line without width or height lies as on a diagonal, which it becomes when it gets one.
    const NSPoint at = point - frame.origin;
    const double x = width > 0 ? at.x / width : height > 0 ? at.y / height : 0;
    point = {x, height > 0 ? at.y / height : x};
  }
}

Path::Path(const NSRef<NSCoder>& coder) : Shape(coder) {
  const auto text = coder->decodeObjectOfClass<NSString>(u"fractions"_ns);
  for (auto rest = NSViewOf(text); !rest.empty();) {
    const double x = takeFraction(rest);
    _fractions.emplace_back(x, takeFraction(rest));
  }
  if (_fractions.size() < 4 || _fractions.size() % 3 != 1) refuse("a path without curves");
}

void Path::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  Shape::encodeWithCoder(coder);
  const auto text = NSMake<NSMutableString>();
  for (const auto [x, y] : _fractions) {
    text->appendString(
        NSString::stringWithFormat(u"%@ %@ "_ns, NSMake<NSNumber>(x), NSMake<NSNumber>(y)));
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
    if (ZKProjectOnCurve(&controls[k], point).distance <= reach) return true;
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
    const auto* const letter = k == 0 ? "M" : k % 3 == 1 ? " C" : "";
    data->appendString(
        NSString::stringWithFormat(u"%s %.10g %.10g"_ns, letter, controls[k].x, controls[k].y));
  }
  return NSString::stringWithFormat(
      u"<path d=\"%@\" fill=\"none\" stroke=\"#%06x\" stroke-width=\"%g\"/>"_ns, data, colour,
      lineWidth);
}

double (*Label::widthOfLine)(const NSRef<NSString>&) = [](const NSRef<NSString>& line) {
  return 0.42 * static_cast<double>(line->length());
};

Label::Label(const NSRef<NSString>& aName, NSPoint origin, double lineHeight,
             const NSRef<NSString>& text)
    : Label(aName, NSRect(origin, {0, lineHeight}), u""_ns) {
  setText(text);
}

Label::Label(const NSRef<NSCoder>& coder)
    : Shape(coder), _text(coder->decodeObjectOfClass<NSString>(u"text"_ns)) {
  if (!_text) refuse("a label without a text");
  _lines = linesOf(_text);
}

void Label::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  Shape::encodeWithCoder(coder);
  coder->encodeObject_forKey(_text, u"text"_ns);
}

void Label::setText(const NSRef<NSString>& text) {
  const double height = lineHeight();
  _text = text->copy();
  _lines = linesOf(_text);
  frame.size = {height * widestOf(_lines), height * static_cast<double>(_lines->count())};
}

std::vector<Label::Line> Label::lines() const {
  const double scale = frame.size.width / widestOf(_lines);
  NSPoint baseline = frame.origin + NSPoint(0, fontSize());
  std::vector<Line> result;
  for (const auto& text : _lines->each<NSString>()) {
    if (text->length() > 0) result.push_back({text, baseline, widthOfLine(text) * scale});
    baseline.y += lineHeight();
  }
  return result;
}

NSRef<NSString> Label::svgElement() const {
  const auto element = NSMake<NSMutableString>();
  for (const auto& [text, baseline, width] : lines()) {
    element->appendString(NSString::stringWithFormat(
        u"<text x=\"%.10g\" y=\"%.10g\" textLength=\"%.10g\" lengthAdjust=\"spacingAndGlyphs\" font-family=\"sans-serif\" font-size=\"%.10g\" fill=\"#%06x\" xml:space=\"preserve\">%@</text>"_ns,
        baseline.x, baseline.y, width, fontSize(), colour, svgText(text)));
  }
  return element;
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
  if (arrayWithObjectsKindOfClass(shapes, NSClass::of<Shape>())->count() == shapes->count()) {
    return shapes->copy();
  }
  if (error != nullptr) {
    *error = NSError::errorWithDomain_code_description(
        NSCocoaErrorDomain(), NSCoderReadCorruptError, u"not all are shapes"_ns);
  }
  return nullptr;
}

}  // namespace sketchbook
