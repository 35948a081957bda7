#include "tests/Diary.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

TEST(NSDescriptorSource, IsWatchedInItsModes) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const auto loop = NSRunLoop::currentRunLoop();
  std::string seen;
  const auto source = NSDescriptorSource::sourceWithDescriptor_events_block(
      ends[0], NSDescriptorReadable, [&](NSDescriptorSource& self) {
        EXPECT_EQ(self.readyEvents(), NSDescriptorReadable);
        char unit = 0;
        if (read(self.descriptor(), &unit, 1) == 0) return self.invalidate();
        seen += unit;
      });
  loop->addSource_forMode(source, NSDefaultRunLoopMode());
  loop->addSource_forMode(source, NSRunLoopCommonModes());
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantPast()));
  ASSERT_EQ(write(ends[1], "ab", 2), 2);
  makePass(tracking);
  EXPECT_EQ(seen, "");
  EXPECT_EQ(loop->performPass(), 0ns);
  EXPECT_EQ(seen, "a");
  // While it waits, and beside what other threads post.
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  EXPECT_EQ(seen, "ab");
  std::jthread([&] { loop->performBlock([&] { seen += '+'; }); }).join();
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  const std::jthread writing([&] { EXPECT_EQ(write(ends[1], "c", 1), 1); });
  EXPECT_TRUE(loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture()));
  EXPECT_EQ(seen, "ab+c");
  // What can be written to is ready at once; the token ends it, and a closed end ends the reader.
  const auto writable = NSDescriptorSource::sourceWithDescriptor_events_block(
      ends[1], NSDescriptorWritable, [&] { seen += 'w'; });
  loop->addSource_forMode(writable, tracking);
  makePass(tracking);
  writable->invalidate();
  makePass(tracking);
  EXPECT_EQ(seen, "ab+cw");
  close(ends[1]);
  makePass();
  EXPECT_FALSE(source->isValid());
  EXPECT_EQ(source->retainCount(), 1U);
  // One of a closed descriptor ends without a call, which ends no wait.
  const auto lost = NSDescriptorSource::sourceWithDescriptor_events_block(
      ends[0], NSDescriptorReadable, [&] { seen += 'l'; });
  loop->addSource_forMode(lost, NSDefaultRunLoopMode());
  close(ends[0]);
  NSTimer::scheduledTimerWithTimeInterval_repeats_block(1ms, false, [&] {
    seen += 't';
    loop->stop();
  });
  loop->runMode_beforeDate(NSDefaultRunLoopMode(), NSDate::distantFuture());
  EXPECT_FALSE(lost->isValid());
  EXPECT_EQ(seen, "ab+cwt");
  EXPECT_THROW((void)NSDescriptorSource::sourceWithDescriptor_events_block(-1, 1, [] {}),
               NSException);
}

TEST(NSDescriptorSource, IsCalledForWhatIsLeft) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_NONBLOCK), 0);
  std::string seen;
  // The first one, of the end for writing, is never ready.
  std::array<NSRef<NSDescriptorSource>, 3> sources;
  for (auto& source : sources) {
    source = NSDescriptorSource::sourceWithDescriptor_events_block(
        &source == sources.data() ? ends[1] : ends[0], NSDescriptorReadable,
        [&](NSDescriptorSource& self) {
          char unit = '-';
          (void)!read(self.descriptor(), &unit, 1);
          seen += unit;
        });
    NSRunLoop::currentRunLoop()->addSource_forMode(source, tracking);
  }
  // By those before it in the pass.
  for (const std::string sent : {"a", "bc", "d"}) {
    EXPECT_EQ(write(ends[1], sent.data(), sent.size()), std::ssize(sent));
    makePass(tracking);
    EXPECT_EQ(std::exchange(seen, ""), sent);
  }
  for (const auto& source : sources) source->invalidate();
  for (const int end : ends) close(end);
}

TEST(NSDescriptorSource, KeepsNoNewsFromAHost) {
  std::jthread([] {
    const auto loop = NSRunLoop::currentRunLoop();
    loop->addSource_forMode(
        NSDescriptorSource::sourceWithDescriptor_events_block(0, NSDescriptorReadable, [] {}),
        tracking);
    NSMake<Diary>()->noteLater(1);
    // Work from before the host asked for it.
    pollfd descriptor{loop->wakeUpDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&descriptor, 1, 0), 1);
  }).join();
}

}  // namespace
