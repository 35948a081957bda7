#pragma once

#include <mutex>

#include <Foundation/NSObject.h>
#include <Foundation/NSSet.h>
#include <ZKFoundation/Classes/ObjectTreeVisitors/ZKObjectVisitor.h>
#include <ZKFoundation/ZKExport.h>

/// A visitor that visits each object once and keeps a record of them; objects that are equal are
/// one. It may be used by several threads at once. Asking whether to visit and visiting are two
/// calls: threads that ask for the same object at the same time may both be told to visit it.
class ZK_EXPORT ZKGenericVisitor : public NSObject, public ZKObjectVisitor {
 public:
  ZKGenericVisitor();
  ZKGenericVisitor(const ZKGenericVisitor&) = delete;

  /// The objects that have been visited up to now.
  NSRef<NSSet> visitedObjects() const;

  /// True unless the object, or one that is equal, has been visited.
  bool shouldVisitObject(const NSRef<ZKTraversableObject>& object) override;
  /// Records the object and leaves `stop` alone. Nil raises `NSInvalidArgumentException`.
  void visitObject_stop(const NSRef<ZKTraversableObject>& object, bool& stop) override;

  /// "visitedObjects" besides what every object publishes.
  const NSPropertyTable& propertyTable() const override;

 private:
  // Recursive: the objects' own `isEqual` and `hash` may ask the visitor.
  mutable std::recursive_mutex _lock;
  NSRef<NSMutableSet> _visitedObjects;
};
