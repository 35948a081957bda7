#include "examples/sketchbook/model/Pictures.h"

using namespace ZKFoundationExtensions;

namespace sketchbook {

bool forEachShape(const NSRef<NSArray>& shapes, const Progress& progress,
                  const std::function<void(const Shape&)>& function) {
  const auto count = static_cast<double>(shapes->count());
  double done = 0;
  for (const auto& shape : shapes->each<Shape>()) {
    if (progress && !progress(done++ / count)) return false;
    function(*shape);
  }
  return true;
}

NSRect pictureArea(const NSRef<NSArray>& shapes) {
  constexpr double margin = 20;
  return NSIntegralRect(NSInsetRect(frameAround(shapes), -margin, -margin));
}

NSRef<NSString> svgPicture(const NSRef<NSArray>& shapes, const Progress& progress) {
  const NSRect area = pictureArea(shapes);
  const auto text = NSMake<NSMutableString>();
  text->appendString(NSString::stringWithFormat(
      u"<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"%1$.10g %2$.10g %3$.10g %4$.10g\" width=\"%3$.10g\" height=\"%4$.10g\">\n"_ns,
      area.origin.x, area.origin.y, area.size.width, area.size.height));
  const bool isComplete = forEachShape(shapes, progress, [&](const Shape& shape) {
    const bool isLink = isSafeToOpen(shape.link);
    appendStrings(text, {u"<g><title>"_ns, svgText(shape.name), u"</title>"_ns});
    if (isLink) {
      appendStrings(text, {u"<a href=\""_ns, svgText(shape.link->absoluteString()), u"\">"_ns});
    }
    appendStrings(text, {shape.svgElement(), isLink ? u"</a>"_ns : u""_ns, u"</g>\n"_ns});
  });
  text->appendUnits(u"</svg>\n");
  return isComplete ? text->copy() : nullptr;
}

NSRef<NSArray> wordsOfLabels(const NSRef<NSArray>& shapes, const Progress& progress) {
  const auto words = NSMake<NSMutableSet>();
  const bool isComplete = forEachShape(shapes, progress, [&](const Shape& shape) {
    if (!shape.text()) return;
    const auto found = componentsSeparatedByWholeCharactersInSet_trimWhitespace(
        shape.text()->localizedLowercaseString(), wordBoundariesCharacterSet(), false);
    for (const auto& word : found) words->addObject(word);
  });
  if (!isComplete) return nullptr;
  words->removeObject(u""_ns);
  return sortedArrayUsingSelector(words->allObjects(), &NSString::compare);
}

}  // namespace sketchbook
