#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSFormat.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSStringComparison.h>
#include <Foundation/NSUnicode.h>
#include <Foundation/NSUnitBuffer.h>

class NSArray;
class NSCharacterSet;
class NSDictionary;
class NSMutableString;

/// A sequence of UTF-16 code units. Lengths, indexes and ranges count units; an index or range that
/// does not fit raises `NSRangeException`.
///
/// The units are contiguous: `view()` costs nothing. UTF-8 that is not well-formed becomes U+FFFD
/// (one for each maximal broken part) on the way in, lone surrogate halves on the way out; as units
/// they are kept. `NSMake` puts a string and its units into one block of memory.
class NS_EXPORT NSString : public NSObject {
 public:
  NSString() noexcept = default;
  explicit NSString(std::u16string_view units) : _text(units) {}
  /// From UTF-8, of which ASCII is a part.
  explicit NSString(std::string_view utf8) : _text(NSUnitsFromUTF8(utf8)) {}
  /// Takes the units over.
  explicit NSString(NSUnitBuffer&& units) : _text(std::move(units)) {}

  static NSRef<NSString> makeCompact(std::u16string_view units) {
    auto result = makeWithRoom<NSString>(units.size());
    result.get()->_text.append(units);
    return result;
  }
  static NSRef<NSString> makeCompact(std::string_view utf8);

  /// The format with the arguments in the places of its conversions, as printf takes them: "%@" is
  /// the description of an object, "(null)" for nil; "%d %i %u %x %X %o %c %C" are integers, of any
  /// size ("%ld" is "%d"); "%f %e %g %a" and their capitals floating-point numbers, always with a
  /// point; "%s" is UTF-8 text, "%p" an address, "%%" the sign itself. "%2$@" takes the second
  /// argument. Flags, widths and precisions are printf's, up to 1,000; "*" is not known. Those of
  /// text count units: "%.3@" and "%.3s" write at most three, and never half of a surrogate pair.
  ///
  /// A format may come from a translator: a conversion that does not fit its argument writes it as
  /// "%@" does, one without an argument writes "(null)", an unknown one stays as it is. A nil
  /// format raises `NSInvalidArgumentException`.
  template <class... Arguments>
  static NSRef<NSString> stringWithFormat(const NSRef<NSString>& format,
                                          const Arguments&... arguments) {
    const std::array<NSFormatArgument, sizeof...(arguments)> list{NSFormatArgument(arguments)...};
    return stringWithFormat_arguments(format, list);
  }
  static NSRef<NSString> stringWithFormat_arguments(const NSRef<NSString>& format,
                                                    std::span<const NSFormatArgument> arguments);

