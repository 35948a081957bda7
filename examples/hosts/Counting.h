#pragma once

#include <functional>
#include <iostream>
#include <utility>

#include <ZKFoundation/ZKFoundation.h>

/// Counts to a hundred in the background, tells of it on the main thread, and calls a block there
/// at the end.
class Counting : public NSObject {
 public:
  explicit Counting(std::function<void()> whenDone) : _whenDone(std::move(whenDone)) {}

  void start() {
    using namespace ZKFoundationExtensions;
    const auto counting = share(this);
    const auto note = performBlock_afterDelay(
        counting, [] { std::cout << "still counting\n"; }, std::chrono::minutes(1));
    performBlockInBackground(counting, [note](Counting& self) {
      for (int count = 1; count <= 100; ++count) {
        performBlockOnMainThread_waitUntilDone(
            share(&self), [](Counting& target) { ++target._count; }, false);
      }
      performBlockOnMainThread_waitUntilDone(
          share(&self), [note](Counting& target) { target.finish(note); }, false);
    });
  }

 private:
  void finish(const NSRef<NSBlock>& note) {
    using namespace ZKFoundationExtensions;
    cancelPreviousPerformRequestsWithTarget_block(self(), note);
    std::cout << "counted to " << _count << '\n';
    performBlock_afterDelay(
        share(this), [](Counting& target) { target._whenDone(); }, std::chrono::milliseconds(1));
  }

  std::function<void()> _whenDone;
  int _count = 0;
};
