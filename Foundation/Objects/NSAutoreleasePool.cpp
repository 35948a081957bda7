#include "Foundation/NSAutoreleasePool.h"

#include <utility>
#include <vector>

namespace {

// Whether the thread has come to an end at which nothing can be kept for it any more.
thread_local bool isGone = false;

// Every pool is the part of its thread's stack from where it began.
class ObjectStack {
 public:
  ObjectStack() = default;
  ObjectStack(const ObjectStack&) = delete;
  ObjectStack& operator=(const ObjectStack&) = delete;
  ~ObjectStack() {
    releaseFrom(0);
    isGone = true;
  }

  [[nodiscard]] std::size_t size() const { return _objects.size(); }
  void push(const NSRef<NSObject>& object) { _objects.push_back(object); }

  // One by one: an object that dies may add others, which go in their turn.
  void releaseFrom(std::size_t start) {
    while (_objects.size() > start) {
      const NSRef<NSObject> last = std::move(_objects.back());
      _objects.pop_back();
    }
  }

 private:
  std::vector<NSRef<NSObject>> _objects;
};

thread_local ObjectStack objectStack;

}  // namespace

NSAutoreleasePool::NSAutoreleasePool() noexcept : _start(isGone ? 0 : objectStack.size()) {}

NSAutoreleasePool::~NSAutoreleasePool() {
  if (!isGone) objectStack.releaseFrom(_start);
}

void NSAutoreleasePool::addObject(const NSRef<NSObject>& object) {
  if (!object) return;
  if (isGone) {
    // There is no later moment: it stays.
    (void)NSRef(object).leak();
  } else {
    objectStack.push(object);
  }
}
