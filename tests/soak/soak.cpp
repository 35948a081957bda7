// soak FOLDER SECONDS [SEED]: does what applications do all day, while files cannot be read or
// written and processes are killed, and fails when something is lost or when the process holds more
// at its end than after its first minute. With the folder alone it saves documents until it is
// killed.
#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <semaphore>
#include <thread>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace std::chrono_literals;
using namespace ZKFoundationExtensions;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

namespace {

void require(bool holds, std::string_view otherwise) {
  if (holds) return;
  std::cerr << "soak: " << otherwise << std::endl;
  std::_Exit(1);
}

std::int64_t entriesIn(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

enum Fault { noFault, shortFile, fullDisk, goneFolder, noDescriptors, killedProcess, faultCount };

// A document all of whose parts tell the number of its version.
struct Document {
  bool save(int number) const {
    const auto text = NSMake<NSData>(std::to_string(number));
    const auto list = NSMake<NSMutableArray>();
    for (int k = 0; k <= number % 1000; ++k) list->addObject(NSMake<NSNumber>(number - k));
    const auto wrapper = NSMake<NSFileWrapper>(NSRef<NSDictionary>());
    wrapper->addRegularFileWithContents_preferredFilename(text, u"text"_ns);
    wrapper->addRegularFileWithContents_preferredFilename(
        NSKeyedArchiver::archivedDataWithRootObject(list), u"list"_ns);
    return wrapper->writeToURL_options_originalContentsURL_error(place, 0, nullptr, nullptr);
  }

  int open() const {
    const auto wrapper = NSFileWrapper::initWithURL_options_error(place, 0, nullptr);
    require(wrapper.get() != nullptr, "a document cannot be opened");
    return versionOf(wrapper);
  }

  static int versionOf(const NSRef<NSFileWrapper>& wrapper) {
    const auto contents = [&](const NSRef<NSString>& name) {
      return wrapper->fileWrappers()->objectForKey(name).as<NSFileWrapper>()->regularFileContents();
    };
    const int number = std::stoi(std::string(contents(u"text"_ns)->view()));
    const auto list = NSKeyedUnarchiver::unarchivedObjectOfClass<NSArray>(contents(u"list"_ns));
    require(list->count() == static_cast<NSUInteger>(number % 1000) + 1 &&
                list->firstObject().as<NSNumber>()->integerValue() == number,
            "versions of a document are mixed");
    return number;
  }

  // Saves the next version while that happens; gives whether it is there now.
  bool saveUnder(Fault fault, std::uint_fast32_t chance) {
    if (fault == killedProcess) return saveInKilledProcess(chance % 20'000);
    const rlimit limit = {chance % 4096, RLIM_INFINITY};
    const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    const rlimit few = {chance % 16, descriptors.rlim_max};
    const fs::path gone = folder.native() + " gone";
    const fs::path filler = folder / "filler";
    if (fault == shortFile) setrlimit(RLIMIT_FSIZE, &limit);
    if (fault == goneFolder) fs::rename(folder, gone);
    if (const auto free = fs::space(folder.parent_path()).free;
        fault == fullDisk && free < 1U << 26U) {
      std::ofstream(filler) << std::string(free - std::min<std::uintmax_t>(free, chance % 65536),
                                           0);
    }
    if (fault == noDescriptors) setrlimit(RLIMIT_NOFILE, &few);
    // Who reads meanwhile has the version before or the next one, or none and the reason.
    std::thread reader([this] {
      NSRef<NSError> error;
      const auto wrapper = NSFileWrapper::initWithURL_options_error(place, 0, &error);
      const int found = wrapper ? versionOf(wrapper) : version;
      require(found == version || found == version + 1, "another version is read");
      require(wrapper || error, "a document cannot be opened for no reason");
    });
    const bool isSaved = save(version + 1);
    reader.join();
    setrlimit(RLIMIT_NOFILE, &descriptors);
    if (fault == goneFolder) fs::rename(gone, folder);
    setrlimit(RLIMIT_FSIZE, &none);
    fs::remove(filler);
    require(isSaved || fault != noFault, "a version cannot be saved");
    require(!isSaved || fault != goneFolder, "a version is saved nowhere");
    version += isSaved ? 1 : 0;
    require(open() == version, "a version is lost");
    return isSaved;
  }

  // The process tells its number, and each version before it saves it.
  bool saveInKilledProcess(std::uint_fast32_t microseconds) {
    const std::string program = fs::read_symlink("/proc/self/exe");
    std::FILE* const told =
        popen(("exec '" + program + "' '" + folder.native() + "'").c_str(), "r");
    const auto next = [told](int& number) {
      return std::fread(&number, sizeof number, 1, told) == 1;
    };
    int process = 0;
    require(told != nullptr && next(process), "no process can be started");
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
    kill(process, SIGKILL);
    const int before = version;
    int last = before;
    while (next(last)) {
    }
    const int status = pclose(told);
    require(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, "a process cannot save");
    version = open();
    require(version == last || version == last - 1, "a killed process lost more than a version");
    return version > before;
  }

  fs::path folder;
  NSRef<NSURL> place = NSURL::fileURLWithPath_isDirectory(folder / "document", true);
  int version = 0;
};

struct Counter : NSObject {
  std::atomic<int> count = 0;
};
void count(Counter& counter) { ++counter.count; }

// Makes passes of the main run loop until the counter says so.
void await(const NSRef<Counter>& counter, int expected) {
  for (const auto end = Clock::now() + 300s; counter->count < expected;) {
    require(Clock::now() < end, "a request is lost");
    NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode(),
                                                 NSDate::dateWithTimeIntervalSinceNow(0.01));
  }
  require(counter->count == expected, "a request is performed twice");
}

void useQueuesAndDelays(std::mt19937& random) {
  const auto group = dispatch_group_create();
  const std::array queues = {dispatch_queue_create("serial", DISPATCH_QUEUE_SERIAL),
                             dispatch_queue_create("concurrent", DISPATCH_QUEUE_CONCURRENT)};
  const auto counter = NSMake<Counter>();
  auto shortLived = NSMake<Counter>();
  for (int k = 0; k < 100; ++k) {
    dispatch_group_async(group, queues.at(k % 2 == 0 ? 0 : 1), [=, serial = queues[0]] {
      if (k % 50 == 1) dispatch_sync(serial, [=] { ++counter->count; });
      performBlockOnMainThread_waitUntilDone(counter, count, false);
    });
    const auto request = performBlock_afterDelay(counter, count, (random() % 5) * 1ms);
    if (k % 4 == 0) cancelPreviousPerformRequestsWithTarget_block(counter, request);
    performBlock_afterDelay(NSWeakRef(shortLived), count, 1ms);
  }
  const NSWeakRef gone = shortLived;
  shortLived = nullptr;
  await(counter, 100 + 2 + 75);
  dispatch_group_wait(group);
  // Nothing is left that could count again, and of the dead receiver's nothing has.
  NSRunLoop::mainRunLoop()->performPass();
  require(counter->count == 177, "a request is performed twice");
  require(gone.isNil(), "a receiver is held that nobody holds");
}

// A thread changes something many times, and ends.
void useThreadAndNotifications() {
  const auto counter = NSMake<Counter>();
  const auto change = NSNotification::notificationWithName_object(u"SoakChange"_ns, counter);
  const NSObservation changes(change->name(), counter, [=] { counter->count += 1000; });
  std::binary_semaphore ended(0);
  const auto thread = NSMake<NSThread>([&] {
    NSRunLoop::currentRunLoop()->run();
    ended.release();
  });
  thread->start();
  for (int k = 0; k < 50; ++k) {
    const auto style = k % 2 == 0 ? NSPostASAP : NSPostWhenIdle;
    const auto work = [=](Counter& self) {
      ++self.count;
      enqueueNotificationInMainThread_postingStyle(change, style);
    };
    performBlock_onThread_waitUntilDone(counter, work, thread, k % 10 == 0);
  }
  thread->runLoop()->performBlock([] { NSRunLoop::currentRunLoop()->stop(); });
  ended.acquire();
  require(counter->count == 50, "a thread has lost a request");
  // All of them are one, as nothing was posted meanwhile.
  await(counter, 1050);
}

// What the process holds when nothing waits, and how much more is no growth: threads come and go,
// and each has caches.
using Figures = std::array<std::int64_t, 5>;
constexpr std::array names = {"objects", "KiB allocated", "KiB resident", "descriptors", "threads"};
constexpr Figures tolerances = {32, 512, 8192, 8, 8};

Figures figures() {
  std::this_thread::sleep_for(100ms);
  NSRunLoop::mainRunLoop()->performPass();
  Figures figures{};
  for (const auto& [name, count] : NSObject::liveObjectCounts()) {
    figures[0] += count.as<NSNumber>()->integerValue();
  }
  malloc_trim(0);
  figures[1] = static_cast<std::int64_t>(mallinfo2().uordblks) / 1024;
  std::ifstream("/proc/self/statm") >> figures[2] >> figures[2];
  figures[2] *= getpagesize() / 1024;
  figures[3] = entriesIn("/proc/self/fd");
  figures[4] = entriesIn("/proc/self/task");
  return figures;
}

void soak(Document document, std::chrono::milliseconds duration, std::uint_fast32_t seed) {
  std::cout << "seed " << seed << std::endl;
  std::mt19937 random(seed);
  require(document.save(0), "the first version cannot be saved");
  const auto start = Clock::now();
  const auto warmUp = std::min<std::chrono::milliseconds>(60s, duration / 4);
  Figures warm{};
  for (int part = 0; part <= 10; ++part) {
    int rounds = 0;
    int saved = 0;
    for (; Clock::now() < start + warmUp + (duration - warmUp) * part / 10; ++rounds) {
      useQueuesAndDelays(random);
      useThreadAndNotifications();
      saved += document.saveUnder(static_cast<Fault>(random() % faultCount), random()) ? 1 : 0;
    }
    const Figures now = figures();
    if (part == 0) warm = now;
    std::cout << rounds << " rounds, " << saved << " saved";
    for (std::size_t k = 0; k < now.size(); ++k) {
      std::cout << ", " << now.at(k) << ' ' << names.at(k);
      require(now.at(k) <= warm.at(k) + tolerances.at(k),
              std::string("more and more ") + names.at(k));
    }
    std::cout << std::endl;
  }
  require(document.save(document.version + 1), "the last version cannot be saved");
  require(entriesIn(document.folder) == 1, "something is left beside the document");
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGXFSZ, SIG_IGN);
  const Document document{argc > 1 ? argv[1] : "."};
  if (argc > 2) {
    NSObject::setCountsLiveObjects(true);
    soak(document, std::chrono::seconds(std::stoi(argv[2])),
         argc > 3 ? std::stoul(argv[3]) : std::random_device()());
    return 0;
  }
  const auto tell = [](int number) { return write(STDOUT_FILENO, &number, sizeof number) > 0; };
  if (!tell(getpid())) return 1;
  for (int version = document.open() + 1; tell(version) && document.save(version);) ++version;
  return 1;
}
