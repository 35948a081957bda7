#include "benchmarks/Keys.h"
#include "benchmarks/Support.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QList>
#include <QString>
#endif
#ifdef ZK_HAS_GLIB
#include <glib.h>
#endif

using namespace ZKFoundationExtensions;

namespace {

#ifdef ZK_HAS_GLIB
gint compareInSequence(gconstpointer a, gconstpointer b, gpointer /*data*/) {
  const auto order = static_cast<const Key*>(a)->value - static_cast<const Key*>(b)->value;
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}
using Sequence = std::unique_ptr<GSequence, decltype(&g_sequence_free)>;
Sequence makeSequence() { return {g_sequence_new(nullptr), &g_sequence_free}; }
#endif

void addInsertions() {
  constexpr std::size_t count = 20000;
  const std::string name = "Sorted/Insert20000/";
  const auto isSorted = [](const auto& array) {
    return static_cast<std::size_t>(array->count()) == count &&
           std::ranges::is_sorted(array->objects(), [](const auto& a, const auto& b) {
             return isLess(keyOf(a), keyOf(b));
           });
  };
  addRow(
      name + "ZK",
      [] {
        auto array = NSMake<NSMutableArray>();
        for (const auto& key : keys(count).shuffled) {
          insertObject_inArraySortedUsingFunction_context(array, key, compareKeys, nullptr);
        }
        return array;
      },
      isSorted);
  addRow(
      name + "ZKmethod",
      [] {
        auto array = NSMake<NSMutableArray>();
        for (const auto& key : keys(count).shuffled) {
          insertObject_inArraySortedUsingSelector(array, key, &Key::compare);
        }
        return array;
      },
      isSorted);
  const auto insertAll = [](auto& list) {
    for (const auto& key : keys(count).shuffled) {
      list.insert(std::lower_bound(list.begin(), list.end(), keyOf(key), isLess), keyOf(key));
    }
  };
  const auto isSortedList = [](const auto& list) {
    return static_cast<std::size_t>(list.size()) == count && std::ranges::is_sorted(list, isLess);
  };
  addRow(
      name + "vector",
      [=] {
        std::vector<Key*> list;
        insertAll(list);
        return list;
      },
      isSortedList);
#ifdef ZK_HAS_QT
  addRow(
      name + "QList",
      [=] {
        QList<Key*> list;
        insertAll(list);
        return list;
      },
      isSortedList);
#endif
#ifdef ZK_HAS_GLIB
  addRow(
      name + "GSequence",
      [] {
        auto sequence = makeSequence();
        for (const auto& key : keys(count).shuffled) {
          g_sequence_insert_sorted(sequence.get(), key.get(), compareInSequence, nullptr);
        }
        return std::shared_ptr<GSequence>(std::move(sequence));
      },
      [](const auto& sequence) {
        return g_sequence_get_length(sequence.get()) == static_cast<gint>(count);
      });
#endif
}

template <class Find>
void addSearches(const std::string& how, Find find) {
  constexpr std::size_t count = 1000000;
  addRow(
      "Sorted/Find1000000" + how,
      [=] {
        const Keys& all = keys(count);
        NSUInteger sum = 0;
        for (const auto& key : all.shuffled) sum += find(all, key);
        return sum;
      },
      [](NSUInteger sum) { return sum == count * (count - 1) / 2; }, {.calls = count});
}

// By a comparison that is behind a pointer, one that the compiler sees, and a method.
void addSearches() {
  static const ZKCompareFunction volatile function = compareKeys;
  addSearches("ByFunction/ZK", [](const Keys& all, const NSRef<NSObject>& key) {
    return indexWhereObjectWouldBelong_inArraySortedUsingFunction_context(all.array, key, function,
                                                                          nullptr);
  });
  addSearches("ByFunction/lower_bound", [](const Keys& all, const NSRef<NSObject>& key) {
    const auto objects = all.array->objects();
    const auto found =
        std::lower_bound(objects.begin(), objects.end(), key,
                         [compare = function](const auto& element, const auto& object) {
                           return compare(element, object, nullptr) < 0;
                         });
    return static_cast<NSUInteger>(found - objects.begin());
  });
  addSearches("ByCallable/ZK", [](const Keys& all, const NSRef<NSObject>& key) {
    return indexWhereObjectWouldBelong_inArraySortedUsingFunction(
        all.array, key, [](const NSRef<NSObject>& a, const NSRef<NSObject>& b) {
          return compareKeys(a, b, nullptr);
        });
  });
  addSearches("ByCallable/lower_bound", [](const Keys& all, const NSRef<NSObject>& key) {
    const auto found = std::lower_bound(all.sorted.begin(), all.sorted.end(), keyOf(key), isLess);
    return static_cast<NSUInteger>(found - all.sorted.begin());
  });
  using Method = NSInteger (Key::*)(const Key&) const;
  static const Method volatile method = &Key::compare;
  addSearches("ByMethod/ZK", [](const Keys& all, const NSRef<NSObject>& key) {
    return indexWhereObjectWouldBelong_inArraySortedUsingSelector(all.array, key, Method(method));
  });
  addSearches("ByMethod/lower_bound", [](const Keys& all, const NSRef<NSObject>& key) {
    const auto found = std::lower_bound(all.sorted.begin(), all.sorted.end(), keyOf(key),
                                        [compare = method](const Key* element, const Key* object) {
                                          return (element->*compare)(*object) < 0;
                                        });
    return static_cast<NSUInteger>(found - all.sorted.begin());
  });
#ifdef ZK_HAS_GLIB
  static const Sequence sequence = [] {
    auto result = makeSequence();
    for (Key* const key : keys(1000000).sorted) g_sequence_append(result.get(), key);
    return result;
  }();
  addSearches("ByFunction/GSequence", [](const Keys&, const NSRef<NSObject>& key) {
    auto* const found = g_sequence_lookup(sequence.get(), key.get(), compareInSequence, nullptr);
    return static_cast<NSUInteger>(static_cast<const Key*>(g_sequence_get(found))->value);
  });
#endif
}

// What an expert writes by hand: no branch depends on a value, and both halves' middles are
// fetched.
std::size_t lowerBoundWithoutBranches(const std::vector<NSInteger>& values, NSInteger value) {
  const NSInteger* low = values.data();
  for (std::size_t count = values.size(); count > 1;) {
    const std::size_t half = count / 2;
    count -= half;
    __builtin_prefetch(low + count / 2 - 1);
    __builtin_prefetch(low + half + count / 2 - 1);
    low += half & (0 - std::size_t{low[half - 1] < value});
  }
  return static_cast<std::size_t>(low - values.data()) + (*low < value ? 1 : 0);
}

void addValueSearches() {
  constexpr std::size_t count = 1000000;
  static const auto asked = shuffledNumbers(count);
  static const auto values = [] {
    auto sorted = asked;
    std::ranges::sort(sorted);
    return sorted;
  }();
  const auto addSearch = [](const std::string& who, auto find) {
    addRow(
        "Sorted/FindValue1000000/" + who,
        [=] {
          std::size_t sum = 0;
          for (const NSInteger value : asked) sum += find(value);
          return sum;
        },
        [](std::size_t sum) { return sum == count * (count - 1) / 2; }, {.calls = count});
  };
  addSearch("ZK", [](NSInteger value) {
    return indexWhereObjectWouldBelong_inArraySortedUsingFunction(
        values, value, [](NSInteger a, NSInteger b) { return a <=> b; });
  });
  addSearch("lower_bound", [](NSInteger value) {
    return static_cast<std::size_t>(std::ranges::lower_bound(values, value) - values.begin());
  });
  addSearch("branchless", [](NSInteger value) { return lowerBoundWithoutBranches(values, value); });
}

// Sorts copies of the list; the row includes the copy.
template <class List, class IsBefore>
void addStableSort(const std::string& name, const List& list, IsBefore isBefore) {
  addRow(
      name,
      [=, &list] {
        auto sorted = list;
        std::stable_sort(sorted.begin(), sorted.end(), isBefore);
        return sorted;
      },
      [=](const auto& sorted) { return std::ranges::is_sorted(sorted, isBefore); });
}

void addSorts() {
  constexpr std::size_t count = 100000;
  const std::string name = "Sorted/Sort100000";
  static const auto array = NSMake<NSArray>(std::span(keys(count).shuffled));
  static const ZKCompareFunction volatile function = compareKeys;
  using Method = NSInteger (Key::*)(const Key&) const;
  static const Method volatile method = &Key::compare;
  const auto isSorted = [](const auto& sorted) {
    return std::ranges::equal(sorted->objects(), keys(count).array->objects(),
                              [](const auto& a, const auto& b) { return a.is(b); });
  };
  addRow(
      name + "ByFunction/ZK",
      [] { return sortedArrayUsingFunction_context(array, function, nullptr); }, isSorted);
  addStableSort(
      name + "ByFunction/stable_sort", keys(count).shuffled,
      [compare = function](const auto& a, const auto& b) { return compare(a, b, nullptr) < 0; });
  addRow(
      name + "ByMethod/ZK", [] { return sortedArrayUsingSelector(array, Method(method)); },
      isSorted);
  static const auto references = [] {
    std::vector<NSRef<Key>> all;
    all.reserve(count);
    for (const auto& key : keys(count).shuffled) all.push_back(key.as<Key>());
    return all;
  }();
  addStableSort(name + "ByMethod/stable_sort", references,
                [compare = method](const NSRef<Key>& a, const NSRef<Key>& b) {
                  return (a.get()->*compare)(*b.get()) < 0;
                });
}

// Texts of 4 to 16 letters after a beginning that all have.
struct Texts {
  explicit Texts(const std::string& beginning, const char* letters, std::size_t width) {
    constexpr std::size_t count = 100000;
    std::mt19937 random(7);
    const std::string_view all = letters;
    for (std::size_t k = 0; k < count; ++k) {
      std::string text = beginning;
      for (std::size_t length = 4 + random() % 13; length > 0; --length) {
        text += all.substr(random() % (all.size() / width) * width, width);
      }
      ns.emplace_back(NSMake<NSString>(text));
      plain.emplace_back(NSUnitsFromUTF8(text).view());
#ifdef ZK_HAS_QT
      qt.push_back(QString::fromStdString(text));
#endif
    }
    views.assign(plain.begin(), plain.end());
    array = NSMake<NSArray>(std::span(ns));
  }
  std::vector<NSRef<NSObject>> ns;
  NSRef<NSArray> array;
  std::vector<std::u16string> plain;
  std::vector<std::u16string_view> views;
#ifdef ZK_HAS_QT
  QList<QString> qt;
#endif
};

// By canonical forms, which are the units themselves here; peers compare units.
void addTextSorts(const std::string& kind, const Texts& texts) {
  const std::string name = "Sorted/Sort100000" + kind + "/";
  const auto isSorted = [](const NSRef<NSArray>& sorted) {
    return std::ranges::is_sorted(sorted->objects(), [](const auto& a, const auto& b) {
      return a.template cast<NSString>()->view() < b.template cast<NSString>()->view();
    });
  };
  addRow(
      name + "ZK", [&] { return sortedArrayUsingSelector(texts.array, &NSString::compare); },
      isSorted);
  addRow(
      name + "ZKmutable",
      [&] {
        auto sorted = texts.array->mutableCopy();
        sortUsingSelector(sorted, &NSString::compare);
        return sorted;
      },
      isSorted);
  addRow(
      name + "ZKcallable",
      [&] {
        return sortedArrayUsingFunction(texts.array, [](const auto& a, const auto& b) {
          return NSCompareUnits(a.template cast<NSString>()->view(),
                                b.template cast<NSString>()->view(), 0);
        });
      },
      isSorted);
  addRow(
      name + "ZKkeyPath", [&] { return sortedArrayUsingKeyPath(texts.array, u"self"_ns); },
      isSorted);
  addStableSort(name + "u16string", texts.plain, std::less<>());
  addStableSort(name + "u16string_view", texts.views, std::less<>());
#ifdef ZK_HAS_QT
  addStableSort(name + "QString", texts.qt, std::less<>());
#endif
}

const bool registered = [] {
  addInsertions();
  addSearches();
  addValueSearches();
  addSorts();
  static const Texts names("", "abcdefghijklmnopqrstuvwxyz", 1);
  addTextSorts("Strings", names);
  static const Texts paths("/home/user/Documents/", "abcdefghijklmnopqrstuvwxyz", 1);
  addTextSorts("Paths", paths);
  static const Texts words("", "абвгдежзиклмнопрстуфхцчшщъыьэюя", 2);
  addTextSorts("CyrillicStrings", words);
  return true;
}();

}  // namespace
