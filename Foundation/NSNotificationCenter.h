#pragma once

#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSNotification.h>
#include <Foundation/NSObject.h>

class NSOperationQueue;

/// Calls those who want to know when a notification is posted. May be used from any thread.
class NS_EXPORT NSNotificationCenter : public NSObject {
 public:
  NSNotificationCenter();
  ~NSNotificationCenter() override;

  /// Gives the centre of the whole program.
  [[nodiscard]] static const NSRef<NSNotificationCenter>& defaultCenter();

  /// Calls the block with each notification of that name about that very object; nil is any name or
  /// any object. It is called while the notification is posted, on the posting thread; with a queue
  /// it runs there later, and posting does not wait. The block takes the notification
  /// (`const NSRef<NSNotification>&` or `NSNotification&`) or nothing; a nil block raises
  /// `NSInvalidArgumentException`.
  ///
  /// The result is what `removeObserver` takes. The centre holds block and object until then.
  template <class F>
  NSRef<NSObject> addObserverForName_object_queue_usingBlock(const NSRef<NSString>& name,
                                                             const NSRef<NSObject>& object,
                                                             const NSRef<NSOperationQueue>& queue,
                                                             F&& block) {
    return addObserver(name, object, queue, NSMakeBlock<NSNotification>(std::forward<F>(block)));
  }
  /// Removes an observer. No later post calls its block, nor does one that is going on on the same
  /// thread or waits in a queue. Does nothing for nil and for what is no observer of this centre.
  void removeObserver(const NSRef<NSObject>& observer);

  /// Calls the observers in the order in which they were added; not those that are added meanwhile.
  /// What a block throws goes to the caller, and the observers after it are not called. A nil
  /// notification raises `NSInvalidArgumentException`.
  void postNotification(const NSRef<NSNotification>& notification);
  void postNotificationName_object(const NSRef<NSString>& name, const NSRef<NSObject>& object);
  void postNotificationName_object_userInfo(const NSRef<NSString>& name,
                                            const NSRef<NSObject>& object,
                                            const NSRef<NSDictionary>& userInfo);

 private:
  class Observer;
  struct Key {
    /// Nil is any.
    NSRef<NSString> name;
    NSRef<NSObject> object;
    bool operator==(const Key& other) const;
  };
  struct HashKey {
    std::size_t operator()(const Key& key) const;
  };
  using Observers = std::vector<NSRef<Observer>>;

  NSRef<NSObject> addObserver(const NSRef<NSString>& name, const NSRef<NSObject>& object,
                              const NSRef<NSOperationQueue>& queue, const NSRef<NSBlock>& block);
  Observers observersOf(const NSNotification& notification);

  std::mutex _mutex;
  std::unordered_map<Key, Observers, HashKey> _observers;
  std::uint64_t _nextTurn = 0;
};
