#pragma once

#include <Foundation/NSClass.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSRef.h>
#include <Foundation/NSTypes.h>
#include <Foundation/detail/ReferenceCount.h>

class NSArray;
class NSDelay;
class NSDictionary;
class NSPropertyTable;
class NSSelector;
class NSThread;

/// The root of all objects. Derive from it as from any C++ class and make instances with `NSMake`:
///
///     struct Chapter : NSObject { NSRef<NSString> heading; };
///     auto chapter = NSMake<Chapter>();
///
/// Objects live on the heap and die with their last `NSRef`. Where assertions are on, an object
/// that is held again while it dies, released too often, or held although it stands on the stack
/// ends the program with the name of its class.
class NS_EXPORT NSObject {
 public:
  virtual ~NSObject() = default;

  /// Gives a strong reference to the object.
  [[nodiscard]] NSRef<NSObject> self() const noexcept { return share(this); }

  [[nodiscard]] NSClass objectClass() const noexcept { return NSClass(typeid(*this)); }
  /// Whether the object is an instance of the class or of one that derives from it.
  [[nodiscard]] bool isKindOfClass(NSClass aClass) const;
  /// Whether the object is an instance of exactly this class.
  [[nodiscard]] bool isMemberOfClass(NSClass aClass) const noexcept {
    return objectClass() == aClass;
  }

  /// Whether the contents are the same; a plain object equals itself alone. Nil equals nothing. A
  /// class that overrides it overrides `hash` as well.
  [[nodiscard]] virtual bool isEqual(const NSRef<NSObject>& other) const;
  /// Gives equal objects the same number.
  [[nodiscard]] virtual NSUInteger hash() const;
  /// Gives a text for people: "<Class: 0x…>" for a plain object.
  [[nodiscard]] virtual NSRef<NSString> description() const;

  /// Lists what the class publishes for key-value reads; `NSKeyValueCoding.h` shows how. The root
  /// publishes "self", "hash", "description" and "bundle".
  [[nodiscard]] virtual const NSPropertyTable& propertyTable() const;
  /// Gives the value of the property, numbers and structures boxed. For a key that is not published
  /// it asks `valueForUndefinedKey`. A nil key raises `NSInvalidArgumentException`.
  [[nodiscard]] virtual NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const;
  /// Follows keys joined by "."; gives nil as soon as one of them does.
  [[nodiscard]] virtual NSRef<NSObject> valueForKeyPath(const NSRef<NSString>& keyPath) const;
  /// Answers for a key that the class does not publish: raises `NSUndefinedKeyException`, or asks
  /// the `NSUndefinedKeyHandler` when one is set.
  [[nodiscard]] virtual NSRef<NSObject> valueForUndefinedKey(const NSRef<NSString>& key) const;

  /// Gives an immutable copy, by `copyWithZone` without a zone; copyable classes give it with their
  /// own type. Objects are copied so, never assigned.
  [[nodiscard]] NSRef<NSObject> copy() const { return copyWithZone(nullptr); }
  /// Gives an immutable copy: classes override it, or raise `NSInvalidArgumentException`.
  [[nodiscard]] virtual NSRef<NSObject> copyWithZone(NSZone* zone) const;
  /// Gives a copy that may be changed; classes without one raise `NSInvalidArgumentException`.
  [[nodiscard]] virtual NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const;

  /// Performs the selector with the object as its argument, on the calling thread's run loop in the
  /// default mode, in a later pass and not before the delay has passed. The request holds the
  /// receiver and the argument until it has run or been cancelled. Requests run in the order of
  /// their times, and those of the same time in the order in which they were made.
  void performSelector_withObject_afterDelay(NSSelector aSelector, NSRef<NSObject> object,
                                             NSDelay delay);
  /// Performs the selector after the delay, in these modes of the calling thread's run loop; with
  /// nil or no modes schedules nothing.
  void performSelector_withObject_afterDelay_inModes(NSSelector aSelector, NSRef<NSObject> object,
                                                     NSDelay delay, const NSRef<NSArray>& modes);
  /// Cancels the calling thread's delayed requests for this very target that have an equal selector
  /// and an equal argument, and gives their number.
  static NSUInteger cancelPreviousPerformRequestsWithTarget_selector_object(
      const NSRef<NSObject>& aTarget, NSSelector aSelector, const NSRef<NSObject>& object);

