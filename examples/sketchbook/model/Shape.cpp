#include "examples/sketchbook/model/Shape.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace ZKFoundationExtensions;

namespace sketchbook {

Shape::Shape(const NSRef<NSCoder>& coder)
    : name(coder->decodeObjectOfClass<NSString>(u"name"_ns)),
      link(coder->decodeObjectOfClass<NSURL>(u"link"_ns)),
      colour(coder->decodeIntegerForKey(u"colour"_ns) & 0xFFFFFF) {
  if (isEmptyString(name)) refuse("a shape without a name");
  constexpr double limit = 1e9;
  const auto number = [&](const NSRef<NSString>& key, double least) {
    const double value = coder->decodeDoubleForKey(key);
    if (!std::isfinite(value)) refuse("a shape that lies nowhere");
    return std::clamp(value, least, limit);
  };
  frame = {{number(u"x"_ns, -limit), number(u"y"_ns, -limit)},
           {number(u"width"_ns, 0), number(u"height"_ns, 0)}};
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

NSRef<NSArray> changedShapes(const NSRef<NSArray>& shapes, const NSRef<NSIndexSet>& indexes,
                             const std::function<void(Shape&)>& change) {
  const auto copies = copyObjectsWithCopySpec(shapes->objectsAtIndexes(indexes), 0);
  for (const auto& copy : copies->each<Shape>()) change(*copy);
  const auto result = shapes->mutableCopy();
  result->replaceObjectsAtIndexes_withObjects(indexes, copies);
  return result->copy();
}

NSRect frameAround(const NSRef<NSArray>& shapes) {
  std::vector<NSRect> frames;
  frames.reserve(shapes->count());
  for (const auto& shape : shapes->each<Shape>()) frames.push_back(shape->frame);
  return ZKRectAroundRects(frames);
}

NSRef<NSString> svgText(const NSRef<NSString>& text) {
  auto result = text->mutableCopy();
  for (const auto& [sign, entity] : {std::pair(u"&"_ns, u"&amp;"_ns),
                                     {u"<"_ns, u"&lt;"_ns},
                                     {u">"_ns, u"&gt;"_ns},
                                     {u"\""_ns, u"&quot;"_ns}}) {
    result->replaceOccurrencesOfString_withString_options_range(sign, entity, NSLiteralSearch,
                                                                {0, result->length()});
  }
  std::u16string units(result->view());
  std::erase_if(units, [](char16_t unit) {
    return (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
  });
  return NSMake<NSString>(units);
}

}  // namespace sketchbook
