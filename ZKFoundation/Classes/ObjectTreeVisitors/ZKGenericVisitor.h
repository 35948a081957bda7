#pragma once

#include <mutex>

#include <Foundation/NSObject.h>
#include <Foundation/NSSet.h>
#include <ZKFoundation/Classes/ObjectTreeVisitors/ZKObjectVisitor.h>
#include <ZKFoundation/ZKExport.h>

/// Visits each object once and keeps a record of them; objects that are equal are one. Usable by
/// several threads at once. Asking whether to visit and visiting are two calls: threads that ask
/// for the same object at the same time may both be told to visit it.
class ZK_EXPORT ZKGenericVisitor : public NSObject, public ZKObjectVisitor {
 public:
  ZKGenericVisitor();
  ZKGenericVisitor(const ZKGenericVisitor&) = delete;

  /// Gives the objects that have been visited up to now.
  [[nodiscard]] NSRef<NSSet> visitedObjects() const;

  /// Whether neither the object nor one that is equal has been visited.
  [[nodiscard]] bool shouldVisitObject(const NSRef<ZKTraversableObject>& object) override;
  /// Records the object and leaves `stop` alone. Nil raises `NSInvalidArgumentException`.
  void visitObject_stop(const NSRef<ZKTraversableObject>& object, bool& stop) override;

  /// Publishes "visitedObjects" besides what every object does.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

 private:
  // Recursive: the objects' own `isEqual` and `hash` may ask the visitor.
  mutable std::recursive_mutex _lock;
  NSRef<NSMutableSet> _visitedObjects;
};
