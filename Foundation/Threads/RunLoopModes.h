#pragma once

#include <algorithm>
#include <list>
#include <utility>
#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>

/// Gives a list of the default mode alone.
[[nodiscard]] const NSRef<NSArray>& NSDefaultRunLoopModes();

/// Copies a list of modes, so that nobody else can change it.
[[nodiscard]] NSRef<NSArray> NSCopiedModes(const NSRef<NSArray>& modes);

/// Whether the two name the same mode, also where a class of strings has its own view of that: so
/// nobody else's code runs while lists of modes are walked.
template <class A, class B>
[[nodiscard]] bool NSIsSameMode(const NSRef<A>& a, const NSRef<B>& b) {
  if (a.is(b)) return true;
  const auto* const text = a.template cast<const NSString>();
  const auto* const other = b.template cast<const NSString>();
  return text != nullptr && other != nullptr && text->view() == other->view();
}

/// A set of few modes.
class NSModeSet {
 public:
  explicit NSModeSet(NSRef<NSString> mode) : _modes{std::move(mode)} {}

  [[nodiscard]] bool contains(const NSRef<NSString>& mode) const {
    for (const auto& member : _modes) {
      if (NSIsSameMode(member, mode)) return true;
    }
    return false;
  }
  void add(const NSRef<NSString>& mode) {
    if (!contains(mode)) _modes.push_back(mode);
  }

 private:
  std::vector<NSRef<NSString>> _modes;
};

/// Keeps what waits for modes: one T, a group, for each list of modes that has been named. So what
/// waits for other modes costs a pass nothing. A group stays where it is in memory.
template <class T>
class NSModePartition {
 public:
  /// Gives the group of that list of modes; nil is the common ones.
  [[nodiscard]] T& of(const NSRef<NSArray>& modes) {
    if (!modes) return _common;
    for (Group& group : _groups) {
      if (group.modes.is(modes) || std::ranges::equal(group.modes->objects(), modes->objects(),
                                                      NSIsSameMode<NSObject, NSObject>)) {
        return group.contents;
      }
    }
    return _groups.emplace_back(NSCopiedModes(modes)).contents;
  }

  /// Gives all groups whose turn it is in a pass in that mode.
  [[nodiscard]] std::vector<T*> in(const NSRef<NSString>& mode, const NSModeSet& commonModes) {
    std::vector<T*> result;
    const bool isCommon = commonModes.contains(mode);
    if (isCommon) result.push_back(&_common);
    for (Group& group : _groups) {
      if (contains(group.modes, mode) ||
          (isCommon && contains(group.modes, NSRunLoopCommonModes()))) {
        result.push_back(&group.contents);
      }
    }
    return result;
  }

  /// Forgets empty groups, when there are many. Nobody may walk over them meanwhile.
  void tidy() {
    if (_groups.size() < fewGroups) return;
    _groups.remove_if([](Group& group) { return group.contents.empty(); });
  }

  template <class F>
  void forEach(F function) {
    forEachWithModes([&](T& contents, const NSRef<NSArray>& /*modes*/) { function(contents); });
  }
  /// Calls the function with each group and its modes, nil for the common ones.
  template <class F>
  void forEachWithModes(F function) {
    function(_common, NSRef<NSArray>());
    for (Group& group : _groups) function(group.contents, group.modes);
  }

 private:
  static constexpr std::size_t fewGroups = 16;

  static bool contains(const NSRef<NSArray>& modes, const NSRef<NSString>& mode) {
    return std::ranges::any_of(modes->objects(),
                               [&](const auto& other) { return NSIsSameMode(other, mode); });
  }

  struct Group {
    explicit Group(NSRef<NSArray> list) : modes(std::move(list)) {}
    NSRef<NSArray> modes;
    T contents;
  };

  T _common;
  std::list<Group> _groups;
};

/// Gives the group that has the least key, null when none has one: `key` gives what comes first in
/// a group, or nothing. By this, groups are taken from by turns, as if all were one.
template <class T, class Key>
[[nodiscard]] T* NSFirstOf(const std::vector<T*>& groups, Key key) {
  T* first = nullptr;
  decltype(key(*first)) least;
  for (T* const group : groups) {
    auto own = key(*group);
    if (!own || (least && *least < *own)) continue;
    least = std::move(own);
    first = group;
  }
  return first;
}
