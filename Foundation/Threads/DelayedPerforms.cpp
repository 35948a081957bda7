#include "Foundation/Threads/DelayedPerforms.h"

#include <functional>
#include <utility>

#include <Foundation/NSString.h>
#include <Foundation/detail/OnceClosure.h>

class NSDelayedPerform final
    : public NSScheduledEvent,
      public NSIntrusiveHashLink<NSDelayedPerform, NSDelayedPerforms::ByIdentity>,
      public NSIntrusiveHashLink<NSDelayedPerform, NSDelayedPerforms::ByContents> {
 public:
  NSDelayedPerform(NSDelayedPerforms& others, NSRef<NSObject> target, NSSelector selector,
                   NSRef<NSObject> argument)
      : _others(&others),
        _target(std::move(target)),
        _selector(selector),
        _argument(std::move(argument)) {}
  NSDelayedPerform(const NSDelayedPerform&) = delete;
  ~NSDelayedPerform() override { _others->remove(*this); }

  void happen() noexcept override {
    _others->remove(*this);
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
    _others->remove(*this);
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

 private:
  NSDelayedPerforms* const _others;
  NSRef<NSObject> _target;
  const NSSelector _selector;
  NSRef<NSObject> _argument;
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
  auto request = NSMake<NSDelayedPerform>(*this, std::move(target), selector, std::move(argument));
  _byIdentity.add(*request, hashes.identity);
  // Blocks, for one, are their own contents.
  if (hashes.contents != hashes.identity) _byContents.add(*request, hashes.contents);
  return request;
}

void NSDelayedPerforms::remove(NSDelayedPerform& request) noexcept {
  _byIdentity.remove(request);
  _byContents.remove(request);
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
    if (!request->isScheduled() || !request->takes(held)) continue;
    request->cancel();
    ++count;
  }
  candidates.clear();
  _candidates = std::move(candidates);
  return count;
}
