#pragma once

#include <Foundation/NSObject.h>
#include <ZKFoundation/ZKExport.h>

/// Names what a traversal visits: objects of the application's own classes. Which parts an object
/// offers to a visitor, and in which order, is for its class to say.
using ZKTraversableObject = NSObject;

/// Is told of each object by a traversal. `docs/object-graphs.md` shows one.
class ZK_EXPORT ZKObjectVisitor {
 public:
  virtual ~ZKObjectVisitor();

  /// Whether the traversal should visit the object.
  [[nodiscard]] virtual bool shouldVisitObject(const NSRef<ZKTraversableObject>& object) = 0;
  /// Visits the object. Setting `stop` asks the traversal to end.
  virtual void visitObject_stop(const NSRef<ZKTraversableObject>& object, bool& stop) = 0;

 protected:
  ZKObjectVisitor() = default;
  ZKObjectVisitor(const ZKObjectVisitor&) = default;
  ZKObjectVisitor& operator=(const ZKObjectVisitor&) = default;
};
