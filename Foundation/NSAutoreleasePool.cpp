#include "Foundation/NSAutoreleasePool.h"

#include <utility>
#include <vector>

namespace {

// Every pool is the part of its thread's stack from where it began.
class ObjectStack {
 public:
  ObjectStack() = default;
  ObjectStack(const ObjectStack&) = delete;
  ObjectStack& operator=(const ObjectStack&) = delete;
  ~ObjectStack() { releaseFrom(0); }

  std::size_t size() const { return _objects.size(); }
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

NSAutoreleasePool::NSAutoreleasePool() noexcept : _start(objectStack.size()) {}

NSAutoreleasePool::~NSAutoreleasePool() { objectStack.releaseFrom(_start); }

void NSAutoreleasePool::addObject(const NSRef<NSObject>& object) {
  if (object) objectStack.push(object);
}
