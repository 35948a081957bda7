#include "benchmarks/Support.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QHash>
#include <QList>
#include <QSet>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#endif
#ifdef ZK_HAS_GLIB
#include <glib.h>
#endif
#ifdef ZK_HAS_FLAT_MAP
#include <boost/unordered/unordered_flat_map.hpp>
#include <boost/unordered/unordered_flat_set.hpp>
#endif

using namespace ZKFoundationExtensions;

namespace {

struct Key : NSObject {
  explicit Key(NSInteger aValue) : value(aValue) {}
  NSInteger compare(const Key& other) const { return value - other.value; }
  NSInteger value;
  NSRef<NSObject> partner;
};

Key* keyOf(const NSRef<NSObject>& object) { return static_cast<Key*>(object.get()); }

NSInteger compareKeys(const NSRef<NSObject>& object, const NSRef<NSObject>& element,
                      void* /*context*/) {
  return keyOf(object)->value - keyOf(element)->value;
}

bool isLess(const Key* a, const Key* b) { return a->value < b->value; }

struct Keys {
  std::vector<NSRef<NSObject>> shuffled;
  std::vector<Key*> sorted;
  NSRef<NSArray> array;
};

std::vector<NSInteger> shuffledNumbers(std::size_t count) {
  std::vector<NSInteger> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 0);
  std::ranges::shuffle(numbers, std::mt19937(7));
  return numbers;
}

// Made in shuffled order: neighbours by value lie anywhere in memory.
const Keys& keys(std::size_t count) {
  static std::unordered_map<std::size_t, Keys> made;
  Keys& result = made[count];
  if (!result.shuffled.empty()) return result;
  for (const NSInteger value : shuffledNumbers(count)) {
    result.shuffled.emplace_back(NSMake<Key>(value));
    result.sorted.push_back(keyOf(result.shuffled.back()));
  }
  for (std::size_t k = 0; k < count; ++k) {
    keyOf(result.shuffled[k])->partner = result.shuffled[(k + 1) % count];
  }
  std::ranges::sort(result.sorted, isLess);
  auto array = NSMake<NSMutableArray>();
  for (Key* const key : result.sorted) array->addObject(NSRef<Key>::share(key));
  result.array = array->copy();
  return result;
}

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

// The same as shared pointers.
struct SharedKey {
  virtual ~SharedKey() = default;
  std::shared_ptr<SharedKey> partner;
};
struct OtherSharedKey : SharedKey {};
struct OtherObject : NSObject {};

constexpr std::size_t manyKeys = 1000000;

const std::vector<std::shared_ptr<SharedKey>>& sharedKeys() {
  // Never destroyed: the chain of partners is too long to die one within the other.
  static const NSNeverDestroyed<std::vector<std::shared_ptr<SharedKey>>> sorted([] {
    std::vector<std::shared_ptr<SharedKey>> all(manyKeys);
    std::shared_ptr<SharedKey> former;
    for (const NSInteger value : shuffledNumbers(manyKeys)) {
      const auto key =
          value % 2 == 0 ? std::make_shared<SharedKey>() : std::make_shared<OtherSharedKey>();
      if (former) former->partner = key;
      former = all[static_cast<std::size_t>(value)] = key;
    }
    return all;
  }());
  return *sorted;
}

const NSRef<NSArray>& mixedObjects() {
  static const auto mixed = [] {
    std::vector<NSRef<NSObject>> all(manyKeys);
    for (const NSInteger value : shuffledNumbers(manyKeys)) {
      all[static_cast<std::size_t>(value)] =
          value % 2 == 0 ? NSRef<NSObject>(NSMake<Key>(value)) : NSMake<OtherObject>();
    }
    return NSMake<NSArray>(std::move(all));
  }();
  return mixed;
}

