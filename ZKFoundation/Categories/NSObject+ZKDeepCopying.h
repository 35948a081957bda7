#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSMapTable.h>
#include <Foundation/NSObject.h>
#include <ZKFoundation/ZKExport.h>

/// Says how deeply and in what manner to copy. Classes give the numbers their meaning; the library
/// only passes 3, 4 and 5 to the object's `copySpec` before use, and takes 6, 7 and 8 for pairs.
using ZKCopySpec = NSInteger;

/// Lets the objects of a class be copied together with the objects that they refer to.
///
/// A copy enters itself into the reference table before it copies what it refers to, and who needs
/// a copy looks there first. So an object that is reached twice, or through a cycle, is copied
/// once. `docs/object-graphs.md` shows a whole class.
class ZK_EXPORT ZKDeepObjectCopyingProtocol {
 public:
  virtual ~ZKDeepObjectCopyingProtocol();

  /// Makes a copy under `copySpec`; what the object refers to is copied under `subCopySpec`. The
  /// table is the same one throughout a copy: copies by their originals, which it compares by
  /// `isEqual`, so that equal objects count as one. The zone is passed on.
  [[nodiscard]] virtual NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(
      NSZone* zone, const NSRef<NSMapTable>& refTable, ZKCopySpec copySpec,
      ZKCopySpec subCopySpec) const = 0;

  /// Gives the copy spec that the object really wants where 3, 4 or 5 is asked for.
  [[nodiscard]] virtual ZKCopySpec copySpec(ZKCopySpec requested) const = 0;

 protected:
  ZKDeepObjectCopyingProtocol() = default;
  ZKDeepObjectCopyingProtocol(const ZKDeepObjectCopyingProtocol&) = default;
  ZKDeepObjectCopyingProtocol& operator=(const ZKDeepObjectCopyingProtocol&) = default;
};

namespace ZKFoundationExtensions {

/// Makes a copy of the object under the copy spec, with a reference table of its own. A copy spec
/// of 3, 4 or 5 is first passed to the object's own `copySpec`. The result is split by
/// `copySpecForCopySpec_subCopySpec`; where that sets nothing, what the object refers to is copied
/// under what was asked for at first.
///
/// An object whose class does not implement `ZKDeepObjectCopyingProtocol` raises "Cannot copy
/// object using copyWithZone:copySpec:". Nil when there is no memory for the table. A nil object
/// raises `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT NSRef<NSObject> copyWithZone_copySpec(const NSRef<NSObject>& object,
                                                              NSZone* zone, ZKCopySpec copySpec);

/// Makes a copy without a zone. The exception then is "Cannot copy object using copyWithCopySpec".
[[nodiscard]] ZK_EXPORT NSRef<NSObject> copyWithCopySpec(const NSRef<NSObject>& object,
                                                         ZKCopySpec copySpec);

/// Makes copies of an array's objects, in their order, each as `copyWithCopySpec` does but all with
/// one reference table: what two of them refer to is copied once, and so is an object that occurs
/// twice. Nil when there is no memory for the table. A nil array or copy raises
/// `NSInvalidArgumentException`, an object that cannot be copied what it raises there.
[[nodiscard]] ZK_EXPORT NSRef<NSArray> copyObjectsWithCopySpec(const NSRef<NSArray>& array,
                                                               ZKCopySpec copySpec);

/// Splits a copy spec: gives the object's own and sets that for what it refers to. 6 is 3 and 1, 7
/// is 0 and 3, 8 is 0 and 4; any other is given back and sets nothing. The pointer may be null.
ZK_EXPORT ZKCopySpec copySpecForCopySpec_subCopySpec(const NSRef<NSObject>& object,
                                                     ZKCopySpec copySpec, ZKCopySpec* subCopySpec);

}  // namespace ZKFoundationExtensions
