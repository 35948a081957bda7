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

std::size_t lengthOfReplaced(std::u16string_view text, const NSCharacterSet& set,
                             std::u16string_view replacement) {
  std::size_t members = 0;
  NSForEachMember(set, text, units, [&](std::size_t) { ++members; });
  std::size_t added = 0;
  if (__builtin_mul_overflow(members, replacement.size() - 1, &added)) throw std::bad_alloc();
  if (added > PTRDIFF_MAX) throw std::bad_alloc();
  return text.size() + added;
}

// Writes the text with the members replaced to `out`, which has room for it and for `slack` units.
// Gives the end of it.
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
  NSForEachMember(set, text, units, [&](std::size_t place) {
    out = copyRun(text, start, place - start, out);
    out = copyRun(substitute, 0, replacement.size(), out);
    start = place + 1;
  });
  return copyRun(text, start, text.size() - start, out);
}

void replaceMembers(NSUnitBuffer& buffer, const NSCharacterSet& set,
                    std::u16string_view replacement) {
  const std::u16string_view text = buffer.view();
  // A line is put together beside the string and copied back: it mostly fits where it stood.
  std::array<char16_t, 512> line;
  if (text.size() <= (line.size() - slack) / replacement.size()) {
    const char16_t* const end = copyReplaced(text, set, replacement, line.data());
    buffer.replace(0, text.size(), {line.data(), end});
    return;
  }
  const std::size_t length = lengthOfReplaced(text, set, replacement);
  NSUnitBuffer result;
  copyReplaced(text, set, replacement, result.extend(length + slack));
  result.truncate(length);
  buffer = std::move(result);
}

}  // namespace

void ZKReplaceCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                       const NSRef<NSCharacterSet>& set,
                                       const NSRef<NSString>& replacement) {
  const std::u16string_view substitute = NSViewOf(replacement);
  if (substitute.empty()) return ZKRemoveCharactersInCharacterSet(string, set);
  NSUnitBuffer& buffer = string->units();
  if (!set) return;
  if (NSFirstMember(*set, buffer.view(), 0, units) == std::u16string_view::npos) return;
  replaceMembers(buffer, *set, substitute);
}

void ZKRemoveCharactersInCharacterSet(const NSRef<NSMutableString>& string,
                                      const NSRef<NSCharacterSet>& set) {
  NSUnitBuffer& buffer = string->units();
  if (!set) return;
  const std::size_t first = NSFirstMember(*set, buffer.view(), 0, units);
  if (first == std::u16string_view::npos) return;
  const std::size_t kept =
      NSCopyNonMembers(*set, buffer.view().substr(first), units, buffer.data() + first);
  buffer.truncate(first + kept);
}

NSRef<NSMutableArray> ZKStringCreateComponentsSeparatedByCharacterSetTrimWhitespace(
    std::pmr::memory_resource* allocator, const NSRef<NSString>& string,
    const NSRef<NSCharacterSet>& separators, bool trimsWhitespace) {
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
  if (separators) NSForEachMember(*separators, text, units, end);
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

NSRef<NSMutableString> stringByRemovingCharactersInSet_options(const NSRef<NSString>& string,
                                                               const NSRef<NSCharacterSet>& set,
                                                               NSUInteger options) {
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
