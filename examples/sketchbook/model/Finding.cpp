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
  return finder.wraps() ? first : std::nullopt;
}

NSUInteger replaceAll(Drawing& drawing, const ZKTextFinder& finder,
                      const NSRef<NSString>& replacement, NSRef<NSError>* error) {
  const auto shapes = drawing.shapes();
  const auto labels = NSMake<NSMutableIndexSet>();
  NSRef<NSError> failure;
  for (NSUInteger index = 0; index < shapes->count(); ++index) {
    const auto text = shapes[index].as<Shape>()->text();
    if (text && !finder.matchesInString(text, &failure).empty()) labels->addIndex(index);
  }
  NSUInteger count = 0;
  const auto changed = changedShapes(shapes, labels, [&](Shape& shape) {
    const auto text = shape.text()->mutableCopy();
    count +=
        finder.replaceAllInString_withString_selectedRange(text, replacement, nullptr, &failure);
    shape.setText(text);
  });
  if (failure && error != nullptr) *error = failure;
  if (failure || count == 0) return 0;
  drawing.perform(u"Replace All"_ns, changed, labels);
  return count;
}

}  // namespace sketchbook
