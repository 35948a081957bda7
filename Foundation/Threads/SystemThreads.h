#pragma once

#include <cstddef>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <sys/types.h>

/// Gives the system's number of the calling thread.
[[nodiscard]] pid_t NSThreadNumber() noexcept;

/// Whether that thread of the process sleeps or waits for the system: one that only waits for a
/// processor does not. None where the system does not tell.
[[nodiscard]] std::optional<bool> NSIsThreadAsleep(pid_t thread);

/// Gives how many threads the process may have and still leave others some: half of the least of
/// the limits of the user (`RLIMIT_NPROC`), of the system (`threads-max`, `pid_max`) and of the
/// cgroup (`pids.max`). Reads them anew.
[[nodiscard]] std::size_t NSMostThreads();

/// Runs the callable on a new thread. The result is the error of a system that gives none; then the
/// callable is gone.
template <class F>
[[nodiscard]] std::error_code NSDetachThread(F&& callable) {
  try {
    std::thread(std::forward<F>(callable)).detach();
    return {};
  } catch (const std::system_error& error) {
    return error.code();
  } catch (const std::bad_alloc&) {
    return std::make_error_code(std::errc::not_enough_memory);
  }
}

/// Raises `NSGenericException`: "Resource temporarily unavailable (in 'start')".
[[noreturn]] void NSRaiseSystemError(std::error_code error, const char* operation);
