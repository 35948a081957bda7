#include "Foundation/NSNotificationCenter.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSOperationQueue.h>
#include <Foundation/NSString.h>

class NSNotificationCenter::Observer final : public NSObject {
 public:
  Observer(const NSNotificationCenter& center, Key key, const NSRef<NSOperationQueue>& queue,
           const NSRef<NSBlock>& block, std::optional<NSWeakRef<NSObject>> target,
           std::uint64_t turn)
      : _center(&center),
        _key(std::move(key)),
        _queue(queue),
        _target(std::move(target)),
        _turn(turn),
        _block(block) {}

  [[nodiscard]] std::uint64_t turn() const noexcept { return _turn; }
  [[nodiscard]] bool isOf(const NSNotificationCenter& center) const noexcept {
    return _center == &center;
  }
  // The centre's lock guards these.
  [[nodiscard]] const Key& key() const noexcept { return _key; }
  [[nodiscard]] bool isRemoved() const noexcept { return _isRemoved; }
  Key remove() noexcept {
    _isRemoved = true;
    return std::exchange(_key, {});
  }

  [[nodiscard]] bool isOrphan() const noexcept { return _target && _target->isNil(); }

  // A post that is going on may be about to call it.
  void letGo() {
    NSRef<NSBlock> block;
    const std::lock_guard lock(_mutex);
    block = std::exchange(_block, nullptr);
  }

  void notify(const NSRef<NSNotification>& notification) const {
    if (!_queue) return call(notification);
    _queue->addOperationWithBlock([observer = share(this), notification = NSRef(notification)] {
      observer->call(notification);
    });
  }

 private:
  void call(const NSRef<NSNotification>& notification) const {
    std::unique_lock lock(_mutex);
    const auto block = _block;
    lock.unlock();
    if (block) block->invoke(notification);
  }

  const NSNotificationCenter* const _center;
  Key _key;
  bool _isRemoved = false;
  const NSRef<NSOperationQueue> _queue;
  const std::optional<NSWeakRef<NSObject>> _target;
  const std::uint64_t _turn;
  mutable std::mutex _mutex;
  NSRef<NSBlock> _block;
};

bool NSNotificationCenter::Key::operator==(const Key& other) const {
  // A class of strings may override what is asked here with the lock.
  return object.is(other.object) &&
         (name.is(other.name) || (name && other.name && name->isEqualToString(other.name)));
}

std::size_t NSNotificationCenter::HashKey::operator()(const Key& key) const {
  const NSUInteger name = key.name ? key.name->NSString::hash() : 0;
  return name * 31 + std::hash<const NSObject*>()(key.object.get());
}

NSNotificationCenter::NSNotificationCenter() = default;

NSNotificationCenter::~NSNotificationCenter() = default;

const NSRef<NSNotificationCenter>& NSNotificationCenter::defaultCenter() {
  static const NSNeverDestroyed<NSRef<NSNotificationCenter>> center(NSMake<NSNotificationCenter>());
  return *center;
}

NSRef<NSObject> NSNotificationCenter::addObserver(const NSRef<NSString>& name,
                                                  const NSRef<NSObject>& object,
                                                  const NSRef<NSOperationQueue>& queue,
                                                  const NSRef<NSBlock>& block,
                                                  std::optional<NSWeakRef<NSObject>> target) {
  if (!block) NSRaiseNilArgument("block", "addObserverForName:object:queue:usingBlock:");
  Key key{name ? name->copy() : nullptr, object};
  const std::lock_guard lock(_mutex);
  auto observer = NSMake<Observer>(*this, key, queue, block, std::move(target), _nextTurn++);
  _observers[std::move(key)].all.push_back(observer);
  return observer;
}

void NSNotificationCenter::removeObserver(const NSRef<NSObject>& observer) {
  const auto token = observer.as<Observer>();
  if (!token || !token->isOf(*this)) return;
  // What they held goes when the lock has.
  Key key;
  decltype(_observers)::node_type last;
  {
    const std::lock_guard lock(_mutex);
    const auto place = _observers.find(token->key());
    if (place == _observers.end()) return;
    auto& [all, removed] = place->second;
    // It may be that of a centre which has died in this place.
    const auto turnOf = [](const auto& other) { return other->turn(); };
    const auto found = std::ranges::lower_bound(all, token->turn(), {}, turnOf);
    if (found == all.end() || !found->is(token) || token->isRemoved()) return;
    key = token->remove();
    if (++removed == all.size()) {
      last = _observers.extract(place);
    } else if (2 * removed > all.size()) {
      std::erase_if(all, [](const auto& other) { return other->isRemoved(); });
      removed = 0;
    }
  }
  token->letGo();
}

NSNotificationCenter::ObserverList NSNotificationCenter::observersOf(
    const NSNotification& notification) {
  const auto name = notification.name();
  const auto object = notification.object();
  const std::array<Key, 4> keys{Key{name, object}, Key{name, nullptr}, Key{nullptr, object},
                                Key{nullptr, nullptr}};
  ObserverList result;
  const std::lock_guard lock(_mutex);
  for (const Key& key : keys) {
    // About no object: the second and the fourth are then the first and the third.
    if (!object && &key != &keys[0] && &key != &keys[2]) continue;
    const auto place = _observers.find(key);
    if (place == _observers.end()) continue;
    const auto& all = place->second.all;
    result.reserve(result.size() + all.size());
    std::ranges::copy_if(all, std::back_inserter(result),
                         [](const auto& observer) { return !observer->isRemoved(); });
  }
  std::ranges::sort(result, {}, [](const auto& observer) { return observer->turn(); });
  return result;
}

void NSNotificationCenter::postNotification(const NSRef<NSNotification>& notification) {
  if (!notification) NSRaiseNilArgument("notification", "postNotification:");
  // An observer may change the caller's own references.
  const auto alive = self();
  const auto held = NSRef<NSNotification>::share(notification.get());
  for (const auto& observer : observersOf(*held)) {
    if (observer->isOrphan()) {
      removeObserver(observer);
    } else {
      observer->notify(held);
    }
  }
}

void NSNotificationCenter::postNotificationName_object(const NSRef<NSString>& name,
                                                       const NSRef<NSObject>& object) {
  postNotificationName_object_userInfo(name, object, nullptr);
}

void NSNotificationCenter::postNotificationName_object_userInfo(
    const NSRef<NSString>& name, const NSRef<NSObject>& object,
    const NSRef<NSDictionary>& userInfo) {
  postNotification(NSNotification::notificationWithName_object_userInfo(name, object, userInfo));
}
