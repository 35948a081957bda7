#pragma once

#include <vector>

#include <poll.h>

#include <Foundation/NSDescriptorSource.h>
#include <Foundation/Threads/RunLoopModes.h>

/// The sources of a run loop, each with the modes in which it is watched.
class NSDescriptorSources {
 public:
  [[nodiscard]] bool isEmpty() const noexcept { return _entries.empty(); }
  /// Adds a valid source. One of another run loop raises `NSInvalidArgumentException`.
  void add(const NSRef<NSDescriptorSource>& source, const NSRef<NSString>& mode);
  void remove(const NSDescriptorSource& source) noexcept;
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
    for (const Entry& entry : _entries) function(*entry.source.get(), entry.mode);
  }

 private:
  using Sources = std::vector<NSRef<NSDescriptorSource>>;
  struct Entry {
    NSRef<NSDescriptorSource> source;
    NSRef<NSString> mode;
  };

  [[nodiscard]] Sources in(const NSRef<NSString>& mode, const NSModeSet& commonModes) const;
  static void call(NSDescriptorSource& source, short events) noexcept;

  std::vector<Entry> _entries;
};
