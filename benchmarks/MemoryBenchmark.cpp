#include "benchmarks/Support.h"

#include <deque>
#include <fstream>
#include <functional>
#include <memory>
#include <queue>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <malloc.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QDataStream>
#include <QHash>
#include <QIODevice>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#endif

namespace {

constexpr std::size_t count = 100000;

std::size_t bytesInUse() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// A row that tells how many bytes a measurement counts for each of the things.
template <class Measure>
void addBytesRow(const std::string& name, Measure measure) {
  auto* const row =
      benchmark::RegisterBenchmark(("Memory/" + name).c_str(), [=](benchmark::State& state) {
        std::size_t bytes = 0;
        for ([[maybe_unused]] auto turn : state) bytes = measure();
        state.counters["bytes"] = static_cast<double>(bytes) / count;
      });
  row->Iterations(1);
}

// Those of the things that one call makes, and of what holds them.
template <class Make>
void addMemoryRow(const std::string& name, Make make) {
  addBytesRow(name, [=] {
    const std::size_t before = bytesInUse();
    const auto made = make();
    benchmark::DoNotOptimize(made);
    return bytesInUse() - before;
  });
}

// How much memory the process has in use, in bytes, and how much it ever had since it was asked to
// forget.
std::size_t residentBytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (std::size_t kibibytes = 0; word == key && status >> kibibytes) return kibibytes * 1024;
  }
  return 0;
}

// Those that a call takes at its worst.
template <class Make>
void addPeakRow(const std::string& name, Make make) {
  addBytesRow(name, [=] {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;
    const std::size_t before = residentBytes("VmRSS:");
    const auto made = make();
    benchmark::DoNotOptimize(made);
    return residentBytes("VmHWM:") - before;
  });
}

// Reading a list of texts, as each writes it.
void addReading() {
  const auto texts = NSMake<NSMutableArray>();
  for (std::size_t k = 0; k < count; ++k) {
    texts->addObject(NSMake<NSString>("the text of number " + std::to_string(k)));
  }
  const auto archive = NSKeyedArchiver::archivedDataWithRootObject(texts);
  addPeakRow("ReadArchive/ZK", [=] { return NSKeyedUnarchiver::unarchiveObjectWithData(archive); });
#ifdef ZK_HAS_QT
  QByteArray bytes;
  {
    QStringList list;
    for (const auto& text : texts->each<NSString>()) {
      list.append(QString::fromStdU16String(std::u16string(text->view())));
    }
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << list;
  }
  addPeakRow("ReadArchive/Qt", [=] {
    QStringList list;
    QDataStream stream(bytes);
    stream >> list;
    return list;
  });
#endif
}

void addStrings(std::size_t length) {
  const std::string row = "String" + std::to_string(length) + '/';
  const std::u16string text(length, u'x');
  const auto fill = [=](auto strings, auto makeString) {
    strings.reserve(count);
    for (std::size_t k = 0; k < count; ++k) strings.push_back(makeString());
    return strings;
  };
  addMemoryRow(row + "ZK", [=] {
    return fill(std::vector<NSRef<NSString>>(), [=] { return NSMake<NSString>(text); });
  });
  addMemoryRow(row + "u16string", [=] {
    return fill(std::vector<std::u16string>(), [=] { return std::u16string(text); });
  });
#ifdef ZK_HAS_QT
  addMemoryRow(row + "Qt", [=] {
    return fill(QList<QString>(), [=] { return QString::fromStdU16String(text); });
  });
#endif
}

