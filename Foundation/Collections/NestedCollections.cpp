#include "Foundation/Collections/NestedCollections.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSOrderedSet.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/ContentHash.h>

namespace {

// How many objects each of `count` elements may ask when their collection may ask `most`.
std::size_t shareOf(std::size_t most, std::size_t count) {
  return count == 0 ? 0 : (most - 1) / count;
}

NSUInteger hashOf(const NSRef<NSObject>& object, std::size_t most) {
  // Most elements are texts.
  if (const auto* const text = object.cast<NSString>()) return text->hash();
  if (const auto* const array = object.cast<NSArray>()) {
    return NSHashSequence(NSObjectVector(array->elements()), most);
  }
  if (const auto* const dictionary = object.cast<NSDictionary>()) {
    return NSHashEntries({dictionary->allKeys()->elements(), dictionary->allValues()->elements()},
                         most);
  }
  if (const auto* const set = object.cast<NSSet>()) {
    return NSHashSet(set->allObjects()->elements(), most);
  }
  if (const auto* const set = object.cast<NSOrderedSet>()) {
    return NSHashSequence(NSObjectVector(set->elements()), most);
  }
  return object->hash();
}

// Hashes that are added must differ in more than their sum.
NSUInteger mixed(NSUInteger hash) { return NSHashWith(0, hash); }

// The answers of one outermost comparison. They hold the pairs, so that no address is used again.
struct Comparison {
  using Pair = std::pair<const NSObject*, const NSObject*>;
  struct Hash {
    std::size_t operator()(const Pair& pair) const noexcept {
      return mixed(reinterpret_cast<std::uintptr_t>(pair.first)) ^
             reinterpret_cast<std::uintptr_t>(pair.second);
    }
  };
  struct Answer {
    std::pair<NSRef<NSObject>, NSRef<NSObject>> held;
    // What contains itself is as equal as the rest of it.
    bool isEqual = true;
    // Of one that depends on what is not known yet: the outermost comparison that it may depend on,
    // counted from 1. Else 0.
    std::size_t depth = 0;
  };

  std::size_t count = 0;
  std::unordered_map<Pair, Answer, Hash> answers;
  std::size_t depth = 0;
  // The outermost comparison whose answer has been taken for true before it was there.
  std::size_t assumed = SIZE_MAX;
  // The pairs that are equal if it is.
  std::vector<Pair> provisional;
};

// The comparison of a pair while it goes on.
class Comparing {
 public:
  explicit Comparing(Comparison& comparison)
      : _comparison(comparison),
        _depth(++comparison.depth),
        _mark(comparison.provisional.size()),
        _assumed(std::exchange(comparison.assumed, SIZE_MAX)) {}
  Comparing(const Comparing&) = delete;
  ~Comparing() {
    --_comparison.depth;
    _comparison.assumed = _assumed;
  }

  [[nodiscard]] std::size_t depth() const noexcept { return _depth; }

  // Notes the answer; what was found equal as this pair was taken for equal goes if it is not.
  void end(const Comparison::Pair& pair, bool isEqual) {
    auto& [count, answers, depth, assumed, provisional] = _comparison;
    Comparison::Answer& answer = answers.at(pair);
    answer.isEqual = isEqual;
    if (isEqual && assumed < _depth) {
      answer.depth = 1;
      provisional.push_back(pair);
      _assumed = std::min(_assumed, assumed);
      return;
    }
    answer.depth = 0;
    for (std::size_t k = _mark; k < provisional.size(); ++k) {
      if (isEqual) {
        answers.at(provisional[k]).depth = 0;
      } else {
        answers.erase(provisional[k]);
      }
    }
    provisional.resize(_mark);
  }

 private:
  Comparison& _comparison;
  const std::size_t _depth;
  const std::size_t _mark;
  std::size_t _assumed;
};

thread_local Comparison* current = nullptr;
thread_local const NSDescribing* describing = nullptr;

bool compareOutermost(const NSRef<NSObject>& b,
                      NSBlockRef<bool(const NSRef<NSObject>&)> isEqualTo) {
  struct Scope {
    Scope() { current = &comparison; }
    Scope(const Scope&) = delete;
    ~Scope() { current = nullptr; }
    Comparison comparison;
  } const scope;
  return isEqualTo(b);
}

}  // namespace

NSUInteger NSHashSequence(const NSObjectVector& elements, std::size_t most) {
  constexpr std::size_t mostElements = 8;
  const std::size_t taken = std::min({elements.size(), most, mostElements});
  NSUInteger hash = elements.size();
  for (std::size_t k = 0; k < taken; ++k) {
    const std::size_t at = k == 0 ? 0 : k * (elements.size() - 1) / (taken - 1);
    hash = NSHashWith(hash, hashOf(elements[at], shareOf(most, taken)));
  }
  return hash;
}

NSUInteger NSHashSet(const NSObjectVector& elements, std::size_t most) {
  NSUInteger hash = elements.size();
  if (elements.size() > most) return hash;
  for (const auto& element : elements.view()) {
    hash += mixed(hashOf(element, shareOf(most, elements.size())));
  }
  return hash;
}

NSUInteger NSHashEntries(const NSEntryList& entries, std::size_t most) {
  NSUInteger hash = entries.size();
  const std::size_t count = 2 * entries.size();
  if (count > most) return hash;
  for (std::size_t k = 0; k < entries.size(); ++k) {
    const auto [key, object] = entries[k];
    const std::size_t share = shareOf(most, count);
    hash += NSHashWith(mixed(hashOf(key, share)), hashOf(object, share));
  }
  return hash;
}

bool NSCompareCollections(const NSObject& a, const NSRef<NSObject>& b,
                          NSBlockRef<bool(const NSRef<NSObject>&)> isEqualTo) {
  if (current == nullptr) return compareOutermost(b, isEqualTo);
  Comparison& comparison = *current;
  // A collection with one owner is met again only if that is. A few pairs are sooner compared.
  constexpr std::size_t few = 16;
  if (++comparison.count <= few || a.isUniquelyReferenced() || b->isUniquelyReferenced()) {
    return isEqualTo(b);
  }
  const Comparison::Pair pair(&a, b.get());
  const auto [place, isNew] = comparison.answers.try_emplace(pair);
  Comparison::Answer& answer = place->second;
  if (!isNew) {
    if (answer.depth != 0) comparison.assumed = std::min(comparison.assumed, answer.depth);
    return answer.isEqual;
  }
  Comparing comparing(comparison);
  answer.held = {a.self(), b};
  answer.depth = comparing.depth();
  bool isEqual = false;
  try {
    isEqual = isEqualTo(b);
  } catch (...) {
    comparing.end(pair, false);
    comparison.answers.erase(pair);
    throw;
  }
  comparing.end(pair, isEqual);
  return isEqual;
}

NSDescribing::NSDescribing(const NSObject& collection) noexcept
    : _collection(collection), _outer(std::exchange(describing, this)) {}

NSDescribing::~NSDescribing() { describing = _outer; }

bool NSDescribing::isWithin() const noexcept {
  for (const NSDescribing* each = _outer; each != nullptr; each = each->_outer) {
    if (&each->_collection == &_collection) return true;
  }
  return false;
}
