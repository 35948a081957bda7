#pragma once

#include <concepts>
#include <initializer_list>
#include <ranges>
#include <span>
#include <utility>
#include <vector>

#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

/// A range of references to strings.
template <class Range>
concept ZKStringRange = std::ranges::input_range<Range> &&
    std::convertible_to<std::ranges::range_reference_t<Range>, NSRef<NSString>>;

namespace ZKFoundationExtensions {

/// Appends the strings in their order, up to the first nil.
ZK_EXPORT void appendStrings(const NSRef<NSMutableString>& string,
                             std::span<const NSRef<NSString>> strings);
/// Appends the strings of a list, up to the first nil.
inline void appendStrings(const NSRef<NSMutableString>& string,
                          std::initializer_list<NSRef<NSString>> strings) {
  appendStrings(string, std::span(strings.begin(), strings.size()));
}
/// Appends the strings of any range, such as `array->each<NSString>()`, up to the first nil, where
/// it stops reading. Room is made once.
template <ZKStringRange Strings>
void appendStrings(const NSRef<NSMutableString>& string, Strings&& strings) {
  if constexpr (std::convertible_to<Strings&, std::span<const NSRef<NSString>>>) {
    appendStrings(string, std::span<const NSRef<NSString>>(strings));
  } else {
    std::vector<NSRef<NSString>> list;
    for (auto&& next : strings) {
      if (!next) break;
      list.emplace_back(std::forward<decltype(next)>(next));
    }
    appendStrings(string, std::span<const NSRef<NSString>>(list));
  }
}

}  // namespace ZKFoundationExtensions
