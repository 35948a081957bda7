#include "Foundation/NSOperationQueue.h"

#include <Foundation/NSNeverDestroyed.h>

NSOperationQueue::~NSOperationQueue() = default;

const NSRef<NSOperationQueue>& NSOperationQueue::mainQueue() {
  static const NSNeverDestroyed<NSRef<NSOperationQueue>> queue(NSMake<NSOperationQueue>());
  return *queue;
}
