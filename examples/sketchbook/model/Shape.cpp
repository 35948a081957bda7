#include "examples/sketchbook/model/Shape.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace ZKFoundationExtensions;

namespace sketchbook {

Shape::Shape(const NSRef<NSCoder>& coder)
    : name(coder->decodeObjectOfClass<NSString>(u"name"_ns)),
      link(coder->decodeObjectOfClass<NSURL>(u"link"_ns)),
      frame({coder->decodeDoubleForKey(u"x"_ns), coder->decodeDoubleForKey(u"y"_ns)},
            {coder->decodeDoubleForKey(u"width"_ns), coder->decodeDoubleForKey(u"height"_ns)}),
      colour(coder->decodeIntegerForKey(u"colour"_ns) & 0xFFFFFF) {
  if (isEmptyString(name)) refuse("a shape without a name");
  const auto inside = [](CGFloat value, CGFloat least) {
    constexpr CGFloat limit = 1e9;
    if (!std::isfinite(value)) refuse("a shape that lies nowhere");
    return std::clamp(value, least, limit);
  };
  frame = {{inside(frame.origin.x, -1e9), inside(frame.origin.y, -1e9)},
           {inside(frame.size.width, 0), inside(frame.size.height, 0)}};
}

void Shape::encodeWithCoder(const NSRef<NSCoder>& coder) const {
  coder->encodeObject_forKey(name, u"name"_ns);
  coder->encodeObject_forKey(link, u"link"_ns);
  coder->encodeDouble_forKey(frame.origin.x, u"x"_ns);
  coder->encodeDouble_forKey(frame.origin.y, u"y"_ns);
  coder->encodeDouble_forKey(frame.size.width, u"width"_ns);
  coder->encodeDouble_forKey(frame.size.height, u"height"_ns);
  coder->encodeInteger_forKey(colour, u"colour"_ns);
}

NSRef<NSObject> Shape::copyWithZone_refTable_copySpec_subCopySpec(
    NSZone* /*zone*/, const NSRef<NSMapTable>& refTable, ZKCopySpec /*copySpec*/,
    ZKCopySpec /*subCopySpec*/) const {
  auto copy = shallowCopy();
  refTable->setObject_forKey(copy, self());
  return copy;
}

bool Shape::isEqual(const NSRef<NSObject>& other) const {
  return other && other->objectClass() == objectClass() &&
         NSKeyedArchiver::archivedDataWithRootObject(self()) ==
             NSKeyedArchiver::archivedDataWithRootObject(other);
}

const NSPropertyTable& Shape::propertyTable() const {
  static const NSPropertyTable table(
      {{u"name", &Shape::name}, {u"link", &Shape::link}, {u"text", &Shape::text}},
      NSObject::propertyTable());
  return table;
}

bool Shape::isHit(NSPoint point, double tolerance) const {
  return NSPointInRect(point, NSInsetRect(frame, -tolerance, -tolerance));
}

void Shape::refuse(const char* reason) {
  NSException::raise(NSInvalidUnarchiveOperationException, reason);
}

NSRef<Shape> copyOf(const NSRef<Shape>& shape) { return copyWithCopySpec(shape, 0).as<Shape>(); }

NSRect frameAround(const NSRef<NSArray>& shapes) {
  std::vector<NSPoint> corners;
  for (const auto& shape : shapes->each<Shape>()) {
    corners.push_back(shape->frame.origin);
    corners.emplace_back(NSMaxX(shape->frame), NSMaxY(shape->frame));
  }
  return ZKRectAroundPoints(corners);
}

NSRef<NSString> svgColour(NSInteger colour) {
  return NSString::stringWithFormat(u"#%06x"_ns, colour);
}

NSRef<NSString> svgText(const NSRef<NSString>& text) {
  auto result = text->mutableCopy();
  const auto replace = [&](const NSRef<NSString>& sign, const NSRef<NSString>& entity) {
    result->replaceOccurrencesOfString_withString_options_range(sign, entity, NSLiteralSearch,
                                                                {0, result->length()});
  };
  replace(u"&"_ns, u"&amp;"_ns);
  replace(u"<"_ns, u"&lt;"_ns);
  replace(u">"_ns, u"&gt;"_ns);
  replace(u"\""_ns, u"&quot;"_ns);
  std::u16string units(result->view());
  std::erase_if(units, [](char16_t unit) {
    return (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
  });
  return NSMake<NSString>(units);
}

}  // namespace sketchbook
