#include "Foundation/Threads/DelayedPerforms.h"

#include <functional>
#include <utility>

#include <Foundation/NSString.h>
#include <Foundation/detail/OnceClosure.h>

class NSDelayedPerform : public NSScheduledEvent, public NSIntrusiveHashLink<NSDelayedPerform> {
 public:
  NSDelayedPerform(NSDelayedPerforms& others, NSRef<NSObject> target, NSSelector selector,
                   NSRef<NSObject> argument)
      : _others(&others),
        _target(std::move(target)),
        _selector(selector),
        _argument(std::move(argument)) {}
  NSDelayedPerform(const NSDelayedPerform&) = delete;
  ~NSDelayedPerform() override { _others->_byIdentity.remove(*this); }

  void happen() noexcept override {
    leave();
    NSCallOrTerminate([this] { _selector.perform(_target, _argument); });
  }
  void prefetch() const noexcept override { __builtin_prefetch(_argument.get()); }
  [[nodiscard]] std::string purpose() const override {
    std::string text(_selector.name());
    text += " of " + _target->objectClass().name()->utf8();
    if (_argument) text += " with " + _argument->objectClass().name()->utf8();
    return text;
  }
  /// The caller holds the request.
  void cancel() {
    unschedule();
    leave();
    const auto target = std::move(_target);
    const auto argument = std::move(_argument);
  }
  [[nodiscard]] NSRef<NSDelayedPerform> self() const noexcept { return share(this); }

  [[nodiscard]] bool isFor(const NSRef<NSObject>& target, NSSelector selector) const noexcept {
    return _target.is(target) && _selector == selector;
  }
  [[nodiscard]] bool takes(const NSRef<NSObject>& argument) const {
    // Comparing may cancel the request.
    const auto held = _argument;
    return held == argument;
  }

 protected:
  [[nodiscard]] NSDelayedPerforms& others() const noexcept { return *_others; }
  // Is not found any more.
  virtual void leave() noexcept { _others->_byIdentity.remove(*this); }

 private:
  NSDelayedPerforms* const _others;
  NSRef<NSObject> _target;
  const NSSelector _selector;
  NSRef<NSObject> _argument;
};

// One whose argument may equal others. Blocks, for one, do not: their requests are many, and need
// no second link.
class NSEqualDelayedPerform final : public NSDelayedPerform,
                                    public NSIntrusiveHashLink<NSEqualDelayedPerform> {
 public:
  using NSDelayedPerform::NSDelayedPerform;
  NSEqualDelayedPerform(const NSEqualDelayedPerform&) = delete;
  ~NSEqualDelayedPerform() override { others()._byContents.remove(*this); }

 private:
  void leave() noexcept override {
    NSDelayedPerform::leave();
    others()._byContents.remove(*this);
  }
};

struct NSDelayedPerforms::Hashes {
  Hashes(const NSRef<NSObject>& target, NSSelector selector, const NSRef<NSObject>& argument)
      : Hashes(hash(target) * 31 + selector.hash(), argument) {}

  NSUInteger identity;
  NSUInteger contents;

 private:
  Hashes(NSUInteger operation, const NSRef<NSObject>& argument)
      : identity(operation * 31 + hash(argument)),
        contents(operation * 31 + std::hash<NSRef<NSObject>>()(argument)) {}
  static NSUInteger hash(const NSRef<NSObject>& object) noexcept {
    return std::hash<const NSObject*>()(object.get());
  }
};

NSDelayedPerforms::NSDelayedPerforms() = default;

NSDelayedPerforms::~NSDelayedPerforms() = default;

NSRef<NSScheduledEvent> NSDelayedPerforms::make(NSRef<NSObject> target, NSSelector selector,
                                                NSRef<NSObject> argument) {
  const Hashes hashes(target, selector, argument);
  const auto add = [&](auto request) {
    _byIdentity.add(*request, hashes.identity);
    return request;
  };
  if (hashes.contents == hashes.identity) {
    return add(NSMake<NSDelayedPerform>(*this, std::move(target), selector, std::move(argument)));
  }
  auto request =
      add(NSMake<NSEqualDelayedPerform>(*this, std::move(target), selector, std::move(argument)));
  _byContents.add(*request, hashes.contents);
  return request;
}

NSUInteger NSDelayedPerforms::cancel(const NSRef<NSObject>& target, NSSelector selector,
                                     const NSRef<NSObject>& argument) {
  // Comparing arguments and letting them go may run anything: not during the look-up.
  auto candidates = std::exchange(_candidates, {});
  const auto collect = [&](const NSDelayedPerform& request) {
    if (request.isFor(target, selector)) candidates.push_back(request.self());
  };
  const Hashes hashes(target, selector, argument);
  _byIdentity.forEach(hashes.identity, collect);
  _byContents.forEach(hashes.contents, collect);
  const auto held = NSRef<NSObject>::share(argument.get());
  NSUInteger count = 0;
  for (const auto& request : candidates) {
    // Comparing may have performed or cancelled it.
    const bool isFound = request->isScheduled() && request->takes(held) && request->isScheduled();
    if (!isFound) continue;
    request->cancel();
    ++count;
  }
  candidates.clear();
  _candidates = std::move(candidates);
  return count;
}
