#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/model/Shapes.h"
#include "tests/Files.h"
#include "tests/RunLoops.h"

#include <array>
#include <csignal>
#include <random>

#include <poll.h>
#include <spawn.h>

using namespace sketchbook;

namespace {

constexpr int kills = 200;

// A document with a number in it, which each change makes one larger.
struct Numbers {
  explicit Numbers(const fs::path& folder)
      : place(fileURL(folder / "Plan.sketch")), copies(fileURL(folder / "copies")) {}

  static int numberIn(const Document& document) {
    return std::stoi(document.drawing()->shapes()->lastObject().as<Shape>()->text()->utf8());
  }

  // What a person has who starts the program: the work that was left behind, or else the document.
  NSRef<Document> start() {
    const auto left = Recovery::abandoned(copies);
    EXPECT_LE(left->count(), 1U);
    return left->count() == 0 ? Document::open(place, copies, &error)
                              : Document::recover(left[0].as<NSURL>(), copies, &error);
  }

  // Changes and saves, or waits for the copy, and tells each number before it does.
  void work() {
    DrivenClock clock;
    const auto document = start();
    document->drawing()->selectAll();
    for (int number = numberIn(*document) + 1;; ++number) {
      document->drawing()->changeSelected(u"Edit Text"_ns, [=](Shape& shape) {
        shape.setText(NSMake<NSString>(std::to_string(number)));
      });
      makePass();
      if (write(STDOUT_FILENO, &number, sizeof number) != sizeof number) return;
      if (number % 3 != 0) {
        clock.advance(Document::autosaveDelay);
        makePass();
      } else if (!document->save(&error)) {
        return;
      }
    }
  }

  const NSRef<NSURL> place;
  const NSRef<NSURL> copies;
  NSRef<NSError> error;
};

// Lets this program work in a process of its own, and kills that at any moment after its first
// change. Gives the last number that it has told, 0 when it ended by itself.
int workAndKill(const fs::path& folder, std::chrono::microseconds time) {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  std::string name = "work";
  std::string argument = folder;
  const std::array<char*, 3> arguments = {name.data(), argument.data(), nullptr};
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, "/proc/self/exe", &actions, nullptr, arguments.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  pollfd first{ends[0], POLLIN, 0};
  poll(&first, 1, -1);
  std::this_thread::sleep_for(time);
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  int last = 0;
  while (read(ends[0], &last, sizeof last) == sizeof last) {
  }
  close(ends[0]);
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL ? last : 0;
}

}  // namespace

TEST(SketchbookKill, losesAtMostTheLastChange) {
  const TestFolder folder;
  Numbers numbers(folder.path());
  auto document = NSMake<Document>(
      numbers.copies, NSMake<NSArray>({NSMake<Label>(u"Number"_ns, NSZeroRect, u"0"_ns)}));
  ASSERT_TRUE(document->saveAs(numbers.place, &numbers.error));
  std::mt19937 random;
  for (int k = 0; k < kills; ++k) {
    const int last = workAndKill(folder.path(), std::chrono::microseconds(random() % 20'000));
    ASSERT_GT(last, 0) << "it could not save";
    document = numbers.start();
    ASSERT_TRUE(document) << numbers.error;
    const int number = Numbers::numberIn(*document);
    ASSERT_TRUE(number == last || number == last - 1) << number << " of " << last;
    const auto saved = Document::open(numbers.place, numbers.copies, &numbers.error);
    ASSERT_TRUE(saved && Numbers::numberIn(*saved) <= number) << "an old copy was offered";
    document = nullptr;
  }
  // What was left on the way has gone.
  document = numbers.start();
  EXPECT_TRUE(document->save(&numbers.error)) << numbers.error;
  document = nullptr;
  EXPECT_EQ(Recovery::abandoned(numbers.copies)->count(), 0U);
  EXPECT_EQ(namesIn(folder.path()),
            (std::set<std::string>{"Plan.sketch", "Plan.sketch/drawing", "Plan.sketch/format",
                                   "Plan.sketch/preview.svg", "copies"}));
}

int main(int argc, char** argv) {
  if (argc == 2 && argv[0] == std::string_view("work")) {
    Numbers(argv[1]).work();
    return 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
