#include "Foundation/NSMapTable.h"

#include <Foundation/Collections/CollectionWalks.h>
#include <Foundation/Collections/NestedCollections.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSException.h>

void NSMapTable::setObject_forKey(const NSRef<NSObject>& anObject, const NSRef<NSObject>& aKey) {
  if (!anObject) NSRaiseNilArgument("anObject", "setObject:forKey:");
  if (!aKey) NSRaiseNilArgument("aKey", "setObject:forKey:");
  const NSUInteger hash = _entries.hashOf(aKey);
  if (!_entries.replace(aKey, hash, anObject)) _entries.append(aKey, hash, anObject);
}

NSRef<NSArray> NSMapTable::allKeys() const { return NSMake<NSArray>(_entries.keys()); }

NSRef<NSArray> NSMapTable::allValues() const { return NSMake<NSArray>(_entries.objects()); }

bool NSMapTable::isEqual(const NSRef<NSObject>& other) const {
  const auto* const table = other.cast<NSMapTable>();
  if (table == nullptr || table == this) return table != nullptr;
  return NSCompareCollections(
      *this, other, [&](const auto& /*other*/) { return _entries.isEqual(table->_entries); });
}

NSRef<NSString> NSMapTable::description() const { return NSDescribeEntries(*this); }

NSRef<NSObject> NSMapTable::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMapTable>(*this);
}
