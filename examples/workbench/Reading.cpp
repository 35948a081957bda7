#include "examples/workbench/Reading.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <string>

#include <unistd.h>

namespace fs = std::filesystem;
using namespace ZKFoundationExtensions;
using namespace std::chrono_literals;

namespace {

// What tools keep for themselves and what builds produce is not the user's text.
bool isLeftOut(const fs::path& path) {
  const std::string name = path.filename().string();
  return name.starts_with('.') || name == "build" || name == "node_modules";
}

std::vector<fs::path> filesBelow(const fs::path& directory) {
  std::vector<fs::path> files;
  fs::recursive_directory_iterator walk(directory, fs::directory_options::skip_permission_denied);
  for (auto entry = fs::begin(walk); entry != fs::end(walk); ++entry) {
    if (isLeftOut(entry->path())) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file()) {
      files.push_back(entry->path());
    }
  }
  std::ranges::sort(files);
  return files;
}

// Files that are being read, one block of a queue each. All but the reading is the main thread's.
class Reading : public NSObject {
 public:
  Reading(const fs::path& directory, std::vector<fs::path> files)
      : _directory(directory), _files(std::move(files)), _documents(_files.size()) {}

  void run() {
    if (_files.empty()) return;
    const auto reading = share(this);
    const auto center = NSNotificationCenter::defaultCenter();
    const auto observer = center->addObserverForName_object_queue_usingBlock(
        u"ReadingDidProgress"_ns, reading, nullptr, [this] { showProgressSoon(); });
    const auto note = performBlock_afterDelay(
        reading, [] { std::cerr << "still reading…\n"; }, 5s);
    const auto queue = dispatch_queue_create("workbench.reading", DISPATCH_QUEUE_CONCURRENT);
    for (std::size_t k = 0; k < _files.size(); ++k) {
      performBlock_onQueue_waitUntilDone(
          reading, [k](Reading& self) { self.read(k); }, queue, false);
    }
    NSRunLoop::mainRunLoop()->run();
    cancelPreviousPerformRequestsWithTarget_block(reading, note);
    cancelPreviousPerformRequestsWithTarget_block(reading, _bar);
    center->removeObserver(observer);
    clearProgress();
  }

  std::vector<NSRef<Document>> documents() {
    std::erase(_documents, nullptr);
    return _documents;
  }

 private:
  void read(std::size_t k) {
    auto document = Document::read(
        _files[k], NSMake<NSString>(_files[k].lexically_relative(_directory).native()));
    performBlockOnMainThread(self(), [reading = share(this), k, document = std::move(document)] {
      reading->deliver(k, document);
    });
  }

  void deliver(std::size_t k, const NSRef<Document>& document) {
    _documents[k] = document;
    // However many files are delivered in a pass, it tells of them once.
    enqueueNotificationName_object_postingStyle(NSNotificationQueue::defaultQueue(),
                                                u"ReadingDidProgress"_ns, self(), NSPostASAP);
    if (++_done == _files.size()) NSRunLoop::mainRunLoop()->stop();
  }

  // A line that is written over on a terminal, ten times a second at most, and nothing elsewhere.
  void showProgressSoon() {
    if (isatty(STDERR_FILENO) == 0 || _bar) return;
    _bar = performBlock_afterDelay(
        share(this),
        [](Reading& reading) {
          reading._bar = nullptr;
          std::cerr << "\rreading " << reading._done << " of " << reading._files.size()
                    << std::flush;
        },
        100ms);
  }
  static void clearProgress() {
    if (isatty(STDERR_FILENO) != 0) std::cerr << "\r\033[K" << std::flush;
  }

  const fs::path _directory;
  const std::vector<fs::path> _files;
  std::vector<NSRef<Document>> _documents;
  std::size_t _done = 0;
  // The block that will show the progress next.
  NSRef<NSBlock> _bar;
};

}  // namespace

std::vector<NSRef<Document>> readDocuments(const fs::path& directory) {
  const auto reading = NSMake<Reading>(directory, filesBelow(directory));
  reading->run();
  return reading->documents();
}
