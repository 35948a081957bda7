#pragma once

#include <cstddef>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// A scope that keeps objects alive until it ends. Pools nest by scope, for each thread by itself:
///
///     NSAutoreleasePool pool;
///     NSString* title = NSAutorelease(document->title());  // valid until the scope ends
///
/// `NSRef` makes them rarely necessary: they are for code that hands plain pointers around.
class NS_EXPORT NSAutoreleasePool {
 public:
  NSAutoreleasePool() noexcept;
  /// Releases what was added since the pool began, the latest first.
  ~NSAutoreleasePool();
  NSAutoreleasePool(const NSAutoreleasePool&) = delete;
  NSAutoreleasePool& operator=(const NSAutoreleasePool&) = delete;

  /// Keeps the object until the calling thread's innermost pool ends, or the thread when it has no
  /// pool. Called while a thread's last objects die, it keeps the object for ever. Nil is ignored.
  static void addObject(const NSRef<NSObject>& object);

 private:
  std::size_t _start;
};

/// Adds the object to the innermost pool and gives it as a plain pointer.
template <class T>
T* NSAutorelease(const NSRef<T>& object) {
  NSAutoreleasePool::addObject(object);
  return object.get();
}
