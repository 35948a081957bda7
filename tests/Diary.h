#pragma once

#include "tests/RunLoops.h"

using Notes = std::vector<int>;

/// A mode that only tests run in.
inline const auto tracking = u"tracking"_ns;

template <class... Modes>
NSRef<NSArray> listOf(const Modes&... modes) {
  return NSMake<NSArray>({modes...});
}

inline NSRef<NSObject> box(int number) { return NSMake<NSNumber>(number); }

/// Notes the numbers that it is told, in a list of its own.
struct Diary : NSObject {
  void note(int number) { notes.push_back(number); }
  void noteNumber(const NSRef<NSNumber>& number) { note(number->intValue()); }
  static NSSelector noting() { return NSMakeSelector<"note:", &Diary::noteNumber>(); }
  std::function<void()> noter(int number) {
    return [self = self().as<Diary>(), number] { self->note(number); };
  }
  void noteLater(int number, NSDelay delay = 0) {
    performSelector_withObject_afterDelay(noting(), box(number), delay);
  }
  void noteOn(const NSRef<NSThread>& thread, int number, bool wait) {
    performSelector_onThread_withObject_waitUntilDone(noting(), thread, box(number), wait);
  }
  void cancel(int number) {
    cancelPreviousPerformRequestsWithTarget_selector_object(self(), noting(), box(number));
  }
  Notes taken() { return std::exchange(notes, {}); }
  Notes notes;
};
