#pragma once

#include <atomic>

#include <Foundation/NSExport.h>

class NSObject;

/// The objects that `NSMake` has made while live objects were counted and that are alive.
class NS_EXPORT NSLiveObjects {
 public:
  /// Whether new objects are noted.
  static void setIsOn(bool isOn) noexcept { _isOn.store(isOn, std::memory_order_relaxed); }
  static void note(const NSObject& object) {
    if (_isOn.load(std::memory_order_relaxed)) [[unlikely]] {
      add(object);
    }
  }
  /// Takes an object out that is about to be destroyed; does nothing for one that is not noted.
  static void forget(const NSObject& object) noexcept;

 private:
  static void add(const NSObject& object);

  static std::atomic<bool> _isOn;
};
