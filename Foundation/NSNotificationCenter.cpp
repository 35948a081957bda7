#include "Foundation/NSNotificationCenter.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNeverDestroyed.h"
#include "Foundation/NSOperationQueue.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <array>
#include <atomic>

class NSNotificationCenter::Observer final : public NSObject {
 public:
  Observer(Key key, const NSRef<NSOperationQueue>& queue, const NSRef<NSBlock>& block,
           std::uint64_t turn)
      : _key(std::move(key)), _queue(queue), _block(block), _turn(turn) {}

  const Key& key() const noexcept { return _key; }
  std::uint64_t turn() const noexcept { return _turn; }
  void remove() noexcept { _isRemoved = true; }

  void notify(const NSRef<NSNotification>& notification) const {
    if (!_queue) return call(notification);
    _queue->addOperationWithBlock([observer = share(this), notification = NSRef(notification)] {
      observer->call(notification);
    });
  }

 private:
  void call(const NSRef<NSNotification>& notification) const {
    if (!_isRemoved) _block->invoke(notification);
  }

  const Key _key;
  const NSRef<NSOperationQueue> _queue;
  const NSRef<NSBlock> _block;
  const std::uint64_t _turn;
  std::atomic<bool> _isRemoved = false;
};

bool NSNotificationCenter::Key::operator==(const Key& other) const {
  return object == other.object && NSEqualObjects()(name, other.name);
}

std::size_t NSNotificationCenter::HashKey::operator()(const Key& key) const {
  return NSHashObject()(key.name) * 31 + std::hash<NSRef<NSObject>>()(key.object);
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
                                                  const NSRef<NSBlock>& block) {
  if (!block) NSRaiseNilArgument("block", "addObserverForName:object:queue:usingBlock:");
  Key key{name ? name->copy() : nullptr, object};
  const std::lock_guard lock(_mutex);
  auto observer = NSMake<Observer>(key, queue, block, _nextTurn++);
  _observers[std::move(key)].push_back(observer);
  return observer;
}

void NSNotificationCenter::removeObserver(const NSRef<NSObject>& observer) {
  const auto token = observer.as<Observer>();
  if (!token) return;
  const std::lock_guard lock(_mutex);
  const auto place = _observers.find(token->key());
  if (place == _observers.end()) return;
  Observers& observers = place->second;
  const auto found = std::ranges::find(observers, token);
  if (found == observers.end()) return;
  token->remove();
  // The token still holds all that could die with the lock.
  observers.erase(found);
  if (observers.empty()) _observers.erase(place);
}

NSNotificationCenter::Observers NSNotificationCenter::observersOf(
    const NSNotification& notification) {
  const auto& name = notification.name();
  const auto& object = notification.object();
  const std::array<Key, 4> keys{Key{name, object}, Key{name, nullptr}, Key{nullptr, object},
                                Key{nullptr, nullptr}};
  Observers result;
  const std::lock_guard lock(_mutex);
  for (const Key& key : keys) {
    // About no object: the second and the fourth are then the first and the third.
    if (!object && &key != &keys[0] && &key != &keys[2]) continue;
    const auto place = _observers.find(key);
    if (place == _observers.end()) continue;
    result.insert(result.end(), place->second.begin(), place->second.end());
  }
  std::ranges::sort(result, {}, [](const auto& observer) { return observer->turn(); });
  return result;
}

void NSNotificationCenter::postNotification(const NSRef<NSNotification>& notification) {
  if (!notification) NSRaiseNilArgument("notification", "postNotification:");
  for (const auto& observer : observersOf(*notification)) observer->notify(notification);
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
