#include "Foundation/Threads/SystemThreads.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <string>

#include <sys/resource.h>
#include <unistd.h>

#include <Foundation/NSException.h>

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

// Where there is none, or the word "max", there is no limit.
std::size_t numberIn(const std::string& file) {
  std::ifstream stream(file);
  std::size_t number = 0;
  return stream >> number ? number : unlimited;
}

std::size_t userLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NPROC, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return unlimited;
  return limit.rlim_cur;
}

// The least of the process's group and of those above it, in either version of the interface.
std::size_t groupLimit() {
  constexpr std::string_view unified = "0::";
  constexpr std::string_view pids = ":pids:";
  std::size_t least = unlimited;
  std::ifstream groups("/proc/self/cgroup");
  for (std::string line; std::getline(groups, line);) {
    const auto place = line.find(pids);
    const bool isUnified = line.starts_with(unified);
    if (!isUnified && place == std::string::npos) continue;
    const std::string root = isUnified ? "/sys/fs/cgroup" : "/sys/fs/cgroup/pids";
    std::string path = line.substr(isUnified ? unified.size() : place + pids.size());
    for (;;) {
      least = std::min(least, numberIn(root + path + "/pids.max"));
      const auto slash = path.rfind('/');
      if (slash == std::string::npos) break;
      path.resize(slash);
    }
  }
  return least;
}

}  // namespace

pid_t NSThreadNumber() noexcept {
  static thread_local const pid_t number = gettid();
  return number;
}

std::optional<bool> NSIsThreadAsleep(pid_t thread) {
  std::ifstream stream("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string line;
  std::getline(stream, line);
  // After the thread's name, in which there may be anything.
  constexpr std::string_view nameEnd = ") ";
  const auto end = line.rfind(nameEnd);
  if (end == std::string::npos) return std::nullopt;
  const char state = line[end + nameEnd.size()];
  return state == 'S' || state == 'D';
}

std::size_t NSMostThreads() {
  return std::min({userLimit(), numberIn("/proc/sys/kernel/threads-max"),
                   numberIn("/proc/sys/kernel/pid_max"), groupLimit()}) /
         2;
}

void NSRaiseSystemError(std::error_code error, const char* operation) {
  NSException::raise(NSGenericException, error.message() + " (in '" + operation + "')");
}
