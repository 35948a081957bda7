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
      u"<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"%@ %@ %@ %@\" width=\"%3$@\" height=\"%4$@\">\n"_ns,
      NSMake<NSNumber>(area.origin.x), NSMake<NSNumber>(area.origin.y),
      NSMake<NSNumber>(area.size.width), NSMake<NSNumber>(area.size.height)));
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
  const auto letters = NSCharacterSet::alphanumericCharacterSet();
  const bool isComplete = forEachShape(shapes, progress, [&](const Shape& shape) {
    const auto text = shape.text();
    NSUInteger index = 0;
    while (text && index < text->length()) {
      const auto start =
          text->rangeOfCharacterFromSet_options_range(letters, 0, {index, text->length() - index});
      if (start.length == 0) break;
      const NSRange word = rangeOfWordContainingCharacter(text, start.location);
      words->addObject(text->substringWithRange(word)->localizedLowercaseString());
      index = word.location + word.length;
    }
  });
  if (!isComplete) return nullptr;
  return sortedArrayUsingSelector(words->allObjects(), &NSString::compare);
}

}  // namespace sketchbook
