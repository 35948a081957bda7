#pragma once

#include <string_view>
#include <utility>

#include <Foundation/Collections/NestedCollections.h>
#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

// Operations that collections share, made by walking over them with the check that a walk makes.

/// Appends the descriptions of the objects with the separator between them.
template <class Collection>
void NSAppendDescriptions(NSUnitBuffer& text, const Collection& collection,
                          std::u16string_view separator) {
  bool isFirst = true;
  for (const auto& object : collection) {
    if (!std::exchange(isFirst, false)) text.append(separator);
    const auto* const string = object.template cast<const NSString>();
    text.append(string != nullptr ? string->view() : NSViewOf(object->description()));
  }
}

/// Joins the descriptions of the objects by ", ", in brackets. Of a collection in itself they hold
/// "…" alone.
template <class Collection>
[[nodiscard]] NSRef<NSString> NSDescribeObjects(std::u16string_view opening,
                                                const Collection& collection,
                                                std::u16string_view closing) {
  const NSDescribing describing(collection);
  NSUnitBuffer text(opening);
  if (describing.isWithin()) {
    text.append(u"…");
  } else {
    NSAppendDescriptions(text, collection, u", ");
  }
  text.append(closing);
  return NSMake<NSString>(std::move(text));
}

/// Gives "{a = 1; b = 2}", and "{…}" of a collection in itself.
template <class Collection>
[[nodiscard]] NSRef<NSString> NSDescribeEntries(const Collection& collection) {
  const NSDescribing describing(collection);
  if (describing.isWithin()) return u"{…}"_ns;
  NSUnitBuffer text(u"{");
  for (const auto& [key, object] : collection) {
    if (text.size() > 1) text.append(u"; ");
    text.append(key->description()->view());
    text.append(u" = ");
    text.append(object->description()->view());
  }
  text.append(u"}");
  return NSMake<NSString>(std::move(text));
}

/// Calls the block of `enumerateObjectsUsingBlock:` until it stops the walk.
template <class Collection>
void NSEnumerateWithIndexes(const Collection& collection,
                            NSBlockRef<void(const NSRef<NSObject>&, NSUInteger, bool&)> block) {
  if (!block) NSRaiseNilArgument("aBlock", "enumerateObjectsUsingBlock:");
  NSUInteger index = 0;
  bool stop = false;
  for (const auto& object : collection) {
    block(object, index++, stop);
    if (stop) return;
  }
}
