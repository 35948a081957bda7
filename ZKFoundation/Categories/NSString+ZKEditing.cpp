#include "ZKFoundation/Categories/NSString+ZKEditing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include <Foundation/NSException.h>
#include <Foundation/Text/StringSearch.h>
#include <Foundation/Text/UnitMembership.h>

namespace {

constexpr auto units = NSMembership::units;

// How much more than a run `copyRun` may write.
constexpr std::size_t slack = 16;

// Copies a run that is mostly short: as a whole block, where the text goes on for one.
char16_t* copyRun(std::u16string_view text, std::size_t start, std::size_t count, char16_t* out) {
  if (count <= slack && text.size() - start >= slack) {
    std::memcpy(out, text.data() + start, slack * sizeof(char16_t));
    return out + count;
  }
  return std::copy_n(text.data() + start, count, out);
}

// How many units the text with the members replaced has at most.
std::size_t lengthOfReplaced(std::u16string_view text, const NSCharacterSet& set,
                             NSMembership membership, std::u16string_view replacement) {
  std::size_t members = 0;
  NSForEachMember(set, text, membership, [&](std::size_t) { ++members; });
  std::size_t added = 0;
  if (__builtin_mul_overflow(members, replacement.size() - 1, &added)) throw std::bad_alloc();
  if (added > PTRDIFF_MAX) throw std::bad_alloc();
  return text.size() + added;
}

// Writes the text with the members replaced to `out`, which has room for it and for `slack` units.
// Gives the end of it. Of a pair that is one member the first unit is replaced.
template <NSMembership membership>
char16_t* copyReplaced(std::u16string_view text, const NSCharacterSet& set,
                       std::u16string_view replacement, char16_t* out) {
  // A short replacement, filled up to a block.
  std::array<char16_t, slack> padded{};
  std::u16string_view substitute = replacement;
  if (replacement.size() <= slack) {
    std::ranges::copy(replacement, padded.begin());
    substitute = {padded.data(), padded.size()};
  }
  std::size_t start = 0;
  NSForEachMember(set, text, membership, [&](std::size_t place) {
    out = copyRun(text, start, place - start, out);
    start = place + 1;
    if (membership == NSMembership::characters && NSSplitsPair(text, place)) return;
    out = copyRun(substitute, 0, replacement.size(), out);
  });
  return copyRun(text, start, text.size() - start, out);
}

template <NSMembership membership>
void replaceMembers(NSUnitBuffer& buffer, const NSCharacterSet& set,
                    std::u16string_view replacement) {
  const std::u16string_view text = buffer.view();
  if (NSFirstMember(set, text, 0, membership) == std::u16string_view::npos) return;
  // A line is put together beside the string and copied back: it mostly fits where it stood.
  std::array<char16_t, 512> line;
  if (text.size() <= (line.size() - slack) / replacement.size()) {
    const char16_t* const end = copyReplaced<membership>(text, set, replacement, line.data());
    buffer.replace(0, text.size(), {line.data(), end});
    return;
  }
  const std::size_t length = lengthOfReplaced(text, set, membership, replacement);
  NSUnitBuffer result;
  char16_t* const start = result.extend(length + slack);
  const char16_t* const end = copyReplaced<membership>(text, set, replacement, start);
  result.truncate(static_cast<std::size_t>(end - start));
  buffer = std::move(result);
}

void removeMembers(NSUnitBuffer& buffer, const NSCharacterSet& set, NSMembership membership) {
  const std::size_t first = NSFirstMember(set, buffer.view(), 0, membership);
  if (first == std::u16string_view::npos) return;
  const std::size_t kept =
      NSCopyNonMembers(set, buffer.view().substr(first), membership, buffer.data() + first);
  buffer.truncate(first + kept);
}

NSRef<NSMutableArray> componentsOf(std::pmr::memory_resource* allocator,
                                   const NSRef<NSString>& string, const NSCharacterSet* separators,
                                   NSMembership membership, bool trimsWhitespace) {
  const std::u16string_view text = string->view();
  // The components of a line need no memory but this.
  std::array<std::byte, 1024> room;
  std::pmr::monotonic_buffer_resource local(room.data(), room.size());
  std::pmr::vector<std::u16string_view> components(allocator != nullptr ? allocator : &local);
  std::size_t start = 0;
  const auto end = [&](std::size_t place) {
    if (place > start) components.push_back(text.substr(start, place - start));
    start = place + 1;
  };
  if (separators != nullptr) NSForEachMember(*separators, text, membership, end);
  end(text.size());

  const auto& whitespace = *NSCharacterSet::whitespaceCharacterSet();
  const auto trim = [&](std::u16string_view& component) {
    const auto isBlank = [&](char16_t unit) { return whitespace.characterIsMember(unit); };
    while (!component.empty() && isBlank(component.front())) component.remove_prefix(1);
    while (!component.empty() && isBlank(component.back())) component.remove_suffix(1);
  };
  NSObjectVector strings;
  strings.reserve(components.size());
  for (std::u16string_view component : components) {
    if (trimsWhitespace) trim(component);
    strings.append(NSMake<NSString>(component));
  }
  return NSMake<NSMutableArray>(std::move(strings));
}

}  // namespace

void ZKReplaceCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                       const NSRef<NSCharacterSet>& set,
                                       const NSRef<NSString>& replacement) {
  const std::u16string_view substitute = NSViewOf(replacement);
  if (substitute.empty()) return ZKRemoveCharactersInCharacterSet(string, set);
  NSUnitBuffer& buffer = string->units();
  if (set) replaceMembers<units>(buffer, *set, substitute);
}

void ZKRemoveCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                      const NSRef<NSCharacterSet>& set) {
  NSUnitBuffer& buffer = string->units();
  if (set) removeMembers(buffer, *set, units);
}

