#pragma once

#include <cstdint>
#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSException.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

struct NSWatchedDescriptor;

/// What a source waits for; together, for either.
enum NSDescriptorEvents : std::uint32_t {
  /// There is something to read, or the other end is closed.
  NSDescriptorReadable = 1,
  /// Writing would not block, or fails at once.
  NSDescriptorWritable = 2,
};

/// Calls a block, on the run loop that it is added to by `addSource_forMode` and that then holds
/// it, in every pass that finds its file descriptor ready. Used on that run loop's thread alone.
///
/// The descriptor stays the caller's, who closes it after `invalidate`; one that was closed before
/// ends its source. What the block throws in a run loop ends the program.
class NS_EXPORT NSDescriptorSource : public NSObject {
 public:
  NSDescriptorSource(int descriptor, std::uint32_t events, NSRef<NSBlock> block);
  ~NSDescriptorSource() override;

  /// Makes a source in no run loop yet, for events of `NSDescriptorEvents`. The block takes the
  /// source, or nothing. No events, a negative descriptor and a nil block raise
  /// `NSInvalidArgumentException`.
  template <class F>
  [[nodiscard]] static NSRef<NSDescriptorSource> sourceWithDescriptor_events_block(
      int descriptor, std::uint32_t events, F&& block) {
    auto made = NSMakeBlock<NSDescriptorSource>(std::forward<F>(block));
    if (!made) NSRaiseNilArgument("block", "sourceWithDescriptor:events:block:");
    return NSMake<NSDescriptorSource>(descriptor, events, std::move(made));
  }

  [[nodiscard]] int descriptor() const noexcept { return _descriptor; }
  /// Gives the events that it waits for.
  [[nodiscard]] std::uint32_t events() const noexcept { return _events; }
  /// Gives the events for which its block is being called, or was last.
  [[nodiscard]] std::uint32_t readyEvents() const noexcept { return _readyEvents; }

  /// Takes it out of its run loop for ever and drops the block, as the end of the run loop does.
  void invalidate();
  /// Whether its block may still be called.
  [[nodiscard]] bool isValid() const noexcept { return static_cast<bool>(_block); }

 private:
  friend class NSDescriptorSources;

  const int _descriptor;
  const std::uint32_t _events;
  std::uint32_t _readyEvents = 0;
  NSRef<NSBlock> _block;
  NSWatchedDescriptor* _watched = nullptr;
};
