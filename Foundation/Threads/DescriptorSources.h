#pragma once

#include <list>
#include <vector>

#include <poll.h>

#include <Foundation/NSDescriptorSource.h>
#include <Foundation/Threads/RunLoopModes.h>

class NSDescriptorSources;

/// A source of a run loop, with the modes in which it is watched.
struct NSWatchedDescriptor {
  NSRef<NSDescriptorSource> source;
  std::vector<NSRef<NSString>> modes;
  NSDescriptorSources* owner;
  std::list<NSWatchedDescriptor>::iterator place;
};

/// The sources of a run loop.
class NSDescriptorSources {
 public:
  [[nodiscard]] bool isEmpty() const noexcept { return _watched.empty(); }
  /// Adds a valid source. One of another run loop raises `NSInvalidArgumentException`.
  void add(const NSRef<NSDescriptorSource>& source, const NSRef<NSString>& mode);
  void remove(NSWatchedDescriptor& watched) noexcept;
  /// Ends all of them.
  void end();

  /// Gives what to poll in that mode.
  [[nodiscard]] std::vector<pollfd> polls(const NSRef<NSString>& mode,
                                          const NSModeSet& commonModes) const;
  [[nodiscard]] bool isReady(const NSRef<NSString>& mode, const NSModeSet& commonModes) const;
  /// Calls the blocks of those that are ready, each once. Whether there were any.
  bool fire(const NSRef<NSString>& mode, const NSModeSet& commonModes);

  /// Calls the function with each source and a mode in which it is watched.
  template <class F>
  void forEach(F function) const {
    for (const auto& watched : _watched) {
      for (const auto& mode : watched.modes) function(*watched.source.get(), mode);
    }
  }

 private:
  using Sources = std::vector<NSRef<NSDescriptorSource>>;

  [[nodiscard]] Sources in(const NSRef<NSString>& mode, const NSModeSet& commonModes) const;
  static void call(NSDescriptorSource& source, short events) noexcept;

  std::list<NSWatchedDescriptor> _watched;
};
