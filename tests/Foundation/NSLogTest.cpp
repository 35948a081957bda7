#include "tests/Support.h"

#include <mutex>
#include <regex>
#include <set>

namespace {

TEST(NSLog, WritesOneLineToStandardError) {
  testing::internal::CaptureStderr();
  NSLog(u"100 %@ of %s, Grüße"_ns);
  NSLog(nullptr);
  const std::string written = testing::internal::GetCapturedStderr();
  const std::regex expected(
      R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} zk_tests\[\d+:\d+\] 100 %@ of %s, Grüße\n[^\n]*\] \(null\)\n)");
  EXPECT_TRUE(std::regex_match(written, expected)) << written;
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
