#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <climits>

#include <ZKFoundation/ZKFoundation.h>

/// Drives the main run loop by Qt's event loop for as long as it lives. Where nothing is to be done
/// there is neither a timer nor a wake-up.
class QtHost {
 public:
  QtHost() {
    _timer.setSingleShot(true);
    // A coarse one may come too early, and would have to come again.
    _timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&_timer, &QTimer::timeout, [this] { makePass(); });
    QObject::connect(&_notifier, &QSocketNotifier::activated, [this] { makePass(); });
    _timer.start(0);
  }

  bool isWaitingForTime() const { return _timer.isActive(); }

 private:
  void makePass() {
    using std::chrono::milliseconds;
    const auto due = NSRunLoop::mainRunLoop()->performPass();
    if (!due) return _timer.stop();
    _timer.start(std::min(ceil<milliseconds>(*due), milliseconds(INT_MAX)));
  }

  QSocketNotifier _notifier{NSRunLoop::mainRunLoop()->wakeUpDescriptor(), QSocketNotifier::Read};
  QTimer _timer;
};