void addSelections() {
  addRow(
      "Array/Transform1000000/ZK",
      [] {
        return transformedArrayUsingTransformator(
            keys(manyKeys).array,
            [](const NSRef<NSObject>& object) { return keyOf(object)->partner; });
      },
      [](const auto& result) { return result->count() == manyKeys; });
  addRow(
      "Array/Transform1000000/vector",
      [] {
        std::vector<std::shared_ptr<SharedKey>> result;
        result.reserve(manyKeys);
        for (const auto& key : sharedKeys()) result.push_back(key->partner);
        return result;
      },
      [](const auto& result) { return result.size() == manyKeys; });
#ifdef ZK_HAS_QT
  addRow(
      "Array/Transform1000000/QList",
      [] {
        QList<std::shared_ptr<SharedKey>> result;
        result.reserve(manyKeys);
        for (const auto& key : sharedKeys()) result.append(key->partner);
        return result;
      },
      [](const auto& result) { return result.size() == qsizetype{manyKeys}; });
#endif
  addRow(
      "Array/KindOfClass1000000/ZK",
      [] { return arrayWithObjectsKindOfClass(mixedObjects(), NSClass::of<Key>()); },
      [](const auto& result) { return result->count() == manyKeys / 2; });
  addRow(
      "Array/KindOfClass1000000/dynamic_cast",
      [] {
        std::vector<std::shared_ptr<SharedKey>> result;
        for (const auto& key : sharedKeys()) {
          if (dynamic_cast<const OtherSharedKey*>(key.get()) != nullptr) result.push_back(key);
        }
        return result;
      },
      [](const auto& result) { return result.size() == manyKeys / 2; });
}

void addIndexSets() {
  static constexpr NSUInteger count = 100000;
  static const auto indexes = [] {
    auto set = NSMake<NSMutableIndexSet>();
    for (NSUInteger k = 0; k < count; ++k) set->addIndex(3 * k);
    return set;
  }();
  static const auto plain = [] {
    std::vector<NSUInteger> all;
    for (const NSUInteger index : *indexes) all.push_back(index);
    return all;
  }();
  static const std::set<NSUInteger> tree(plain.begin(), plain.end());
  addRow(
      "IndexSet/Text100000/ZK", [] { return stringValueWithSeparator(indexes, u", "_ns); },
      [](const auto& text) { return text->hasSuffix(u"299994, 299997"_ns); });
  addRow(
      "IndexSet/Text100000/to_chars",
      [] {
        std::u16string text;
        std::array<char, 20> digits;
        for (const NSUInteger index : plain) {
          if (!text.empty()) text += u", ";
          const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), index).ptr;
          text.append(digits.data(), end);
        }
        return text;
      },
      [](const auto& text) { return text.ends_with(u"299994, 299997"); });
#ifdef ZK_HAS_QT
  addRow(
      "IndexSet/Text100000/Qt",
      [] {
        QStringList words;
        for (const NSUInteger index : plain) words.append(QString::number(index));
        return words.join(QStringLiteral(", "));
      },
      [](const auto& text) { return text.endsWith(QStringLiteral("299994, 299997")); });
#endif
  addRow(
      "IndexSet/InRange50000/ZK",
      [] {
        return indexesInRange(indexes, {count, 3 * count / 2});
      },
      [](const auto& part) { return part->count() == count / 2; });
  addRow(
      "IndexSet/InRange50000/vector",
      [] {
        return std::vector<NSUInteger>(std::ranges::lower_bound(plain, count),
                                       std::ranges::lower_bound(plain, 5 * count / 2));
      },
      [](const auto& part) { return part.size() == count / 2; });
  addRow(
      "IndexSet/InRange50000/set",
      [] { return std::set<NSUInteger>(tree.lower_bound(count), tree.lower_bound(5 * count / 2)); },
      [](const auto& part) { return part.size() == count / 2; });
}

struct Words {
  explicit Words(std::size_t count, const char* prefix = "chapter ") {
    for (std::size_t k = 0; k < count; ++k) {
      const auto word = NSMake<NSString>(prefix + std::to_string(k));
      ns.emplace_back(word);
      plain.emplace_back(word->view());
#ifdef ZK_HAS_QT
      qt.push_back(QString::fromStdU16String(plain.back()));
#endif
    }
  }
  std::vector<NSRef<NSObject>> ns;
  std::vector<std::u16string> plain;
#ifdef ZK_HAS_QT
  std::vector<QString> qt;
#endif
};

