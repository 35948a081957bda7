#include "Foundation/NSCharacterSet.h"

#include <algorithm>
#include <utility>

#include <unicode/uniset.h>

#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ICU.h>

struct NSCharacterSet::Contents : Bitmaps {
  explicit Contents(const icu::UnicodeSet& set) : members(set) {
    if (members.isBogus()) throw std::bad_alloc();
    std::uint32_t gapStart = 0x80;
    std::uint32_t gapEnd = firstSurrogate;
    for (std::int32_t k = 0; k < members.getRangeCount(); ++k) {
      const auto first = static_cast<std::uint32_t>(members.getRangeStart(k));
      if (first > 0xFFFF) break;
      const auto last =
          std::min<std::uint32_t>(static_cast<std::uint32_t>(members.getRangeEnd(k)), 0xFFFF);
      mark(first, last);
      // Letters follow the signs of Latin-1.
      if (first < 0x100) {
        gapStart = std::max(gapStart, last + 1);
        continue;
      }
      gapEnd = std::min(gapEnd, first);
      if (last < firstSurrogate || first > lastSurrogate) setRun(2, first, last + 1);
    }
    if (gapStart < gapEnd) setRun(0, gapStart, gapEnd);
    for (std::size_t unit = 0; unit < 0x80; ++unit) {
      const auto isMember = unitBitmap[unit / 64] >> (unit % 64) & 1U;
      asciiRows[unit % 16] |= static_cast<std::uint8_t>(isMember << (unit / 16));
    }
  }

  // The one set of a pattern of ICU's.
  template <NSLiteral pattern>
  static const NSRef<NSCharacterSet>& setOf() {
    static const NSNeverDestroyed<NSRef<NSCharacterSet>> constant([] {
      UErrorCode status = U_ZERO_ERROR;
      const icu::UnicodeSet set(pattern.units.data(), status);
      NSCheckICU(status);
      return NSRef<NSCharacterSet>::adopt(
          new NSCharacterSet(std::make_shared<const Contents>(set)));
    }());
    return *constant;
  }

  const icu::UnicodeSet members;

 private:
  static constexpr std::uint32_t firstSurrogate = 0xD800;
  static constexpr std::uint32_t lastSurrogate = 0xDFFF;

  void setRun(std::size_t at, std::uint32_t start, std::uint32_t end) {
    runs[at] = static_cast<std::uint16_t>(start);
    runs[at + 1] = static_cast<std::uint16_t>(end - start);
  }
  // A word at a time: every change of a set makes its bitmap anew.
  void mark(std::uint32_t first, std::uint32_t last) {
    for (std::uint32_t unit = first; unit <= last; unit = (unit | 63U) + 1) {
      const std::uint32_t count = std::min(last, unit | 63U) - unit + 1;
      unitBitmap[unit / 64] |= (~std::uint64_t{0} >> (64 - count)) << (unit % 64);
    }
  }
};

namespace {

icu::UnicodeSet membersOf(NSRange characters, const char* operation) {
  constexpr NSUInteger characterCount = 0x110000;
  NSCheckRange(operation, characters, characterCount);
  icu::UnicodeSet members;
  const auto last = static_cast<UChar32>(NSMaxRange(characters)) - 1;
  if (characters.length != 0) members.add(static_cast<UChar32>(characters.location), last);
  return members;
}

icu::UnicodeSet membersOf(const NSRef<NSString>& string) {
  std::u32string characters;
  std::u16string_view text = NSViewOf(string);
  while (!text.empty()) characters += NSTakeCharacter(text);
  // A set grows at its end in constant time, elsewhere by moving what is after the place.
  std::ranges::sort(characters);
  icu::UnicodeSet members;
  for (const char32_t character : characters) members.add(static_cast<UChar32>(character));
  return members;
}

}  // namespace

NSCharacterSet::NSCharacterSet()
    : NSCharacterSet([] {
        static const NSNeverDestroyed<std::shared_ptr<const Contents>> empty(
            std::make_shared<const Contents>(icu::UnicodeSet()));
        return *empty;
      }()) {}

NSCharacterSet::NSCharacterSet(std::shared_ptr<const Contents> contents) noexcept
    : _contents(std::move(contents)) {}

NSCharacterSet::NSCharacterSet(NSRange characters)
    : NSCharacterSet(
          std::make_shared<const Contents>(membersOf(characters, "characterSetWithRange:"))) {}

NSCharacterSet::NSCharacterSet(const NSRef<NSString>& string)
    : NSCharacterSet(std::make_shared<const Contents>(membersOf(string))) {}

