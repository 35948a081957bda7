#include "ZKFoundation/Categories/NSObject+ZKDeepCopying.h"

#include <array>
#include <new>
#include <utility>

#include <Foundation/NSException.h>

namespace {

// What stands for a pair, the object's own and the one for what it refers to.
constexpr std::array<std::array<ZKCopySpec, 3>, 3> compoundSpecs{{{6, 3, 1}, {7, 0, 3}, {8, 0, 4}}};

const ZKDeepObjectCopyingProtocol& checkedDeepCopyable(const NSRef<NSObject>& object,
                                                       std::u16string_view exception) {
  const auto* const copyable = dynamic_cast<const ZKDeepObjectCopyingProtocol*>(&*object);
  if (copyable == nullptr) {
    NSException::raise(exception, "object does not support ZKDeepObjectCopyingProtocol");
  }
  return *copyable;
}

NSRef<NSMapTable> referenceTable() {
  try {
    return NSMapTable::strongToStrongObjectsMapTable();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// The object's own and the one for what it refers to.
std::pair<ZKCopySpec, ZKCopySpec> specsFor(const NSRef<NSObject>& object,
                                           const ZKDeepObjectCopyingProtocol& copyable,
                                           ZKCopySpec copySpec) {
  ZKCopySpec sub = copySpec;
  if (copySpec >= 3 && copySpec <= 5) copySpec = copyable.copySpec(copySpec);
  const ZKCopySpec own =
      ZKFoundationExtensions::copySpecForCopySpec_subCopySpec(object, copySpec, &sub);
  return {own, sub};
}

}  // namespace

ZKDeepObjectCopyingProtocol::~ZKDeepObjectCopyingProtocol() = default;

namespace ZKFoundationExtensions {

NSRef<NSObject> copyWithZone_copySpec(const NSRef<NSObject>& object, NSZone* zone,
                                      ZKCopySpec copySpec) {
  NSCheckArgument("copyWithZone:copySpec:", "object", object);
  // What it answers may change the caller's own reference.
  const auto kept = NSRef<NSObject>::share(object.get());
  const auto& copyable =
      checkedDeepCopyable(kept, u"Cannot copy object using copyWithZone:copySpec:");
  const auto [own, sub] = specsFor(kept, copyable, copySpec);
  const auto table = referenceTable();
  if (!table) return nullptr;
  return copyable.copyWithZone_refTable_copySpec_subCopySpec(zone, table, own, sub);
}

NSRef<NSObject> copyWithCopySpec(const NSRef<NSObject>& object, ZKCopySpec copySpec) {
  NSCheckArgument("copyWithCopySpec:", "object", object);
  checkedDeepCopyable(object, u"Cannot copy object using copyWithCopySpec");
  return copyWithZone_copySpec(object, nullptr, copySpec);
}

NSRef<NSArray> copyObjectsWithCopySpec(const NSRef<NSArray>& array, ZKCopySpec copySpec) {
  NSCheckArgument("copyObjectsWithCopySpec:", "array", array);
  const auto table = referenceTable();
  if (!table) return nullptr;
  const auto copies = NSMake<NSMutableArray>();
  copies->reserve(array->count());
  for (const auto& object : array) {
    auto copy = table->objectForKey(object);
    if (!copy) {
      const auto& copyable =
          checkedDeepCopyable(object, u"Cannot copy object using copyWithCopySpec");
      const auto [own, sub] = specsFor(object, copyable, copySpec);
      copy = copyable.copyWithZone_refTable_copySpec_subCopySpec(nullptr, table, own, sub);
    }
    copies->addObject(copy);
  }
  return copies->copy();
}

ZKCopySpec copySpecForCopySpec_subCopySpec(const NSRef<NSObject>& /*object*/, ZKCopySpec copySpec,
                                           ZKCopySpec* subCopySpec) {
  for (const auto& [compound, own, sub] : compoundSpecs) {
    if (compound != copySpec) continue;
    if (subCopySpec != nullptr) *subCopySpec = sub;
    return own;
  }
  return copySpec;
}

}  // namespace ZKFoundationExtensions
