#include "benchmarks/Keys.h"
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
#ifdef ZK_HAS_FLAT_MAP
#include <boost/unordered/unordered_flat_map.hpp>
#include <boost/unordered/unordered_flat_set.hpp>
#endif

using namespace ZKFoundationExtensions;

namespace {

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

// The words of each kind lie together, as in a program that has no other kind.
struct Words {
  explicit Words(std::size_t count, const char* prefix = "chapter ") {
    for (std::size_t k = 0; k < count; ++k) {
      ns.emplace_back(NSMake<NSString>(prefix + std::to_string(k)));
    }
    for (const auto& word : ns) plain.emplace_back(static_cast<NSString*>(word.get())->view());
#ifdef ZK_HAS_QT
    for (const auto& word : plain) qt.push_back(QString::fromStdU16String(word));
#endif
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
  addSelections();
  addIndexSets();
  addLookUps(1000);
  addLookUps(100000);
  return true;
}();

}  // namespace
