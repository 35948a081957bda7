#include "examples/hosts/Counting.h"

#include <algorithm>
#include <chrono>
#include <climits>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

using std::chrono::ceil;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

namespace {

void watch(int epoll, int descriptor) {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = descriptor;
  epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event);
}

// How long epoll may wait until the next pass is due: -1 is for ever.
int timeout(std::optional<nanoseconds> due) {
  return due ? static_cast<int>(
                   std::min<nanoseconds::rep>(ceil<milliseconds>(*due).count(), INT_MAX))
             : -1;
}

}  // namespace

int main() {
  const int epoll = epoll_create1(EPOLL_CLOEXEC);
  const auto runLoop = NSRunLoop::mainRunLoop();
  watch(epoll, runLoop->wakeUpDescriptor());
  // And what the host watches for itself.
  const int quit = eventfd(0, EFD_CLOEXEC);
  watch(epoll, quit);

  NSMake<Counting>([quit] { eventfd_write(quit, 1); })->start();
  for (;;) {
    const auto due = runLoop->performPass();
    epoll_event event{};
    if (epoll_wait(epoll, &event, 1, timeout(due)) > 0 && event.data.fd == quit) break;
  }
  close(quit);
  close(epoll);
}
