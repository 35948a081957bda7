#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/model/Shapes.h"
#include "tests/Files.h"
#include "tests/RunLoops.h"

#include <array>
#include <csignal>
#include <random>

#include <poll.h>

using namespace sketchbook;

// A program of its own with one thread, which may fork.

namespace {

constexpr int kills = 200;

class SketchbookKill : public testing::Test {
 protected:
  // The number in a drawing, which each change makes one larger.
  static int numberIn(const Document& document) {
    return std::stoi(document.drawing()->shapes()->lastObject().as<Shape>()->text()->utf8());
  }
  static void change(const NSRef<Document>& document, int number) {
    document->drawing()->selectAll();
    document->drawing()->changeSelected(u"Edit Text"_ns, [=](Shape& shape) {
      shape.setText(NSMake<NSString>(std::to_string(number)));
    });
    makePass();
  }

  // What a person has who starts the program: the work that was left behind, or else the document.
  NSRef<Document> start() {
    const auto left = Recovery::abandoned(copies);
    EXPECT_LE(left->count(), 1U);
    return left->count() == 0 ? Document::open(place, copies, &error)
                              : Document::recover(left[0].as<NSURL>(), copies, &error);
  }

  // Changes and saves, or waits for the copy, and tells each number before it does.
  [[noreturn]] void work(int report) {
    DrivenClock clock;
    auto document = start();
    for (int number = numberIn(*document) + 1;; ++number) {
      change(document, number);
      if (write(report, &number, sizeof number) != sizeof number) std::_Exit(1);
      if (number % 3 != 0) {
        clock.advance(Document::autosaveDelay);
        makePass();
      } else if (!document->save(&error)) {
        std::_Exit(1);
      }
    }
  }

  TestFolder folder;
  const NSRef<NSURL> place = fileURL(folder / "Plan.sketch");
  const NSRef<NSURL> copies = fileURL(folder / "copies");
  NSRef<NSError> error;
};

}  // namespace

TEST_F(SketchbookKill, losesAtMostTheLastChange) {
  auto document =
      NSMake<Document>(copies, NSMake<NSArray>({NSMake<Label>(u"Number"_ns, NSZeroRect, u"0"_ns)}));
  ASSERT_TRUE(document->saveAs(place, &error));
  std::mt19937 random;
  int last = 0;
  int before = 0;
  for (int k = 0; k < kills; ++k) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t child = fork();
    if (child == 0) work(ends[1]);
    close(ends[1]);
    // From its first change on, which it tells, at any moment.
    pollfd first{ends[0], POLLIN, 0};
    poll(&first, 1, -1);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 20'000));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it could not save";
    while (read(ends[0], &last, sizeof last) == sizeof last) {
    }
    close(ends[0]);

    document = start();
    ASSERT_TRUE(document) << error;
    const int number = numberIn(*document);
    ASSERT_TRUE(number == last || number == last - 1) << number << " of " << last;
    const auto saved = Document::open(place, copies, &error);
    ASSERT_TRUE(saved && numberIn(*saved) <= number) << "an old copy was offered";
    document = nullptr;
    ASSERT_GE(number, before);
    before = number;
  }
  // What was left on the way has gone.
  document = start();
  EXPECT_TRUE(document->save(&error)) << error;
  document = nullptr;
  EXPECT_EQ(Recovery::abandoned(copies)->count(), 0U);
  EXPECT_EQ(namesIn(folder.path()),
            (std::set<std::string>{"Plan.sketch", "Plan.sketch/drawing", "Plan.sketch/format",
                                   "Plan.sketch/preview.svg", "copies"}));
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
