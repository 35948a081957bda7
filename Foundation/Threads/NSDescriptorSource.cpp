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
  if (auto* const sources = std::exchange(_sources, nullptr)) sources->remove(*this);
}

void NSDescriptorSources::add(const NSRef<NSDescriptorSource>& source,
                              const NSRef<NSString>& mode) {
  if (!source->isValid()) return;
  if (source->_sources != nullptr && source->_sources != this) {
    NSException::raise(NSInvalidArgumentException,
                       "the source is in another run loop (in 'addSource:forMode:')");
  }
  _entries.push_back({source, mode->copy()});
  source->_sources = this;
}

void NSDescriptorSources::remove(const NSDescriptorSource& source) noexcept {
  std::erase_if(_entries, [&](const Entry& entry) { return entry.source.get() == &source; });
}

void NSDescriptorSources::end() {
  while (!_entries.empty()) NSRef(_entries.back().source)->invalidate();
}

NSDescriptorSources::Sources NSDescriptorSources::in(const NSRef<NSString>& mode,
                                                     const NSModeSet& commonModes) const {
  Sources result;
  result.reserve(_entries.size());
  const bool isCommon = commonModes.contains(mode);
  for (const Entry& entry : _entries) {
    const bool isIn = NSIsSameMode(entry.mode, mode) ||
                      (isCommon && NSIsSameMode(entry.mode, NSRunLoopCommonModes()));
    // It may be in the mode twice.
    const auto isIt = [&](const auto& other) { return other.is(entry.source); };
    if (isIn && std::ranges::none_of(result, isIt)) result.push_back(entry.source);
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
  bool hasCalled = false;
  for (std::size_t k = 0; k < sources.size(); ++k) {
    pollfd& poll = polls[k];
    // A block may have ended another source, or taken what that was ready for.
    if (poll.revents == 0 || !sources[k]->isValid()) continue;
    if (std::exchange(hasCalled, true) && !isAnyReady({&poll, 1})) continue;
    call(*sources[k].get(), poll.revents);
  }
  return true;
}

void NSDescriptorSources::call(NSDescriptorSource& source, short events) noexcept {
  if ((events & POLLNVAL) != 0) return source.invalidate();
  // Whatever has happened to the other end shows in reading and writing.
  const bool isBroken = (events & (POLLHUP | POLLERR)) != 0;
  source._readyEvents = 0;
  if (isBroken || (events & POLLIN) != 0) source._readyEvents |= NSDescriptorReadable;
  if (isBroken || (events & POLLOUT) != 0) source._readyEvents |= NSDescriptorWritable;
  source._readyEvents &= source._events;
  NSCallOrTerminate([&] { NSRef(source._block)->invoke(source.self()); });
}