const NSRef<NSCharacterSet>& NSCharacterSet::whitespaceCharacterSet() {
  return Contents::setOf<u"[[:Zs:]\\u0009]">();
}

const NSRef<NSCharacterSet>& NSCharacterSet::whitespaceAndNewlineCharacterSet() {
  return Contents::setOf<u"[[:Z:]\\u0009-\\u000D\\u0085]">();
}

const NSRef<NSCharacterSet>& NSCharacterSet::controlCharacterSet() {
  return Contents::setOf<u"[[:Cc:][:Cf:]]">();
}

const NSRef<NSCharacterSet>& NSCharacterSet::alphanumericCharacterSet() {
  return Contents::setOf<u"[[:L:][:M:][:N:]]">();
}

const NSRef<NSCharacterSet>& NSCharacterSet::decimalDigitCharacterSet() {
  return Contents::setOf<u"[:Nd:]">();
}

const NSRef<NSCharacterSet>& NSCharacterSet::URLPathAllowedCharacterSet() {
  return Contents::setOf<u"[A-Za-z0-9\\-._~!\\$\\&'()*+,=\\:@/]">();
}

const NSRef<NSCharacterSet>& NSCharacterSet::URLQueryAllowedCharacterSet() {
  return Contents::setOf<u"[A-Za-z0-9\\-._~!\\$\\&'()*+,=\\:@/;?]">();
}

bool NSCharacterSet::longCharacterIsMember(char32_t character) const noexcept {
  if (character <= 0xFFFF) return characterIsMember(static_cast<unichar>(character));
  return contentsOf(*this).members.contains(static_cast<UChar32>(character)) != 0;
}

NSRef<NSCharacterSet> NSCharacterSet::invertedSet() const {
  auto inverse = mutableCopy();
  inverse->invert();
  return inverse->copy();
}

const NSCharacterSet::Contents& NSCharacterSet::contentsOf(const NSCharacterSet& set) noexcept {
  return static_cast<const Contents&>(*set._contents);
}

void NSCharacterSet::setContents(std::shared_ptr<const Contents> contents) noexcept {
  _contents = std::move(contents);
}

bool NSCharacterSet::isEqual(const NSRef<NSObject>& other) const {
  const auto* const set = other.cast<const NSCharacterSet>();
  return set != nullptr && contentsOf(*this).members == contentsOf(*set).members;
}

NSUInteger NSCharacterSet::hash() const {
  return static_cast<NSUInteger>(contentsOf(*this).members.hashCode());
}

NSRef<NSMutableCharacterSet> NSCharacterSet::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableCharacterSet>();
}

NSRef<NSObject> NSCharacterSet::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableCharacterSet>(share(this));
}

NSMutableCharacterSet::NSMutableCharacterSet(const NSRef<NSCharacterSet>& other)
    : NSCharacterSet(other ? *other : NSCharacterSet()) {}

template <class Change>
void NSMutableCharacterSet::change(Change change) {
  icu::UnicodeSet members = contentsOf(*this).members;
  change(members);
  setContents(std::make_shared<const Contents>(members));
}

void NSMutableCharacterSet::addCharactersInRange(NSRange characters) {
  change([&](auto& set) { set.addAll(membersOf(characters, "addCharactersInRange:")); });
}

void NSMutableCharacterSet::removeCharactersInRange(NSRange characters) {
  change([&](auto& set) { set.removeAll(membersOf(characters, "removeCharactersInRange:")); });
}

void NSMutableCharacterSet::addCharactersInString(const NSRef<NSString>& string) {
  change([&](auto& set) { set.addAll(membersOf(string)); });
}

void NSMutableCharacterSet::removeCharactersInString(const NSRef<NSString>& string) {
  change([&](auto& set) { set.removeAll(membersOf(string)); });
}

void NSMutableCharacterSet::formUnionWithCharacterSet(const NSRef<NSCharacterSet>& other) {
  if (other) change([&](auto& set) { set.addAll(contentsOf(*other).members); });
}

void NSMutableCharacterSet::formIntersectionWithCharacterSet(const NSRef<NSCharacterSet>& other) {
  const NSCharacterSet none;
  const auto& kept = other ? *other : none;
  change([&](auto& set) { set.retainAll(contentsOf(kept).members); });
}

void NSMutableCharacterSet::invert() {
  change([](auto& set) { set.complement(); });
}

NSRef<NSObject> NSMutableCharacterSet::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSCharacterSet>(static_cast<const NSCharacterSet&>(*this));
}