  /// Strings are made with room behind them, so that their size is not that of their class.
  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void* string) noexcept { ::operator delete(string); }

  std::u16string_view view() const noexcept { return _text.view(); }
  NSUInteger length() const noexcept { return _text.size(); }
  unichar characterAtIndex(NSUInteger index) const;

  std::string utf8() const { return NSUTF8FromUnits(view()); }
  explicit operator std::string() const { return utf8(); }
  explicit operator std::u16string() const { return std::u16string(view()); }
  operator std::u16string_view() const noexcept { return view(); }

  /// The same units; a nil string equals nothing.
  bool isEqualToString(const NSRef<NSString>& other) const noexcept;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// The text itself.
  NSRef<NSString> description() const override;

  /// The order of the strings as `NSCompareUnits` tells it; without options by units of the
  /// canonical decompositions, with letter case. Nil raises `NSInvalidArgumentException`.
  NSComparisonResult compare(const NSRef<NSString>& other) const;
  NSComparisonResult caseInsensitiveCompare(const NSRef<NSString>& other) const;
  NSComparisonResult compare_options(const NSRef<NSString>& other, NSUInteger options) const;

  /// Literal and case-sensitive. True for an empty string, false for nil.
  bool hasPrefix(const NSRef<NSString>& prefix) const noexcept;
  bool hasSuffix(const NSRef<NSString>& suffix) const noexcept;

  /// The first occurrence in the range, or `NSNotFoundRange`; nil and empty strings are not found.
  /// Options are the bits of `NSStringCompareOptions`. Without `NSLiteralSearch` canonically
  /// equivalent text matches ("é" finds "e" with U+0301 behind it, a longer match), and no match
  /// cuts a composed character in two ("e" does not find it).
  NSRange rangeOfString_options_range(const NSRef<NSString>& string, NSUInteger options,
                                      NSRange range) const;
  NSRange rangeOfString_options(const NSRef<NSString>& string, NSUInteger options) const;
  NSRange rangeOfString(const NSRef<NSString>& string) const;

  /// The first member of the set in the range (with `NSBackwardsSearch` the last, with
  /// `NSAnchoredSearch` only one at that end), or `NSNotFoundRange`. A surrogate pair is one
  /// member, of two units. A nil set has no members.
  NSRange rangeOfCharacterFromSet_options_range(const NSRef<NSCharacterSet>& set,
                                                NSUInteger options, NSRange range) const;
  NSRange rangeOfCharacterFromSet_options(const NSRef<NSCharacterSet>& set,
                                          NSUInteger options) const;
  NSRange rangeOfCharacterFromSet(const NSRef<NSCharacterSet>& set) const;

  NSRef<NSString> substringFromIndex(NSUInteger index) const;
  NSRef<NSString> substringToIndex(NSUInteger index) const;
  NSRef<NSString> substringWithRange(NSRange range) const;
  /// Nil appends nothing.
  NSRef<NSString> stringByAppendingString(const NSRef<NSString>& string) const;
  /// The string without the members of the set at its beginning and end; nil has no members.
  NSRef<NSString> stringByTrimmingCharactersInSet(const NSRef<NSCharacterSet>& set) const;
  /// The first letter of each word in title case, the others in lower case, by the rules of the
  /// current locale (`NSLocale::currentLocale`). Words are Unicode's: "they're" is one, "jean-luc"
  /// two.
  NSRef<NSString> localizedCapitalizedString() const;
  /// The pieces between the occurrences of the separator, from left to right, empty ones included.
  /// A string without the separator, or with a nil or empty one, is its only piece.
  NSRef<NSArray> componentsSeparatedByString(const NSRef<NSString>& separator) const;

  /// The entries of a table of localized strings, whose text this is: `"key" = "value";` with
  /// comments as in C++. The escapes are C's and "\Uxxxx" for a unit. Of a table with faults the
  /// entries that can be read, and one log line that names the first fault.
  NSRef<NSDictionary> propertyListFromStringsFileFormat() const;

  // Paths: components between "/"; a name's extension is behind its last ".". None of these looks
  // at the disk but `stringByStandardizingPath`.

  /// Whether it begins with "/" or "~".
  bool isAbsolutePath() const noexcept;
  /// "/", if it begins so, and the names; also "/" for one at the end. "/a//b/" gives /, a, b, /.
  NSRef<NSArray> pathComponents() const;
  /// The last name; "/" for the root, "" for "".
  NSRef<NSString> lastPathComponent() const;
  /// Without the last name: "/a/b/" gives "/a", "/a" gives "/", "a" gives "".
  NSRef<NSString> stringByDeletingLastPathComponent() const;
  /// With one "/" between; nil appends nothing.
  NSRef<NSString> stringByAppendingPathComponent(const NSRef<NSString>& name) const;
  /// "" where there is none, such as in ".profile" and "a.".
  NSRef<NSString> pathExtension() const;
  /// Also without "/" at the end: "a.b/" gives "a".
  NSRef<NSString> stringByDeletingPathExtension() const;
  /// "/a/" and "b" give "/a.b". The root, the empty path and an empty extension change nothing.
  NSRef<NSString> stringByAppendingPathExtension(const NSRef<NSString>& extension) const;
  /// "~" and "~user" at the beginning become the home directories; unknown users stay.
  NSRef<NSString> stringByExpandingTildeInPath() const;
  /// The path with the tilde expanded and without empty names, "." and "/" at the end. Of an
  /// absolute path ".." goes to the parent, the real one where the name before is a symbolic link;
  /// of a relative one it stays. "./" stays in front of a name that begins with "~".
  NSRef<NSString> stringByStandardizingPath() const;

  /// Percent sequences as the UTF-8 that they stand for; nil when one is broken or the text is not
  /// UTF-8.
  NSRef<NSString> stringByRemovingPercentEncoding() const;
  /// Every character that is not ASCII and a member of the set as percent sequences of its UTF-8.
  /// Nil for a text with half of a surrogate pair; a nil set has no members.
  NSRef<NSString> stringByAddingPercentEncodingWithAllowedCharacters(
      const NSRef<NSCharacterSet>& allowedCharacters) const;

  /// "length" besides what every object publishes.
  const NSPropertyTable& propertyTable() const override;

  /// The string itself while it is immutable.
  NSRef<NSString> copy() const;
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
  NSRef<NSMutableString> mutableCopy() const;
  NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

 protected:
  explicit NSString(std::span<char16_t> room) noexcept : _text(room) {}
  /// An empty string and room for so many units in one block.
  template <class String>
  static NSRef<String> makeWithRoom(std::size_t units) {
    static_assert(sizeof(String) == sizeof(NSString));
    void* const block = NSString::operator new(sizeof(String) + units * sizeof(char16_t));
    auto* const room = reinterpret_cast<char16_t*>(static_cast<String*>(block) + 1);
    return NSRef<String>::adopt(::new (block) String(std::span(room, units)));
  }
  NSUnitBuffer& text() noexcept { return _text; }

 private:
  NSUnitBuffer _text;
};

