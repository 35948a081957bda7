#include "ZKFoundation/Classes/ObjectTreeVisitors/ZKGenericVisitor.h"

#include <Foundation/NSKeyValueCoding.h>

ZKObjectVisitor::~ZKObjectVisitor() = default;

ZKGenericVisitor::ZKGenericVisitor() : _visitedObjects(NSMake<NSMutableSet>(NSUInteger{20})) {}

NSRef<NSSet> ZKGenericVisitor::visitedObjects() const {
  const std::scoped_lock lock(_lock);
  return _visitedObjects->copy();
}

bool ZKGenericVisitor::shouldVisitObject(const NSRef<ZKTraversableObject>& object) {
  const std::scoped_lock lock(_lock);
  return !_visitedObjects->containsObject(object);
}

void ZKGenericVisitor::visitObject_stop(const NSRef<ZKTraversableObject>& object, bool& /*stop*/) {
  const std::scoped_lock lock(_lock);
  _visitedObjects->addObject(object);
}

const NSPropertyTable& ZKGenericVisitor::propertyTable() const {
  static const NSPropertyTable table({{u"visitedObjects", &ZKGenericVisitor::visitedObjects}},
                                     NSObject::propertyTable());
  return table;
}
