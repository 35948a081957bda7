#pragma once

#include "examples/sketchbook/model/Drawing.h"

#include <optional>

namespace sketchbook {

/// Where a text was found: in the label at the index.
struct LabelMatch {
  NSUInteger index;
  NSRange range;

  friend bool operator==(const LabelMatch&, const LabelMatch&) = default;
};

/// Finds the match after `previous`, or the first one, in the labels from the back to the front;
/// goes around at the end if the finder wraps.
std::optional<LabelMatch> findNext(const NSRef<NSArray>& shapes, const ZKTextFinder& finder,
                                   std::optional<LabelMatch> previous, NSRef<NSError>* error);

/// Replaces all matches in all labels as one change that can be undone, and gives their number.
NSUInteger replaceAll(Drawing& drawing, const ZKTextFinder& finder,
                      const NSRef<NSString>& replacement, NSRef<NSError>* error);

}  // namespace sketchbook
