#include "Foundation/NSString.h"

#include <cstring>

#include <Foundation/NSArray.h>
#include <Foundation/NSCharacterSet.h>
#include <Foundation/NSException.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSStringComparison.h>
#include <Foundation/Objects/ContentHash.h>
#include <Foundation/Objects/HashMemo.h>
#include <Foundation/Text/StringSearch.h>

NSRef<NSString> operator""_ns(const char16_t* units, std::size_t length) {
  return NSMake<NSString>(std::u16string_view(units, length));
}

NSRef<NSString> operator""_ns(const char* utf8, std::size_t length) {
  return NSMake<NSString>(std::string_view(utf8, length));
}

namespace {

// The most units that a mutable string keeps behind itself: it cannot give them back when it grows.
constexpr std::size_t largestRoom = 512;

// Up to so many bytes of UTF-8 are decoded into the room behind a string, one unit for each.
constexpr std::size_t shortUTF8 = 256;

// What the standard library's == does unit by unit.
bool haveSameUnits(std::u16string_view a, std::u16string_view b) noexcept {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

template <class Character>
bool areCharacters(std::u16string_view units, std::basic_string_view<Character> characters) {
  for (const Character character : characters) {
    if (units.empty() || NSTakeCharacter(units) != static_cast<char32_t>(character)) return false;
  }
  return units.empty();
}

}  // namespace

bool operator==(const NSRef<NSString>& string, std::string_view text) {
  // No unit comes of less than a byte.
  return string && string.get()->length() <= text.size() &&
         haveSameUnits(string.get()->view(), NSUnitsFromUTF8(text).view());
}

bool operator==(const NSRef<NSString>& string, std::u8string_view text) {
  return string == std::string_view(reinterpret_cast<const char*>(text.data()), text.size());
}

bool operator==(const NSRef<NSString>& string, std::u32string_view text) noexcept {
  return string && areCharacters(string.get()->view(), text);
}

bool operator==(const NSRef<NSString>& string, std::wstring_view text) noexcept {
  return string && areCharacters(string.get()->view(), text);
}

NSRef<NSString> NSString::makeCompact(std::string_view utf8) {
  if (utf8.size() > shortUTF8) return NSRef<NSString>::adopt(new NSString(utf8));
  auto result = makeWithRoom<NSString>(utf8.size());
  NSAppendUTF8(utf8, result->_text);
  return result;
}

NSRef<NSString> NSString::makeCompact(NSUnitBuffer&& units) {
  // What has to be copied anyway needs no block of its own.
  if (units.isLent()) return makeCompact(units.view());
  return NSRef<NSString>::adopt(new NSString(std::move(units)));
}

NSRef<NSString> NSString::stringWithFormat_arguments(const NSRef<NSString>& format,
                                                     std::span<const NSFormatArgument> arguments) {
  if (!format) NSRaiseNilArgument("format", "stringWithFormat:");
  std::array<char16_t, 128> room;
  NSUnitBuffer text(room);
  // Of its own: what an argument answers may change the format.
  const auto pattern = format->copy();
  NSAppendFormat(pattern->view(), arguments, text);
  return NSMake<NSString>(text.view());
}

unichar NSString::characterAtIndex(NSUInteger index) const {
  NSCheckIndex("characterAtIndex:", index, length());
  return view()[index];
}

bool NSString::isEqualToString(const NSRef<NSString>& other) const noexcept {
  return other == view();
}

bool NSString::isEqual(const NSRef<NSObject>& other) const {
  if (other.get() == this) return true;
  const auto* const string = other.cast<const NSString>();
  return string != nullptr && haveSameUnits(string->view(), view());
}

NSUInteger NSString::hash() const {
  return NSHashMemo::hash(*this, length() * sizeof(char16_t), [&] { return NSHashText(view()); });
}

NSRef<NSString> NSString::description() const { return copy(); }

NSComparisonResult NSString::compare_options(const NSRef<NSString>& other,
                                             NSOptions<NSStringCompareOptions> options) const {
  return NSCompareUnits(view(), other->view(), options);
}

bool NSString::hasPrefix(const NSRef<NSString>& prefix) const noexcept {
  return prefix && view().starts_with(prefix->view());
}

bool NSString::hasSuffix(const NSRef<NSString>& suffix) const noexcept {
  return suffix && view().ends_with(suffix->view());
}

NSRange NSString::rangeOfString_options_range(const NSRef<NSString>& string,
                                              NSOptions<NSStringCompareOptions> options,
                                              NSRange range) const {
  NSCheckRange("rangeOfString:options:range:", range, length());
  return NSSearchUnits(view(), NSViewOf(string), options, range);
}

NSRange NSString::rangeOfString_options(const NSRef<NSString>& string,
                                        NSOptions<NSStringCompareOptions> options) const {
  return NSSearchUnits(view(), NSViewOf(string), options, {0, length()});
}

NSRange NSString::rangeOfCharacterFromSet_options_range(const NSRef<NSCharacterSet>& set,
                                                        NSOptions<NSStringCompareOptions> options,
                                                        NSRange range) const {
  NSCheckRange("rangeOfCharacterFromSet:options:range:", range, length());
  if (!set) return NSNotFoundRange;
  const NSRange found = NSSearchMember(*set, view().substr(range.location, range.length), options);
  return found.length == 0 ? found : NSRange{range.location + found.location, found.length};
}

NSRef<NSString> NSString::substringFromIndex(NSUInteger index) const {
  if (index > length()) NSRaiseIndexOutOfBounds("substringFromIndex:", index, length());
  return NSMake<NSString>(view().substr(index));
}

NSRef<NSString> NSString::substringToIndex(NSUInteger index) const {
  if (index > length()) NSRaiseIndexOutOfBounds("substringToIndex:", index, length());
  return NSMake<NSString>(view().substr(0, index));
}

NSRef<NSString> NSString::substringWithRange(NSRange range) const {
  NSCheckRange("substringWithRange:", range, length());
  return NSMake<NSString>(view().substr(range.location, range.length));
}

NSRef<NSString> NSString::stringByAppendingString(const NSRef<NSString>& string) const {
  return joined(view(), NSViewOf(string));
}

NSRef<NSString> NSString::joined(std::u16string_view a, std::u16string_view b) {
  auto result = makeWithRoom<NSString>(a.size() + b.size());
  result->_text.append(a);
  result->_text.append(b);
  return result;
}

NSRef<NSString> NSString::stringByTrimmingCharactersInSet(const NSRef<NSCharacterSet>& set) const {
  std::u16string_view text = view();
  if (!set) return NSMake<NSString>(text);
  const auto isMember = [&members = *set](char16_t unit) {
    return members.characterIsMember(unit) && !NSIsSurrogate(unit);
  };
  while (!text.empty() && isMember(text.front())) text.remove_prefix(1);
  while (!text.empty() && isMember(text.back())) text.remove_suffix(1);
  if (!text.empty() && (NSIsSurrogate(text.front()) || NSIsSurrogate(text.back()))) {
    text.remove_prefix(NSCountMembersAtEnd(*set, text, 0));
    text.remove_suffix(NSCountMembersAtEnd(*set, text, NSBackwardsSearch));
  }
  return NSMake<NSString>(text);
}

NSRef<NSArray> NSString::componentsSeparatedByString(const NSRef<NSString>& separator) const {
  const std::u16string_view text = view();
  auto components = NSMake<NSMutableArray>();
  NSUInteger start = 0;
  NSForEachOccurrence(text, NSViewOf(separator), [&](NSRange found) {
    components->addObject(NSMake<NSString>(text.substr(start, found.location - start)));
    start = NSMaxRange(found);
  });
  components->addObject(NSMake<NSString>(text.substr(start)));
  return components;
}

const NSPropertyTable& NSString::propertyTable() const {
  static const NSPropertyTable table({{u"length", &NSString::length}}, NSObject::propertyTable());
  return table;
}

NSRef<NSMutableString> NSString::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableString>();
}

