#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>

class NSMutableCharacterSet;
class NSString;

/// A set of Unicode characters. Membership of a UTF-16 unit is one load from a bitmap; the halves
/// of surrogate pairs are members of their own, apart from the characters that pairs stand for.
///
/// The predefined sets follow Unicode's general categories and are made once, on first use.
class NS_EXPORT NSCharacterSet : public NSObject {
 public:
  /// Makes the empty set.
  NSCharacterSet();
  // Copied, never moved: a set always has contents.
  NSCharacterSet(const NSCharacterSet&) = default;
  /// Makes the set of the characters with these numbers. Raises `NSRangeException` past U+10FFFF.
  explicit NSCharacterSet(NSRange characters);
  /// Makes the set of the string's characters; nil has none.
  explicit NSCharacterSet(const NSRef<NSString>& string);
  [[nodiscard]] static NSRef<NSCharacterSet> characterSetWithRange(NSRange characters) {
    return NSMake<NSCharacterSet>(characters);
  }
  [[nodiscard]] static NSRef<NSCharacterSet> characterSetWithCharactersInString(
      const NSRef<NSString>& string) {
    return NSMake<NSCharacterSet>(string);
  }

  /// Gives category Zs and the tab; no line breaks.
  [[nodiscard]] static const NSRef<NSCharacterSet>& whitespaceCharacterSet();
  /// Gives categories Z*, U+0009 to U+000D and U+0085.
  [[nodiscard]] static const NSRef<NSCharacterSet>& whitespaceAndNewlineCharacterSet();
  /// Gives categories Cc and Cf.
  [[nodiscard]] static const NSRef<NSCharacterSet>& controlCharacterSet();
  /// Gives categories L*, M* and N*.
  [[nodiscard]] static const NSRef<NSCharacterSet>& alphanumericCharacterSet();
  /// Gives category Nd.
  [[nodiscard]] static const NSRef<NSCharacterSet>& decimalDigitCharacterSet();

  /// Gives what may stand in a URL's path as it is: RFC 3986's unreserved characters and
  /// sub-delimiters without ";", and ":", "@" and "/".
  [[nodiscard]] static const NSRef<NSCharacterSet>& URLPathAllowedCharacterSet();
  /// Gives what may stand in a URL's query as it is: what may in a path, ";" and "?".
  [[nodiscard]] static const NSRef<NSCharacterSet>& URLQueryAllowedCharacterSet();

  [[nodiscard]] bool characterIsMember(unichar unit) const noexcept {
    return ((_contents->unitBitmap[unit / 64U] >> (unit % 64U)) & 1U) != 0;
  }
  /// Whether the character is a member; false for what is no Unicode character.
  [[nodiscard]] bool longCharacterIsMember(char32_t character) const noexcept;

  /// Gives the set of all characters that are not members.
  [[nodiscard]] NSRef<NSCharacterSet> invertedSet() const;

  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;

  /// Gives the set itself while it is immutable.
  [[nodiscard]] NSRef<NSCharacterSet> copy() const {
    return copyWithZone(nullptr).as<NSCharacterSet>();
  }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableCharacterSet> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  struct Bitmaps {
    std::array<std::uint64_t, 1024> unitBitmap{};
    std::array<std::uint8_t, 16> asciiRows{};
    // Above ASCII, where a run without members begins, mostly of letters, and how long it is; then
    // the same of the last run of members. Neither holds surrogates.
    std::array<std::uint16_t, 4> runs{};
  };
  // All members, and the bitmaps of those that are single units.
  struct Contents;

  explicit NSCharacterSet(std::shared_ptr<const Contents> contents) noexcept;
  [[nodiscard]] static const Contents& contentsOf(const NSCharacterSet& set) noexcept;
  void setContents(std::shared_ptr<const Contents> contents) noexcept;

 private:
  friend struct NSAccess;

  // Never changed while a set has it, so that copies may share it.
  std::shared_ptr<const Bitmaps> _contents;
};

/// A character set that may be changed. Belongs to one thread at a time. Nil arguments have no
/// members; a range past U+10FFFF raises `NSRangeException` and changes nothing.
class NS_EXPORT NSMutableCharacterSet : public NSCharacterSet {
 public:
  using NSCharacterSet::NSCharacterSet;
  /// Makes a set with the members of another one; nil has none.
  explicit NSMutableCharacterSet(const NSRef<NSCharacterSet>& other);

  void addCharactersInRange(NSRange characters);
  void removeCharactersInRange(NSRange characters);
  void addCharactersInString(const NSRef<NSString>& string);
  void removeCharactersInString(const NSRef<NSString>& string);
  void formUnionWithCharacterSet(const NSRef<NSCharacterSet>& other);
  void formIntersectionWithCharacterSet(const NSRef<NSCharacterSet>& other);
  void invert();

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  template <class Change>
  void change(Change change);
};
