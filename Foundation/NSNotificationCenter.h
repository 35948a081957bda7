#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSNotification.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSWeakRef.h>

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
  /// Calls the block with the target, and the notification if it takes that, as long as the target
  /// lives, which the centre does not hold: `[](Editor& editor, const NSRef<NSNotification>&) {…}`.
  /// A block that takes nothing will do. The first post that finds the target dead removes the
  /// observer. Else it is as without a target.
  template <class Target, class F>
  NSRef<NSObject> addObserverForTarget_name_object_queue_usingBlock(
      const NSWeakRef<Target>& target, const NSRef<NSString>& name, const NSRef<NSObject>& object,
      const NSRef<NSOperationQueue>& queue, F&& block) {
    if (NSIsNilCallable(block)) {
      NSRaiseNilArgument("block", "addObserverForTarget:name:object:queue:usingBlock:");
    }
    auto made = [target, call = std::decay_t<F>(std::forward<F>(block))](
                    const NSRef<NSNotification>& notification) mutable {
      const auto held = target.lock();
      if (!held) return;
      if constexpr (std::is_invocable_v<F&, Target&, const NSRef<NSNotification>&>) {
        std::invoke(call, *held, notification);
      } else {
        NSInvokeWithTarget(call, held);
      }
    };
    return addObserver(name, object, queue, NSMakeBlock<NSNotification>(std::move(made)), target);
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
  using ObserverList = std::vector<NSRef<Observer>>;
  // In the order in which they were added. Those that were removed stay, though never more than
  // half.
  struct Observers {
    ObserverList all;
    std::size_t removed = 0;
  };

  NSRef<NSObject> addObserver(const NSRef<NSString>& name, const NSRef<NSObject>& object,
                              const NSRef<NSOperationQueue>& queue, const NSRef<NSBlock>& block,
                              std::optional<NSWeakRef<NSObject>> target = std::nullopt);
  ObserverList observersOf(const NSNotification& notification);

  std::mutex _mutex;
  std::unordered_map<Key, Observers, HashKey> _observers;
  std::uint64_t _nextTurn = 0;
};