NSRef<NSObject> NSString::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableString>(view());
}

NSRef<NSMutableString> NSMutableString::stringWithCapacity(NSUInteger units) {
  auto result = makeWithRoom<NSMutableString>(units <= largestRoom ? units : 0);
  if (units > largestRoom) result->reserve(units);
  return result;
}

NSRef<NSMutableString> NSMutableString::makeCompact(std::u16string_view units) {
  // Most are made to be edited: a short one gets room to grow.
  const std::size_t room = units.size() + units.size() / 4;
  auto result = stringWithCapacity(room <= largestRoom ? room : units.size());
  result->appendUnits(units);
  return result;
}

NSRef<NSMutableString> NSMutableString::makeCompact(std::string_view utf8) {
  if (utf8.size() > shortUTF8) return NSRef<NSMutableString>::adopt(new NSMutableString(utf8));
  auto result = stringWithCapacity(utf8.size());
  NSAppendUTF8(utf8, result->text());
  return result;
}

void NSMutableString::appendString(const NSRef<NSString>& string) {
  text().append(NSViewOf(string));
}

void NSMutableString::setString(const NSRef<NSString>& string) {
  text().replace(0, length(), NSViewOf(string));
}

void NSMutableString::insertString_atIndex(const NSRef<NSString>& string, NSUInteger index) {
  if (index > length()) NSRaiseIndexOutOfBounds("insertString:atIndex:", index, length());
  text().replace(index, 0, NSViewOf(string));
}

void NSMutableString::deleteCharactersInRange(NSRange range) {
  NSCheckRange("deleteCharactersInRange:", range, length());
  text().replace(range.location, range.length, {});
}

void NSMutableString::replaceCharactersInRange_withString(NSRange range,
                                                          const NSRef<NSString>& string) {
  NSCheckRange("replaceCharactersInRange:withString:", range, length());
  text().replace(range.location, range.length, NSViewOf(string));
}

NSRef<NSObject> NSMutableString::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSString>(view());
}
