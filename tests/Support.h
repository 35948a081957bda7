#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <concepts>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <Foundation/Foundation.h>

/// The rows of a table of cases; the loop over them names their columns.
template <class... Cells>
using Rows = std::vector<std::tuple<Cells...>>;

/// Runs the action and expects an exception of this name with exactly this reason.
template <class Action>
void expectRaises(std::u16string_view name, std::string_view reason, Action action) {
  try {
    action();
    ADD_FAILURE() << "nothing raised; expected: " << reason;
  } catch (const NSException& exception) {
    EXPECT_TRUE(exception.name() == name) << exception.name();
    EXPECT_EQ(exception.reason()->utf8(), reason);
    EXPECT_EQ(exception.what(), exception.name()->utf8() + ": " + std::string(reason));
  }
}

/// Runs the action and expects it to refuse nil for this argument of this operation.
template <class Action>
void refusesNil(const std::string& argument, const std::string& operation, Action action) {
  expectRaises(NSInvalidArgumentException, argument + " is nil (in '" + operation + "')", action);
}

/// Whether two references are to one object, and whether they are not.
inline constexpr auto areSame = [](const auto& a, const auto& b) { return a.is(b); };
inline constexpr auto areDistinct = [](const auto& a, const auto& b) { return !a.is(b); };

/// The object's description, "nil" for none.
inline std::string shown(const NSRef<NSObject>& object) {
  return object ? object->description()->utf8() : "nil";
}

inline NSRef<NSNumber> number(int value) { return NSMake<NSNumber>(value); }
inline NSRef<NSString> string(const char* utf8) { return NSMake<NSString>(utf8); }
inline NSRef<NSLocale> locale(const char* identifier) {
  return NSLocale::localeWithLocaleIdentifier(string(identifier));
}

/// The object as it comes back from an archive; nil when it is no `T`.
template <class T>
NSRef<T> unarchived(const NSRef<NSObject>& object) {
  return NSKeyedUnarchiver::unarchivedObjectOfClass<T>(
      NSKeyedArchiver::archivedDataWithRootObject(object));
}

/// Runs a RapidCheck property as a part of the current test.
template <class Property>
void expectProperty(const std::string& description, Property property) {
  EXPECT_TRUE(rc::check(description, std::move(property)));
}

/// Texts over a few units, so that matches, overlaps and look-alikes are frequent.
inline rc::Gen<std::u16string> textOver(std::u16string units) {
  return rc::gen::container<std::u16string>(rc::gen::elementOf(std::move(units)));
}

/// Runs the action on several threads at once.
template <class Action>
void onThreads(int count, Action action) {
  std::vector<std::jthread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) threads.emplace_back(action);
}

/// Calls from eight threads that must come one at a time and, of each thread, in their order.
/// Nothing locks them: whatever runs the blocks has to keep them apart.
class OrderedCalls {
 public:
  /// Submits blocks by `submit(k, block)`, with k from 0 on.
  template <class Submit>
  void make(int each, Submit submit) {
    std::atomic<std::size_t> next = 0;
    onThreads(threads, [&] {
      const std::size_t self = next++;
      for (int k = 0; k < each; ++k) {
        submit(k, [this, self, k] {
          EXPECT_EQ(_last[self], k - 1);
          _last[self] = k;
          ++count;
        });
      }
    });
  }

  static constexpr int threads = 8;
  int count = 0;

 private:
  std::vector<int> _last = std::vector<int>(threads, -1);
};

/// Counts the instances that are alive.
struct Counted : NSObject {
  explicit Counted(int& aliveCount) : alive(aliveCount) { ++alive; }
  Counted(const Counted& other) : NSObject(other), alive(other.alive) { ++alive; }
  Counted& operator=(const Counted&) = delete;
  ~Counted() override { --alive; }
  int& alive;
};

namespace rc {
/// RapidCheck shows the counterexamples of UTF-16 texts as UTF-8.
inline void showValue(const std::u16string& text, std::ostream& out) {
  out << '"' << NSUTF8FromUnits(text) << '"';
}
}  // namespace rc
