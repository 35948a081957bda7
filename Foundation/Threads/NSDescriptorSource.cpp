#include "Foundation/NSDescriptorSource.h"

#include <algorithm>
#include <span>

#include <Foundation/Threads/DescriptorSources.h>
#include <Foundation/detail/OnceClosure.h>

namespace {

pollfd pollOf(const NSRef<NSDescriptorSource>& source) {
  short events = 0;
  if ((source->events() & NSDescriptorReadable) != 0) events |= POLLIN;
  if ((source->events() & NSDescriptorWritable) != 0) events |= POLLOUT;
  return {source->descriptor(), events, 0};
}

std::vector<pollfd> pollsOf(const std::vector<NSRef<NSDescriptorSource>>& sources) {
  std::vector<pollfd> polls;
  polls.reserve(sources.size());
  for (const auto& source : sources) polls.push_back(pollOf(source));
  return polls;
}

bool isAnyReady(std::span<pollfd> polls) {
  return !polls.empty() && ::poll(polls.data(), polls.size(), 0) > 0;
}

}  // namespace

NSDescriptorSource::NSDescriptorSource(int descriptor, std::uint32_t events, NSRef<NSBlock> block)
    : _descriptor(descriptor), _events(events), _block(std::move(block)) {
  constexpr auto all = NSDescriptorReadable | NSDescriptorWritable;
  if (descriptor < 0 || events == 0 || (events & ~std::uint32_t{all}) != 0) {
    NSException::raise(NSInvalidArgumentException,
                       "no such descriptor or events (in 'sourceWithDescriptor:events:block:')");
  }
}

NSDescriptorSource::~NSDescriptorSource() = default;

void NSDescriptorSource::invalidate() {
  const auto alive = self();
  const auto block = std::move(_block);
  if (auto* const watched = std::exchange(_watched, nullptr)) watched->owner->remove(*watched);
}

void NSDescriptorSources::add(const NSRef<NSDescriptorSource>& source,
                              const NSRef<NSString>& mode) {
  if (!source->isValid()) return;
  if (source->_watched != nullptr && source->_watched->owner != this) {
    NSException::raise(NSInvalidArgumentException,
                       "the source is in another run loop (in 'addSource:forMode:')");
  }
  auto copy = mode->copy();
  if (source->_watched == nullptr) {
    const auto place = _watched.insert(_watched.end(), {source, {}, this, {}});
    place->place = place;
    source->_watched = &*place;
  }
  source->_watched->modes.push_back(std::move(copy));
}

void NSDescriptorSources::remove(NSWatchedDescriptor& watched) noexcept {
  // What dies finds the list in order.
  std::list<NSWatchedDescriptor> removed;
  removed.splice(removed.end(), _watched, watched.place);
}

void NSDescriptorSources::end() {
  while (!_watched.empty()) NSRef(_watched.back().source)->invalidate();
}

NSDescriptorSources::Sources NSDescriptorSources::in(const NSRef<NSString>& mode,
                                                     const NSModeSet& commonModes) const {
  Sources result;
  result.reserve(_watched.size());
  const bool isCommon = commonModes.contains(mode);
  const auto isIn = [&](const auto& other) {
    return NSIsSameMode(other, mode) || (isCommon && NSIsSameMode(other, NSRunLoopCommonModes()));
  };
  for (const auto& watched : _watched) {
    if (std::ranges::any_of(watched.modes, isIn)) result.push_back(watched.source);
  }
  return result;
}

std::vector<pollfd> NSDescriptorSources::polls(const NSRef<NSString>& mode,
                                               const NSModeSet& commonModes) const {
  return pollsOf(in(mode, commonModes));
}

bool NSDescriptorSources::isReady(const NSRef<NSString>& mode, const NSModeSet& commonModes) const {
  auto watched = polls(mode, commonModes);
  return isAnyReady(watched);
}

bool NSDescriptorSources::fire(const NSRef<NSString>& mode, const NSModeSet& commonModes) {
  const Sources sources = in(mode, commonModes);
  auto polls = pollsOf(sources);
  if (!isAnyReady(polls)) return false;
  bool isFirst = true;
  bool hasCalled = false;
  for (std::size_t k = 0; k < sources.size(); ++k) {
    pollfd& poll = polls[k];
    // A block may have ended another source, or taken what that was ready for.
    if (poll.revents == 0 || !sources[k]->isValid()) continue;
    if (!std::exchange(isFirst, false) && !isAnyReady({&poll, 1})) continue;
    if ((poll.revents & POLLNVAL) != 0) {
      sources[k]->invalidate();
    } else {
      call(*sources[k].get(), poll.revents);
      hasCalled = true;
    }
  }
  return hasCalled;
}

void NSDescriptorSources::call(NSDescriptorSource& source, short events) noexcept {
  // Whatever has happened to the other end shows in reading and writing.
  const bool isBroken = (events & (POLLHUP | POLLERR)) != 0;
  source._readyEvents = 0;
  if (isBroken || (events & POLLIN) != 0) source._readyEvents |= NSDescriptorReadable;
  if (isBroken || (events & POLLOUT) != 0) source._readyEvents |= NSDescriptorWritable;
  source._readyEvents &= source._events;
  NSCallOrTerminate([&] { NSRef(source._block)->invoke(source.self()); });
}