  /// Performs the selector on that thread's run loop, in its common modes. With `wait` the call
  /// returns when that has happened, and performs at once on the thread itself; without it the
  /// request is queued after those that are there, on the thread itself too. When the thread has
  /// ended, or ends first, nothing is performed and the call returns; when it never runs its run
  /// loop, a call that waits never returns. Waiting for a thread that itself waits for the calling
  /// one raises `NSInternalInconsistencyException`, a nil thread `NSInvalidArgumentException`.
  ///
  /// Without `wait` the request alone holds an argument that is moved in; it dies on that thread.
  void performSelector_onThread_withObject_waitUntilDone(NSSelector aSelector,
                                                         const NSRef<NSThread>& thread,
                                                         NSRef<NSObject> object, bool wait);
  /// Performs the selector on that thread's run loop, in these modes; nil or none perform nothing.
  void performSelector_onThread_withObject_waitUntilDone_modes(NSSelector aSelector,
                                                               const NSRef<NSThread>& thread,
                                                               NSRef<NSObject> object, bool wait,
                                                               const NSRef<NSArray>& modes);
  /// Performs the selector on the main thread's run loop, in its common modes.
  void performSelectorOnMainThread_withObject_waitUntilDone(NSSelector aSelector,
                                                            NSRef<NSObject> object, bool wait);
  /// Performs the selector on the main thread's run loop, in these modes.
  void performSelectorOnMainThread_withObject_waitUntilDone_modes(NSSelector aSelector,
                                                                  NSRef<NSObject> object, bool wait,
                                                                  const NSRef<NSArray>& modes);
  /// Performs the selector on a new thread. Raises `NSGenericException` when the system gives none.
  void performSelectorInBackground_withObject(NSSelector aSelector, NSRef<NSObject> object);

  NSObject& operator=(const NSObject&) = delete;

  void retain() const noexcept {
#ifndef NDEBUG
    checkIsAlive("retained");
#endif
    _count.retain();
  }
  void release() const noexcept {
#ifndef NDEBUG
    checkIsAlive("released");
#endif
    // A sole holder cannot be joined by another: it needs no costly read-modify-write.
    if (_count.isSole()) {
#ifndef NDEBUG
      _count.end();
#endif
      delete this;
    } else if (_count.release()) {
      die();
    }
  }
  /// Whether the caller holds the only reference; no for an object that has weak references, which
  /// may give another at any time, or that is noted by `setCountsLiveObjects`.
  [[nodiscard]] bool isUniquelyReferenced() const noexcept { return _count.isSole(); }
  /// Counts the references to the object, for tests and debuggers.
  [[nodiscard]] std::uint32_t retainCount() const noexcept { return _count.value(); }

  /// Has `NSMake` note each object that it makes from now on, until it dies, or no more. This is to
  /// find what is never released: noted objects take time and memory, others none.
  static void setCountsLiveObjects(bool counts) noexcept;
  /// Counts the noted objects that are alive, in numbers by the names of their classes.
  [[nodiscard]] static NSRef<NSDictionary> liveObjectCounts();

 protected:
  NSObject() noexcept = default;
  NSObject(const NSObject&) noexcept = default;

  /// Gives a strong reference to this object as the class that asks for it. Only for objects that
  /// `NSMake` has made, and not before their constructor has returned.
  template <class T>
  [[nodiscard]] static NSRef<T> share(const T* object) noexcept {
    // Objects are never defined const: constness only says that the caller does not change them.
    return NSRef<T>::share(const_cast<T*>(object));
  }

 private:
  friend class NSWeakAnchor;
  friend class NSLiveObjects;

  // After the last release, of an object that may be watched.
  void die() const noexcept;
  // Ends the program when the object has died or stands on the stack.
  void checkIsAlive(const char* use) const noexcept;

  NSReferenceCount _count;
};

/// Answers key-value reads of unpublished keys in place of the exception.
using NSUndefinedKeyHandler = NSRef<NSObject> (*)(const NSObject& object,
                                                  const NSRef<NSString>& key);

/// Sets the process's handler and gives the former; null stands for the exception. From any thread.
NS_EXPORT NSUndefinedKeyHandler NSSetUndefinedKeyHandler(NSUndefinedKeyHandler handler) noexcept;