// Collections of texts that are there anyway, filled one by one. The standard library's strings
// cannot be shared.
void addCollections() {
  std::vector<NSRef<NSString>> ours;
  std::vector<std::u16string> plain;
  for (std::size_t k = 0; k < count; ++k) {
    ours.push_back(NSMake<NSString>("the text of number " + std::to_string(k)));
    plain.emplace_back(ours.back()->view());
  }
  const auto addRows = [](const std::string& who, const auto& texts, auto array, auto set,
                          auto dictionary) {
    const auto add = [&](const std::string& kind, auto empty, auto enter) {
      addMemoryRow(kind + '/' + who, [=] {
        auto collection = empty();
        for (const auto& text : texts) enter(collection, text);
        return collection;
      });
    };
    add("Array", array, [](auto& list, const auto& text) {
      if constexpr (requires { list->addObject(text); }) {
        list->addObject(text);
      } else {
        list.push_back(text);
      }
    });
    add("Set", set, [](auto& members, const auto& text) {
      if constexpr (requires { members->addObject(text); }) {
        members->addObject(text);
      } else {
        members.insert(text);
      }
    });
    add("Dictionary", dictionary, [](auto& entries, const auto& text) {
      if constexpr (requires { entries->setObject_forKey(text, text); }) {
        entries->setObject_forKey(text, text);
      } else {
        entries.emplace(text, text);
      }
    });
  };
  addRows(
      "ZK", ours, [] { return NSMake<NSMutableArray>(); }, [] { return NSMake<NSMutableSet>(); },
      [] { return NSMake<NSMutableDictionary>(); });
  addRows(
      "std", plain, [] { return std::vector<std::u16string>(); },
      [] { return std::unordered_set<std::u16string>(); },
      [] { return std::unordered_map<std::u16string, std::u16string>(); });
#ifdef ZK_HAS_QT
  std::vector<QString> qt;
  qt.reserve(plain.size());
  for (const auto& text : plain) qt.push_back(QString::fromStdU16String(text));
  addRows(
      "Qt", qt, [] { return QList<QString>(); }, [] { return QSet<QString>(); },
      [] { return QHash<QString, QString>(); });
#endif
}

struct Receiver : NSObject {
  void perform(const NSRef<NSObject>& /*object*/) {}
};

// What waits on a run loop, for a later time or for its next pass, as many as there are at once.
void addWaiting() {
  addMemoryRow("DelayedRequest/ZK", [] {
    const NSSelector selector = NSMakeSelector<"perform:", &Receiver::perform>();
    const auto receiver = NSMake<Receiver>();
    for (std::size_t k = 0; k < count; ++k) {
      receiver->performSelector_withObject_afterDelay(selector, nullptr, 1e6);
    }
    const auto cancel = [=](const void* /*unused*/) {
      NSObject::cancelPreviousPerformRequestsWithTarget_selector_object(receiver, selector,
                                                                        nullptr);
    };
    return std::unique_ptr<const void, decltype(cancel)>(receiver.get(), cancel);
  });
  addMemoryRow("DelayedRequest/priority_queue", [] {
    const auto receiver = std::make_shared<int>();
    const auto isLater = [](const auto& a, const auto& b) { return a.first > b.first; };
    using Request = std::pair<double, std::function<void()>>;
    std::priority_queue<Request, std::vector<Request>, decltype(isLater)> requests(isLater);
    for (std::size_t k = 0; k < count; ++k) requests.emplace(1e6, [receiver] { ++*receiver; });
    return requests;
  });
  addMemoryRow("QueuedBlock/ZK", [] {
    const auto receiver = NSMake<Receiver>();
    for (std::size_t k = 0; k < count; ++k) {
      dispatch_async(dispatch_get_main_queue(), [receiver] { receiver->perform(nullptr); });
    }
    const auto run = [](const void* /*unused*/) {
      NSRunLoop::currentRunLoop()->runUntilDate(NSMake<NSDate>());
    };
    return std::unique_ptr<const void, decltype(run)>(receiver.get(), run);
  });
  addMemoryRow("QueuedBlock/deque", [] {
    const auto receiver = std::make_shared<int>();
    std::deque<std::function<void()>> blocks;
    for (std::size_t k = 0; k < count; ++k) blocks.emplace_back([receiver] { ++*receiver; });
    return blocks;
  });
}

const bool registered = [] {
  for (const std::size_t length : {5U, 20U, 60U}) addStrings(length);
  addCollections();
  addReading();
  addWaiting();
  return true;
}();

}  // namespace
