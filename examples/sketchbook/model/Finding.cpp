#include "examples/sketchbook/model/Finding.h"

#include <algorithm>

namespace sketchbook {

std::optional<LabelMatch> findNext(const NSRef<NSArray>& shapes, const ZKTextFinder& finder,
                                   std::optional<LabelMatch> previous, NSRef<NSError>* error) {
  std::optional<LabelMatch> first;
  for (NSUInteger index = 0; index < shapes->count(); ++index) {
    const auto text = shapes[index].as<Shape>()->text();
    if (!text) continue;
    for (const NSRange range : finder.matchesInString(text, error)) {
      if (!first) first = LabelMatch{index, range};
      if (!previous || index > previous->index ||
          (index == previous->index && range.location > previous->range.location)) {
        return LabelMatch{index, range};
      }
    }
    if (error != nullptr && *error) return std::nullopt;
  }
  return first;
}

NSUInteger replaceAll(Drawing& drawing, const ZKTextFinder& finder,
                      const NSRef<NSString>& replacement, NSRef<NSError>* error) {
  const auto changed = NSMake<NSMutableIndexSet>();
  const auto shapes = drawing.shapes()->mutableCopy();
  NSUInteger count = 0;
  for (NSUInteger index = 0; index < shapes->count(); ++index) {
    const auto shape = shapes[index].as<Shape>();
    if (!shape->text()) continue;
    const auto text = shape->text()->mutableCopy();
    NSRef<NSError> failure;
    const NSUInteger replaced =
        finder.replaceAllInString_withString_selectedRange(text, replacement, nullptr, &failure);
    if (failure) {
      if (error != nullptr) *error = failure;
      return 0;
    }
    if (replaced == 0) continue;
    count += replaced;
    changed->addIndex(index);
    const auto copy = copyOf(shape);
    copy->setText(text);
    shapes->replaceObjectAtIndex_withObject(index, copy);
  }
  if (count > 0) drawing.perform(u"Replace All"_ns, shapes, changed);
  return count;
}

}  // namespace sketchbook