// Asks for words that are equal to the entered ones, not the same, in a mixed order; and for
// others.
template <class List, class Find>
void addLookUps(const std::string& kind, const char* who, const List& asked, const List& missing,
                Find find) {
  const std::size_t count = asked.size();
  for (const bool isMiss : {false, true}) {
    addRow(
        kind + (isMiss ? "/Miss" : "/LookUp") + std::to_string(count) + "/" + who,
        [=, words = isMiss ? missing : asked] {
          std::size_t found = 0;
          for (std::size_t k = 0; k < count; ++k) found += find(words[k * 7919 % count]) ? 1U : 0U;
          return found;
        },
        [=](std::size_t found) { return found == (isMiss ? 0 : count); },
        {.calls = benchmark::IterationCount(count)});
  }
}

template <class Set, class List, class Contains>
void addSets(const char* who, const List& entered, const List& asked, const List& missing,
             Contains contains) {
  const auto set = std::make_shared<Set>(entered.begin(), entered.end());
  addLookUps("Set", who, asked, missing, [=](const auto& word) { return contains(*set, word); });
}

// Maps of words to themselves, as dictionaries mostly hold references.
template <class Map, class List, class Enter, class Find>
void addMaps(const char* who, const List& entered, const List& asked, const List& missing,
             Enter enter, Find find) {
  const auto make = [=] {
    auto map = std::make_shared<Map>();
    for (const auto& word : entered) enter(*map, word);
    return map;
  };
  addRow("Dictionary/Insert" + std::to_string(entered.size()) + "/" + who, make,
         [=](const auto& map) { return find(*map, entered[0]); },
         {.calls = benchmark::IterationCount(entered.size())});
  addLookUps("Dictionary", who, asked, missing,
             [=, map = make()](const auto& word) { return find(*map, word); });
}

void addLookUps(std::size_t count) {
  const Words words(count);
  const Words asked(count);
  const Words others(count, "section ");
  const auto set = NSMake<NSSet>(NSMake<NSArray>(std::span(words.ns)));
  addLookUps("Set", "ZK", asked.ns, others.ns,
             [=](const auto& word) { return set->containsObject(word); });
  addMaps<NSMutableDictionary>(
      "ZK", words.ns, asked.ns, others.ns,
      [](auto& map, const auto& word) { map.setObject_forKey(word, word); },
      [](const auto& map, const auto& word) { return map.objectForKey(word) != nullptr; });
  const auto contains = [](const auto& container, const auto& word) {
    return container.contains(word);
  };
  const auto emplace = [](auto& map, const auto& word) { map.emplace(word, &word); };
  addSets<std::unordered_set<std::u16string>>("unordered_set", words.plain, asked.plain,
                                              others.plain, contains);
  addMaps<std::unordered_map<std::u16string, const void*>>(
      "unordered_map", words.plain, asked.plain, others.plain, emplace, contains);
#ifdef ZK_HAS_QT
  addSets<QSet<QString>>("QSet", words.qt, asked.qt, others.qt, contains);
  addMaps<QHash<QString, const void*>>("QHash", words.qt, asked.qt, others.qt, emplace, contains);
#endif
#ifdef ZK_HAS_FLAT_MAP
  addSets<boost::unordered_flat_set<std::u16string, std::hash<std::u16string>>>(
      "Boost", words.plain, asked.plain, others.plain, contains);
  addMaps<boost::unordered_flat_map<std::u16string, const void*, std::hash<std::u16string>>>(
      "Boost", words.plain, asked.plain, others.plain, emplace, contains);
#endif
}

const bool registered = [] {
  addInsertions();
  addSearches();
  addValueSearches();
  addSelections();
  addIndexSets();
  addLookUps(1000);
  addLookUps(100000);
  return true;
}();

}  // namespace
