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
  /// The empty set.
  NSCharacterSet() noexcept;
  // Copied, never moved: the bitmap is one of the planes.
  NSCharacterSet(const NSCharacterSet&) = default;
  /// The characters with these numbers. Raises `NSRangeException` past U+10FFFF.
  explicit NSCharacterSet(NSRange characters);
  /// The characters of the string; nil has none.
  explicit NSCharacterSet(const NSRef<NSString>& string);
  static NSRef<NSCharacterSet> characterSetWithRange(NSRange characters);
  static NSRef<NSCharacterSet> characterSetWithCharactersInString(const NSRef<NSString>& string);

  /// Category Zs and the tab; no line breaks.
  static const NSRef<NSCharacterSet>& whitespaceCharacterSet();
  /// Categories Z*, U+0009 to U+000D and U+0085.
  static const NSRef<NSCharacterSet>& whitespaceAndNewlineCharacterSet();
  /// Categories Cc and Cf.
  static const NSRef<NSCharacterSet>& controlCharacterSet();
  /// Categories L*, M* and N*.
  static const NSRef<NSCharacterSet>& alphanumericCharacterSet();
  /// Category Nd.
  static const NSRef<NSCharacterSet>& decimalDigitCharacterSet();

  /// What may stand in a URL's path as it is: RFC 3986's unreserved characters and sub-delimiters
  /// without ";", and ":", "@" and "/".
  static const NSRef<NSCharacterSet>& URLPathAllowedCharacterSet();
  /// The same for a query, with ";" and "?".
  static const NSRef<NSCharacterSet>& URLQueryAllowedCharacterSet();

  bool characterIsMember(unichar unit) const noexcept {
    return ((_basicPlane[unit / 64U] >> (unit % 64U)) & 1U) != 0;
  }
  /// False for what is no Unicode character.
  bool longCharacterIsMember(char32_t character) const noexcept;

  /// All characters that are not members.
  NSRef<NSCharacterSet> invertedSet() const;

  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;

  /// The set itself while it is immutable.
  NSRef<NSCharacterSet> copy() const;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
  NSRef<NSMutableCharacterSet> mutableCopy() const;
  NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  using Plane = std::array<std::uint64_t, 1024>;
  // Planes are never changed once they stand in a set, so that copies may share them.
  using Planes = std::array<std::shared_ptr<const Plane>, 17>;

  explicit NSCharacterSet(Planes planes) noexcept;
  static const Planes& planesOf(const NSCharacterSet& set) noexcept { return set._planes; }
  static NSRef<NSCharacterSet> make(Planes planes);
  void setPlanes(Planes planes) noexcept;

  template <class Operation>
  static Planes combine(const Planes& a, const Planes& b, Operation operation);
  static Planes planesOfRange(NSRange characters, const char* operation);
  static Planes planesOfString(const NSRef<NSString>& string);
  static Planes planesOfCategories(std::uint32_t mask);

 private:
  friend struct NSAccess;

  Planes _planes;
  const std::uint64_t* _basicPlane;
  std::array<std::uint8_t, 16> _asciiRows{};
};

/// A character set that may be changed. Belongs to one thread at a time. Nil arguments have no
/// members; a range past U+10FFFF raises `NSRangeException` and changes nothing.
class NS_EXPORT NSMutableCharacterSet : public NSCharacterSet {
 public:
  using NSCharacterSet::NSCharacterSet;
  /// The members of another set; nil has none.
  explicit NSMutableCharacterSet(const NSRef<NSCharacterSet>& other);

  void addCharactersInRange(NSRange characters);
  void removeCharactersInRange(NSRange characters);
  void addCharactersInString(const NSRef<NSString>& string);
  void removeCharactersInString(const NSRef<NSString>& string);
  void formUnionWithCharacterSet(const NSRef<NSCharacterSet>& other);
  void formIntersectionWithCharacterSet(const NSRef<NSCharacterSet>& other);
  void invert();

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};
