#include "tests/Support.h"

#include <cstdarg>
#include <mutex>
#include <regex>
#include <set>

#include <syslog.h>

namespace {

std::vector<std::string> systemLines;

TEST(NSLog, WritesOneLineToStandardErrorAndTheSystemLog) {
  systemLines.clear();
  testing::internal::CaptureStderr();
  NSLog(u"100 %@ of %s,\nGrüße"_ns);
  NSLog(nullptr);
  const std::string written = testing::internal::GetCapturedStderr();
  const std::regex expected(
      R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} zk_tests\[\d+:\d+\] 100 %@ of %s,\\x0AGrüße\n[^\n]*\] \(null\)\n)");
  EXPECT_TRUE(std::regex_match(written, expected)) << written;
  EXPECT_EQ(systemLines, (std::vector<std::string>{"100 %@ of %s,\\x0AGrüße", "(null)"}));
}

TEST(NSLog, HandsEveryLineToTheSinkFromAnyThread) {
  std::mutex mutex;
  std::multiset<std::string> lines;
  const auto former = NSSetLogSink([&](const NSRef<NSString>& text) {
    const std::lock_guard lock(mutex);
    lines.insert(text->utf8());
  });
  onThreads(8, [] {
    for (int k = 0; k < 100; ++k) NSLog(NSMake<NSNumber>(k)->stringValue());
  });
  EXPECT_TRUE(NSSetLogSink(former) != nullptr);
  EXPECT_EQ(lines.size(), 800U);
  EXPECT_EQ(lines.count("99"), 8U);
}

}  // namespace

// Stands in for the C library's in the whole process.
extern "C" __attribute__((visibility("default"))) void syslog(int priority, const char* format,
                                                              ...) {
  EXPECT_EQ(priority, LOG_USER | LOG_NOTICE);
  EXPECT_STREQ(format, "%s");
  va_list arguments;
  va_start(arguments, format);
  systemLines.emplace_back(va_arg(arguments, const char*));
  va_end(arguments);
}
