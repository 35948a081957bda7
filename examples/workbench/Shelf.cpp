#include "examples/workbench/Shelf.h"

#include <algorithm>

using namespace ZKFoundationExtensions;

namespace {

NSInteger compareSizes(const NSRef<NSObject>& object, const NSRef<NSObject>& element,
                       void* /*context*/) {
  const auto sizeOf = [](const NSRef<NSObject>& document) {
    return static_cast<NSInteger>(document.as<Document>()->text()->length());
  };
  return sizeOf(element) - sizeOf(object);
}

// What the file's name has behind its last dot.
NSRef<NSString> kindOf(const NSRef<NSString>& path) {
  const auto name = path->componentsSeparatedByString(u"/"_ns)->lastObject().as<NSString>();
  const auto parts = name->componentsSeparatedByString(u"."_ns);
  return parts->count() > 1 ? parts->lastObject().as<NSString>() : emdashString();
}

NSRef<NSString> firstNames(const NSRef<NSArray>& documents) {
  const auto first = NSMake<NSIndexSet>(NSRange{0, 4});
  const auto names = transformedArrayUsingTransformator(
      arrayFromIndexes(documents, first),
      [](const NSRef<NSObject>& document) { return document.as<Document>()->name(); });
  return names->componentsJoinedByString(u", "_ns);
}

}  // namespace

void Shelf::add(const NSRef<Document>& document) {
  insertObject_inArraySortedUsingSelector(_byTitle, document, &Document::compareTitle);
  insertObject_inArraySortedUsingFunction_context(_bySize, document, compareSizes, nullptr);
  const auto kind = kindOf(document->name());
  if (!_byKind->objectForKey(kind)) _byKind->setObject_forKey(NSMake<NSMutableSet>(), kind);
  _byKind->objectForKey(kind).as<NSMutableSet>()->addObject(document);
}

void Shelf::print(std::ostream& out) const {
  const auto isTitled = NSPredicate::predicateWithBlock([](const NSRef<NSObject>& document) {
    return !isEmptyString(document.as<Document>()->title());
  });
  out << "  first by title: " << firstNames(_byTitle->filteredArrayUsingPredicate(isTitled))
      << "\n  longest: " << firstNames(_bySize) << "\n  kinds:";
  const auto kinds = NSMake<NSMutableArray>();
  for (const auto& kind : _byKind->allKeys()) {
    insertObject_inArraySortedUsingSelector(kinds, kind, &NSString::compare);
  }
  makeObjectsPerformBlock(kinds, [&](const NSRef<NSObject>& kind) {
    out << ' ' << kind << ' ' << _byKind->objectForKey(kind).as<NSSet>()->count();
  });
  out << '\n';
}
