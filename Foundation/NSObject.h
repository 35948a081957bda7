#pragma once

#include <Foundation/NSClass.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSRef.h>
#include <Foundation/NSTypes.h>
#include <Foundation/detail/ReferenceCount.h>

class NSArray;
class NSDelay;
class NSPropertyTable;
class NSSelector;
class NSThread;

/// The root of all objects. Derive from it as from any C++ class and make instances with `NSMake`:
///
///     struct Chapter : NSObject { NSRef<NSString> heading; };
///     auto chapter = NSMake<Chapter>();
///
/// Objects live on the heap and die with their last `NSRef`.
class NS_EXPORT NSObject {
 public:
  virtual ~NSObject() = default;

  /// A strong reference to the object.
  NSRef<NSObject> self() const noexcept { return share(this); }

  NSClass objectClass() const noexcept { return NSClass(typeid(*this)); }
  /// Whether the object is an instance of the class or of one that derives from it.
  bool isKindOfClass(NSClass aClass) const;
  /// Whether the object is an instance of exactly this class.
  bool isMemberOfClass(NSClass aClass) const noexcept { return objectClass() == aClass; }

  /// Whether the contents are the same; for a plain object only it itself is. Nil equals nothing.
  /// Who overrides it overrides `hash` with it.
  virtual bool isEqual(const NSRef<NSObject>& other) const;
  /// The same number for objects that are equal.
  virtual NSUInteger hash() const;
  /// Text for people; a plain object gives "<Class: 0x…>".
  virtual NSRef<NSString> description() const;

  /// What the class publishes for key-value reads; `NSKeyValueCoding.h` shows how. The root
  /// publishes "self", "hash", "description" and "bundle".
  virtual const NSPropertyTable& propertyTable() const;
  /// The value of the property, numbers and structures boxed; of a key that is not published,
  /// the answer of `valueForUndefinedKey`. A nil key raises `NSInvalidArgumentException`.
  virtual NSRef<NSObject> valueForKey(const NSRef<NSString>& key) const;
  /// Follows keys joined by "."; nil as soon as one of them gives nil.
  virtual NSRef<NSObject> valueForKeyPath(const NSRef<NSString>& keyPath) const;
  /// Called for a key that the class does not publish. Raises `NSUndefinedKeyException`, unless an
  /// `NSUndefinedKeyHandler` is set: then the handler's answer is given.
  virtual NSRef<NSObject> valueForUndefinedKey(const NSRef<NSString>& key) const;

  /// An immutable copy, `copyWithZone` with no zone. (Objects are copied so, never assigned.)
  /// Copyable classes give it with their own type.
  NSRef<NSObject> copy() const { return copyWithZone(nullptr); }
  /// What a copyable class overrides; elsewhere it raises `NSInvalidArgumentException`.
  virtual NSRef<NSObject> copyWithZone(NSZone* zone) const;
  /// A copy that may be changed; classes without one raise `NSInvalidArgumentException`.
  virtual NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const;

  /// Performs the selector, with the object as its argument, on the calling thread's run loop in
  /// the default mode, after at least the delay and in a later pass. The request holds the receiver
  /// and the argument until it has run or been cancelled. Requests run in the order of their times,
  /// and of their making when these are equal.
  void performSelector_withObject_afterDelay(NSSelector aSelector, NSRef<NSObject> object,
                                             NSDelay delay);
  /// The same in those modes; with nil or no modes nothing is scheduled.
  void performSelector_withObject_afterDelay_inModes(NSSelector aSelector, NSRef<NSObject> object,
                                                     NSDelay delay, const NSRef<NSArray>& modes);
  /// Cancels the calling thread's delayed requests for this very target, with an equal selector and
  /// an equal argument.
  static void cancelPreviousPerformRequestsWithTarget_selector_object(
      const NSRef<NSObject>& aTarget, NSSelector aSelector, const NSRef<NSObject>& object);

  /// Performs the selector on that thread's run loop, in its common modes. With `wait` it returns
  /// when that has happened, and on the thread itself performs at once; else it is queued behind
  /// what is there, on the thread itself too. A thread that has ended, or ends first, performs
  /// nothing, and who waits returns; one that never runs its run loop lets wait for ever. Waiting
  /// for a thread that itself waits for the calling one raises `NSInternalInconsistencyException`,
  /// a nil thread `NSInvalidArgumentException`.
  ///
  /// Without `wait` the request alone holds an argument that is moved in, so that it dies on that
  /// thread.
  void performSelector_onThread_withObject_waitUntilDone(NSSelector aSelector,
                                                         const NSRef<NSThread>& thread,
                                                         NSRef<NSObject> object, bool wait);
  /// The same in those modes; with nil or no modes nothing is performed.
  void performSelector_onThread_withObject_waitUntilDone_modes(NSSelector aSelector,
                                                               const NSRef<NSThread>& thread,
                                                               NSRef<NSObject> object, bool wait,
                                                               const NSRef<NSArray>& modes);
  /// The same on the main thread.
  void performSelectorOnMainThread_withObject_waitUntilDone(NSSelector aSelector,
                                                            NSRef<NSObject> object, bool wait);
  void performSelectorOnMainThread_withObject_waitUntilDone_modes(NSSelector aSelector,
                                                                  NSRef<NSObject> object, bool wait,
                                                                  const NSRef<NSArray>& modes);
  /// Performs the selector on a new thread. Raises `NSGenericException` when the system gives none.
  void performSelectorInBackground_withObject(NSSelector aSelector, NSRef<NSObject> object);

  NSObject& operator=(const NSObject&) = delete;

  void retain() const noexcept { _count.retain(); }
  void release() const noexcept {
    if (_count.release()) delete this;
  }
  /// Whether the caller holds the only reference.
  bool isUniquelyReferenced() const noexcept { return _count.isSole(); }
  /// For tests and debuggers.
  std::uint32_t retainCount() const noexcept { return _count.value(); }

 protected:
  NSObject() noexcept = default;
  NSObject(const NSObject&) noexcept = default;

  /// A strong reference to this object as the class that asks for it. Only for objects that were
  /// made by `NSMake`, and not before their constructor has returned.
  template <class T>
  static NSRef<T> share(const T* object) noexcept {
    // Objects are never defined const: constness only says that the caller does not change them.
    return NSRef<T>::share(const_cast<T*>(object));
  }

 private:
  NSReferenceCount _count;
};

/// Answers key-value reads of unpublished keys in place of the exception.
using NSUndefinedKeyHandler = NSRef<NSObject> (*)(const NSObject& object,
                                                  const NSRef<NSString>& key);

/// Sets the answer for the whole process and gives the former one; null is the exception.
/// May be called from any thread.
NS_EXPORT NSUndefinedKeyHandler NSSetUndefinedKeyHandler(NSUndefinedKeyHandler handler) noexcept;

/// Equality and hashing by contents, for the standard library's containers of references.
struct NSEqualObjects {
  bool operator()(const NSRef<NSObject>& a, const NSRef<NSObject>& b) const {
    return a.get() == b.get() || (a && a->isEqual(b));
  }
};
struct NSHashObject {
  std::size_t operator()(const NSRef<NSObject>& object) const {
    return object ? object->hash() : 0;
  }
};
