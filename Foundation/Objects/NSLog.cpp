#include "Foundation/NSLog.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>

#include <sys/syscall.h>
#include <syslog.h>
#include <unistd.h>

#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

namespace {

std::string timestamp() {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(now);
  const auto milliseconds =
      duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  std::ostringstream text;
  text << std::put_time(&local, "%F %T.") << std::setfill('0') << std::setw(3) << milliseconds;
  return text.str();
}

// One write for the whole line, so that lines of several threads do not mix.
void writeToStandardError(std::string_view line) {
  while (!line.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    line.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string onOneLine(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string line;
  line.reserve(text.size());
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0x20 && code != 0x7F) {
      line += byte;
    } else {
      line += {'\\', 'x', digits[code / 16], digits[code % 16]};
    }
  }
  return line;
}

void writeToSystem(const std::string& text) {
  ::syslog(LOG_USER | LOG_NOTICE, "%s", text.c_str());
  writeToStandardError(timestamp() + ' ' + program_invocation_short_name + '[' +
                       std::to_string(::getpid()) + ':' + std::to_string(::syscall(SYS_gettid)) +
                       "] " + text + '\n');
}

struct SinkSlot {
  std::mutex mutex;
  // Shared, so that a call under way keeps the sink it has begun with.
  std::shared_ptr<const NSLogSink> sink = std::make_shared<NSLogSink>();
};

SinkSlot& sinkSlot() {
  static NSNeverDestroyed<SinkSlot> slot;
  return *slot;
}

}  // namespace

void NSLog(const NSRef<NSString>& text) {
  SinkSlot& slot = sinkSlot();
  std::unique_lock lock(slot.mutex);
  const auto sink = slot.sink;
  lock.unlock();
  if (*sink) {
    (*sink)(text ? text : u"(null)"_ns);
  } else {
    writeToSystem(text ? onOneLine(text->utf8()) : "(null)");
  }
}

NSLogSink NSSetLogSink(NSLogSink sink) {
  auto next = std::make_shared<const NSLogSink>(std::move(sink));
  SinkSlot& slot = sinkSlot();
  const std::lock_guard lock(slot.mutex);
  slot.sink.swap(next);
  return *next;
}