/// A string that may be changed. Belongs to one thread at a time. A change that fails, for want of
/// memory or because a range does not fit, leaves the string as it was.
class NS_EXPORT NSMutableString : public NSString {
 public:
  using NSString::NSString;

  /// An empty string that takes up to so many units without another allocation.
  static NSRef<NSMutableString> stringWithCapacity(NSUInteger units);
  static NSRef<NSMutableString> makeCompact() { return stringWithCapacity(24); }
  static NSRef<NSMutableString> makeCompact(std::u16string_view units);
  static NSRef<NSMutableString> makeCompact(std::string_view utf8);

  /// Nil appends nothing.
  void appendString(const NSRef<NSString>& string);
  void appendUnits(std::u16string_view units) { text().append(units); }
  /// Nil empties the string.
  void setString(const NSRef<NSString>& string);
  void insertString_atIndex(const NSRef<NSString>& string, NSUInteger index);
  void deleteCharactersInRange(NSRange range);
  /// Nil counts as the empty string.
  void replaceCharactersInRange_withString(NSRange range, const NSRef<NSString>& string);
  /// Makes room for a text of so many units altogether.
  void reserve(NSUInteger units) { text().reserve(units); }
  /// The units themselves, for algorithms that edit in place.
  NSUnitBuffer& units() noexcept { return text(); }

  NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};

/// `u"…"_ns`, and `"…"_ns` with UTF-8 text.
NS_EXPORT NSRef<NSString> operator""_ns(const char16_t* units, std::size_t length);
NS_EXPORT NSRef<NSString> operator""_ns(const char* utf8, std::size_t length);

/// A literal as a template argument.
template <std::size_t size>
struct NSLiteral {
  // NOLINTNEXTLINE(modernize-avoid-c-arrays): a literal is one.
  constexpr NSLiteral(const char16_t (&text)[size]) { std::copy_n(text, size, units.begin()); }
  std::array<char16_t, size> units{};
};

/// Gives the string object of a literal, made at the first call and never destroyed. It is how the
/// name of a notification or the key of a dictionary becomes a constant:
///
///     const NSRef<NSString>& PageDidChange() { return NSConstantString<u"PageDidChange">(); }
template <NSLiteral literal>
[[nodiscard]] const NSRef<NSString>& NSConstantString() {
  static const NSNeverDestroyed<NSRef<NSString>> string(
      NSMake<NSString>(std::u16string_view(literal.units.data())));
  return *string;
}

/// The units of a string, none of nil.
inline std::u16string_view NSViewOf(const NSRef<NSString>& string) noexcept {
  return string ? string.get()->view() : std::u16string_view();
}

/// Whether the string has exactly these units; nil has not, not even for an empty text.
inline bool operator==(const NSRef<NSString>& string, std::u16string_view units) noexcept {
  return string && string.get()->view() == units;
}