NSRef<NSMutableArray> ZKStringCreateComponentsSeparatedByCharacterSetTrimWhitespace(
    std::pmr::memory_resource* allocator, const NSRef<NSString>& string,
    const NSRef<NSCharacterSet>& separators, bool trimsWhitespace) {
  return componentsOf(allocator, string, separators.get(), units, trimsWhitespace);
}

namespace ZKFoundationExtensions {

void replaceOccurrencesOfCharactersInSet_withString(const NSRef<NSMutableString>& string,
                                                    const NSRef<NSCharacterSet>& set,
                                                    const NSRef<NSString>& replacement) {
  NSCheckArgument("replaceOccurrencesOfCharactersInSet:withString:", "string", string);
  ZKReplaceCharactersInCharacterSet(string, set, replacement);
}

void removeCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                    const NSRef<NSCharacterSet>& set) {
  NSCheckArgument("removeCharactersInCharacterSet:", "string", string);
  ZKRemoveCharactersInCharacterSet(string, set);
}

void replaceWholeCharactersInSet_withString(const NSRef<NSMutableString>& string,
                                            const NSRef<NSCharacterSet>& set,
                                            const NSRef<NSString>& replacement) {
  NSCheckArgument("replaceWholeCharactersInSet:withString:", "string", string);
  const std::u16string_view substitute = NSViewOf(replacement);
  if (!set) return;
  if (substitute.empty()) return removeMembers(string->units(), *set, NSMembership::characters);
  replaceMembers<NSMembership::characters>(string->units(), *set, substitute);
}

NSRef<NSMutableArray> componentsSeparatedByWholeCharactersInSet_trimWhitespace(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set, bool trimsWhitespace) {
  NSCheckArgument("componentsSeparatedByWholeCharactersInSet:trimWhitespace:", "string", string);
  return componentsOf(nullptr, string, set.get(), NSMembership::characters, trimsWhitespace);
}

NSRef<NSMutableString> stringByRemovingCharactersInSet_options(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set,
    NSOptions<NSStringCompareOptions> options) {
  NSCheckArgument("stringByRemovingCharactersInSet:options:", "string", string);
  std::u16string_view text = string->view();
  if (!set) return NSMake<NSMutableString>(text);
  if ((options & NSAnchoredSearch) != 0) {
    text.remove_prefix(NSCountMembersAtEnd(*set, text, 0));
    return NSMake<NSMutableString>(text);
  }
  auto result = NSMutableString::stringWithCapacity(text.size());
  NSUnitBuffer& kept = result->units();
  char16_t* const out = kept.extend(text.size());
  kept.truncate(NSCopyNonMembers(*set, text, NSMembership::characters, out));
  kept.shrink();
  return result;
}

NSRef<NSMutableString> stringByRemovingCharactersInSet(const NSRef<NSString>& string,
                                                       const NSRef<NSCharacterSet>& set) {
  NSCheckArgument("stringByRemovingCharactersInSet:", "string", string);
  return stringByRemovingCharactersInSet_options(string, set, 0);
}

NSRef<NSMutableString> stringByRemovingCharacter(const NSRef<NSString>& string, unichar unit) {
  NSCheckArgument("stringByRemovingCharacter:", "string", string);
  return stringByRemovingCharactersInSet(string, NSCharacterSet::characterSetWithRange({unit, 1}));
}

NSRef<NSString> stringByReplacingCharactersInSet_withString(const NSRef<NSString>& string,
                                                            const NSRef<NSCharacterSet>& set,
                                                            const NSRef<NSString>& replacement) {
  NSCheckArgument("stringByReplacingCharactersInSet:withString:", "string", string);
  if (string->rangeOfCharacterFromSet(set).length == 0) return string;
  auto result = string->mutableCopy();
  ZKReplaceCharactersInCharacterSet(result, set, replacement);
  return result;
}

NSRef<NSMutableString> stringByRemovingWhitespace(const NSRef<NSString>& string) {
  NSCheckArgument("stringByRemovingWhitespace", "string", string);
  return stringByRemovingCharactersInSet(string, NSCharacterSet::whitespaceCharacterSet());
}

NSRef<NSString> stringByRemovingSurroundingWhitespace(const NSRef<NSString>& string) {
  NSCheckArgument("stringByRemovingSurroundingWhitespace", "string", string);
  return string->stringByTrimmingCharactersInSet(NSCharacterSet::whitespaceCharacterSet());
}

NSRef<NSString> stringByRemovingSurroundingWhitespaceAndNewlines(const NSRef<NSString>& string) {
  NSCheckArgument("stringByRemovingSurroundingWhitespaceAndNewlines", "string", string);
  return stringByRemovingSurroundingWhitespace(string);
}

NSRef<NSMutableArray> componentsSeparatedByCharactersInSet_trimWhitespace(
    const NSRef<NSString>& string, const NSRef<NSCharacterSet>& set, bool trimsWhitespace) {
  NSCheckArgument("componentsSeparatedByCharactersInSet:trimWhitespace:", "string", string);
  return ZKStringCreateComponentsSeparatedByCharacterSetTrimWhitespace(nullptr, string, set,
                                                                       trimsWhitespace);
}

NSRange rangeWithoutCharactersFromSet_atIndex(const NSRef<NSString>& string,
                                              const NSRef<NSCharacterSet>& set, NSUInteger index) {
  NSCheckArgument("rangeWithoutCharactersFromSet:atIndex:", "string", string);
  if (index > string->length()) {
    NSRaiseIndexOutOfBounds("rangeWithoutCharactersFromSet:atIndex:", index, string->length());
  }
  return set ? NSRunWithoutMembers(*set, string->view(), index) : NSRange{0, string->length()};
}

}  // namespace ZKFoundationExtensions
