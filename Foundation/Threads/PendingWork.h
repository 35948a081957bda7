#pragma once

#include <chrono>
#include <string>

#include <Foundation/NSArray.h>
#include <Foundation/NSString.h>
#include <Foundation/detail/OnceClosure.h>

/// Writes seconds with as many digits as tell something: "1.5 s".
[[nodiscard]] std::string NSSecondsText(std::chrono::duration<double> seconds);

/// Collects what waits somewhere, for people: a text each.
class NSPendingWork {
 public:
  void add(const std::string& line) { _lines->addObject(NSMake<NSString>(line)); }
  /// Adds a callable by its class, which names the function that wrote it.
  void add(const NSOnceClosure& work) { add(textOf(work)); }

  [[nodiscard]] static std::string textOf(const NSOnceClosure& work);
  /// Gives ", in NSDefaultRunLoopMode"; nil modes are the common ones.
  [[nodiscard]] static std::string textOf(const NSRef<NSArray>& modes);

  [[nodiscard]] NSRef<NSArray> lines() const { return _lines; }

 private:
  NSRef<NSMutableArray> _lines = NSMake<NSMutableArray>();
};
