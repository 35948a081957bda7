#pragma once

#include <algorithm>
#include <array>
#include <concepts>
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
#include <Foundation/NSStringEncoding.h>
#include <Foundation/NSUnicode.h>
#include <Foundation/NSUnitBuffer.h>

class NSArray;
class NSCharacterSet;
class NSData;
class NSDictionary;
class NSError;
class NSLocale;
class NSMutableString;
class NSURL;

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
  /// Decodes UTF-8, of which ASCII is a part.
  explicit NSString(std::string_view utf8) : _text(NSUnitsFromUTF8(utf8)) {}
  /// Takes the units over.
  explicit NSString(NSUnitBuffer&& units) : _text(std::move(units)) {}

  [[nodiscard]] static NSRef<NSString> makeCompact(std::u16string_view units) {
    auto result = makeWithRoom<NSString>(units.size());
    result.get()->_text.append(units);
    return result;
  }
  [[nodiscard]] static NSRef<NSString> makeCompact(std::string_view utf8);
  [[nodiscard]] static NSRef<NSString> makeCompact(NSUnitBuffer&& units);

  /// Puts the arguments in the places of the format's conversions, as printf takes them: "%@" is
  /// the description of an object, "(null)" for nil; "%d %i %u %x %X %o" are integers, of any size
  /// ("%ld" is "%d"), "%c %C" the character of that number; "%f %e %g %a" and their capitals
  /// floating-point numbers, always with a point; "%s" is UTF-8 text, "%p" an address, "%%" the
  /// sign itself. "%2$@" takes the second argument. Flags, widths and precisions are printf's, up
  /// to 1,000; "*" is not known. Those of text count units: "%.3@" and "%.3s" write at most three,
  /// and never half of a surrogate pair.
  ///
  /// A format may come from a translator: a conversion that does not fit its argument writes it as
  /// "%@" does, one without an argument writes "(null)", an unknown one stays as it is. A nil
  /// format raises `NSInvalidArgumentException`.
  template <class... Arguments>
  [[nodiscard]] static NSRef<NSString> stringWithFormat(const NSRef<NSString>& format,
                                                        const Arguments&... arguments) {
    constexpr bool areArguments =
        (std::constructible_from<NSFormatArgument, const Arguments&> && ...);
    static_assert(areArguments,
                  "an argument of a format is neither an object (an NSRef), a number nor a text");
    if constexpr (areArguments) {
      const std::array<NSFormatArgument, sizeof...(arguments)> list{NSFormatArgument(arguments)...};
      return stringWithFormat_arguments(format, list);
    }
  }
  [[nodiscard]] static NSRef<NSString> stringWithFormat_arguments(
      const NSRef<NSString>& format, std::span<const NSFormatArgument> arguments);

  // Texts of whole files. Nil or false, with the reason in `*error` unless that is null, when it
  // fails. A nil path, URL or data, and an unknown encoding, raise `NSInvalidArgumentException`.

  /// Reads a text file in the encoding that its byte-order mark tells: UTF-8, UTF-16 or UTF-32 in
  /// either byte order; UTF-8 without a mark, which is no part of the text. Stores the encoding in
  /// `*used` unless that is null. Nothing is replaced: bytes that are no text are
  /// `NSFileReadInapplicableStringEncodingError`, "Not UTF-8 at byte 17", counted from 0 with the
  /// mark. Otherwise it reads as `NSData` does.
  [[nodiscard]] static NSRef<NSString> stringWithContentsOfFile_usedEncoding_error(
      const NSRef<NSString>& path, NSStringEncoding* used, NSRef<NSError>* error);
  [[nodiscard]] static NSRef<NSString> stringWithContentsOfURL_usedEncoding_error(
      const NSRef<NSURL>& url, NSStringEncoding* used, NSRef<NSError>* error);
  /// Reads a text file in this encoding; its mark, if there, is no part of the text.
  [[nodiscard]] static NSRef<NSString> stringWithContentsOfFile_encoding_error(
      const NSRef<NSString>& path, NSStringEncoding encoding, NSRef<NSError>* error);
  [[nodiscard]] static NSRef<NSString> stringWithContentsOfURL_encoding_error(
      const NSRef<NSURL>& url, NSStringEncoding encoding, NSRef<NSError>* error);
  /// Reads the text of a file that is in memory, as `stringWithContentsOfFile_usedEncoding_error`.
  [[nodiscard]] static NSRef<NSString> stringWithData_usedEncoding_error(const NSRef<NSData>& data,
                                                                         NSStringEncoding* used,
                                                                         NSRef<NSError>* error);

  /// Writes the text to a file, as `NSEncodedText` gives the bytes and `NSData` writes them: always
  /// atomically. A text with half of a surrogate pair, which no file keeps, is
  /// `NSFileWriteInapplicableStringEncodingError`.
  bool writeToFile_atomically_encoding_error(const NSRef<NSString>& path, bool atomically,
                                             NSStringEncoding encoding,
                                             NSRef<NSError>* error) const;
  bool writeToURL_atomically_encoding_error(const NSRef<NSURL>& url, bool atomically,
                                            NSStringEncoding encoding, NSRef<NSError>* error) const;

  /// Allocates a block: a string with room behind it is larger than its class.
  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void* string) noexcept { ::operator delete(string); }

  [[nodiscard]] std::u16string_view view() const noexcept { return _text.view(); }
  [[nodiscard]] NSUInteger length() const noexcept { return _text.size(); }
  [[nodiscard]] unichar characterAtIndex(NSUInteger index) const;
  /// Gives the unit at the index, as `characterAtIndex` does.
  [[nodiscard]] unichar operator[](NSUInteger index) const { return characterAtIndex(index); }

  [[nodiscard]] std::string utf8() const { return NSUTF8FromUnits(view()); }
  explicit operator std::string() const { return utf8(); }
  explicit operator std::u16string() const { return std::u16string(view()); }
  operator std::u16string_view() const noexcept { return view(); }

  /// Whether the other string has the same units; false for nil.
  [[nodiscard]] bool isEqualToString(const NSRef<NSString>& other) const noexcept;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives the text itself.
  [[nodiscard]] NSRef<NSString> description() const override;

  /// Compares the strings as `NSCompareUnits` does; without options by the units of their
  /// canonical decompositions, with letter case. Nil raises `NSInvalidArgumentException`.
  [[nodiscard]] NSComparisonResult compare(const NSRef<NSString>& other) const {
    return compare_options(other, 0);
  }
  [[nodiscard]] NSComparisonResult caseInsensitiveCompare(const NSRef<NSString>& other) const {
    return compare_options(other, NSCaseInsensitiveSearch);
  }
  [[nodiscard]] NSComparisonResult compare_options(const NSRef<NSString>& other,
                                                   NSOptions<NSStringCompareOptions> options) const;

  /// Whether the string begins, or ends, with exactly these units. True for "", false for nil.
  [[nodiscard]] bool hasPrefix(const NSRef<NSString>& prefix) const noexcept;
  [[nodiscard]] bool hasSuffix(const NSRef<NSString>& suffix) const noexcept;

  /// Finds the first occurrence in the range, or gives `NSNotFoundRange`; nil and empty strings are
  /// not found. Options are the bits of `NSStringCompareOptions`. Without `NSLiteralSearch`
  /// canonically equivalent text matches ("é" finds "e" followed by U+0301, a longer match), and no
  /// match divides a letter and its marks ("e" does not find it).
  [[nodiscard]] NSRange rangeOfString_options_range(const NSRef<NSString>& string,
                                                    NSOptions<NSStringCompareOptions> options,
                                                    NSRange range) const;
  [[nodiscard]] NSRange rangeOfString_options(const NSRef<NSString>& string,
                                              NSOptions<NSStringCompareOptions> options) const;
  [[nodiscard]] NSRange rangeOfString(const NSRef<NSString>& string) const {
    return rangeOfString_options(string, 0);
  }

  /// Finds the first member of the set in the range (with `NSBackwardsSearch` the last, with
  /// `NSAnchoredSearch` only one at that end), or gives `NSNotFoundRange`. A surrogate pair is one
  /// member, of two units. A nil set has no members.
  [[nodiscard]] NSRange rangeOfCharacterFromSet_options_range(
      const NSRef<NSCharacterSet>& set, NSOptions<NSStringCompareOptions> options,
      NSRange range) const;
  [[nodiscard]] NSRange rangeOfCharacterFromSet_options(
      const NSRef<NSCharacterSet>& set, NSOptions<NSStringCompareOptions> options) const {
    return rangeOfCharacterFromSet_options_range(set, options, {0, length()});
  }
  [[nodiscard]] NSRange rangeOfCharacterFromSet(const NSRef<NSCharacterSet>& set) const {
    return rangeOfCharacterFromSet_options(set, 0);
  }

  [[nodiscard]] NSRef<NSString> substringFromIndex(NSUInteger index) const;
  [[nodiscard]] NSRef<NSString> substringToIndex(NSUInteger index) const;
  [[nodiscard]] NSRef<NSString> substringWithRange(NSRange range) const;
  /// Gives the string followed by the other one; nil appends nothing.
  [[nodiscard]] NSRef<NSString> stringByAppendingString(const NSRef<NSString>& string) const;
  /// Gives the string without the members of the set at its beginning and end; nil has no members.
  [[nodiscard]] NSRef<NSString> stringByTrimmingCharactersInSet(
      const NSRef<NSCharacterSet>& set) const;
  /// Writes the first letter of each word in title case and the others in lower case, by the rules
  /// of the current locale (`NSLocale::currentLocale`). "they're" is one word, "jean-luc" two.
  [[nodiscard]] NSRef<NSString> localizedCapitalizedString() const;
  /// Writes the letters in upper or lower case by the rules of no language: "Straße" becomes
  /// "STRASSE", "ΤΕΛΟΣ" "τελος" with the final sigma of words.
  [[nodiscard]] NSRef<NSString> uppercaseString() const;
  [[nodiscard]] NSRef<NSString> lowercaseString() const;
  /// Writes them by the rules of the locale's language, which matter for Turkish "i" and some more;
  /// nil has none.
  [[nodiscard]] NSRef<NSString> uppercaseStringWithLocale(const NSRef<NSLocale>& locale) const;
  [[nodiscard]] NSRef<NSString> lowercaseStringWithLocale(const NSRef<NSLocale>& locale) const;
  /// Writes them by the rules of the current locale.
  [[nodiscard]] NSRef<NSString> localizedUppercaseString() const;
  [[nodiscard]] NSRef<NSString> localizedLowercaseString() const;

  /// Gives the string with all occurrences of the target in the range replaced, from left to right,
  /// as the options of `rangeOfString_options_range` find them; with `NSAnchoredSearch` one at
  /// most. A nil replacement is the empty string; a nil or empty target has no occurrences.
  [[nodiscard]] NSRef<NSString> stringByReplacingOccurrencesOfString_withString_options_range(
      const NSRef<NSString>& target, const NSRef<NSString>& replacement,
      NSOptions<NSStringCompareOptions> options, NSRange range) const;
  [[nodiscard]] NSRef<NSString> stringByReplacingOccurrencesOfString_withString(
      const NSRef<NSString>& target, const NSRef<NSString>& replacement) const {
    return stringByReplacingOccurrencesOfString_withString_options_range(target, replacement, 0,
                                                                         {0, length()});
  }

  /// Gives the whole lines that the range touches, with their ends: "\n" to "\r", "\r\n", U+0085,
  /// U+2028, U+2029. An empty range touches the line that it stands in.
  [[nodiscard]] NSRange lineRangeForRange(NSRange range) const;
  /// Gives the whole paragraphs, which end with "\n", "\r", "\r\n" or U+2029.
  [[nodiscard]] NSRange paragraphRangeForRange(NSRange range) const;
  /// Gives the whole sentences, with the spaces after them, by Unicode's rules.
  [[nodiscard]] NSRange sentenceRangeForRange(NSRange range) const;
  /// Gives what users take for one character (an extended grapheme cluster: a letter with its
  /// marks, a family of emoji, "\r\n"), around the unit at the index.
  [[nodiscard]] NSRange rangeOfComposedCharacterSequenceAtIndex(NSUInteger index) const;
  /// Gives all such characters that the range touches; an empty range moves to the start of the one
  /// that it divides.
  [[nodiscard]] NSRange rangeOfComposedCharacterSequencesForRange(NSRange range) const;

  /// Gives the pieces between the occurrences of the separator, from left to right, empty ones
  /// included. A string without the separator, or with a nil or empty one, is its only piece.
  [[nodiscard]] NSRef<NSArray> componentsSeparatedByString(const NSRef<NSString>& separator) const;

  /// Reads the entries of a table of localized strings, whose text this is: `"key" = "value";` with
  /// comments as in C++. The escapes are `\a`, `\b`, `\f`, `\n`, `\r`, `\t`, `\v`, up to three
  /// octal digits, and `\Uxxxx` or `\uxxxx` for a unit; whatever else follows a `\`, the "x" of
  /// `\x41` too, stands for itself. Of a table with faults it gives the entries that can be read,
  /// and logs one line that names the first fault.
  [[nodiscard]] NSRef<NSDictionary> propertyListFromStringsFileFormat() const;

  // Paths: components between "/"; a name's extension is what follows its last ".". Only
  // `stringByStandardizingPath` looks at the disk.

  /// Whether it begins with "/" or "~".
  [[nodiscard]] bool isAbsolutePath() const noexcept;
  /// Gives "/", if it begins so, the names, and "/" for one at the end: "/a//b/" gives /, a, b, /.
  [[nodiscard]] NSRef<NSArray> pathComponents() const;
  /// Gives the last name; "/" for the root, "" for "".
  [[nodiscard]] NSRef<NSString> lastPathComponent() const;
  /// Removes the last name: "/a/b/" gives "/a", "/a" gives "/", "a" gives "".
  [[nodiscard]] NSRef<NSString> stringByDeletingLastPathComponent() const;
  /// Appends the name with one "/" between; nil appends nothing.
  [[nodiscard]] NSRef<NSString> stringByAppendingPathComponent(const NSRef<NSString>& name) const;
  /// Gives the last name's extension; "" where there is none, such as in ".profile" and "a.".
  [[nodiscard]] NSRef<NSString> pathExtension() const;
  /// Removes the extension, and "/" at the end: "a.b/" gives "a".
  [[nodiscard]] NSRef<NSString> stringByDeletingPathExtension() const;
  /// Appends an extension: "/a/" and "b" give "/a.b". "/", "" and no extension change nothing.
  [[nodiscard]] NSRef<NSString> stringByAppendingPathExtension(
      const NSRef<NSString>& extension) const;
  /// Replaces "~" or "~user" at the beginning by the home directory; unknown users stay.
  [[nodiscard]] NSRef<NSString> stringByExpandingTildeInPath() const;
  /// Gives the path with the tilde expanded and without empty names, "." and "/" at the end. Of an
  /// absolute path ".." goes to the parent, the real one where the name before is a symbolic link;
  /// of a relative one it stays. "./" stays in front of a name that begins with "~".
  [[nodiscard]] NSRef<NSString> stringByStandardizingPath() const;

  /// Replaces percent sequences by their text; nil when one is broken or the text is not UTF-8.
  [[nodiscard]] NSRef<NSString> stringByRemovingPercentEncoding() const;
  /// Replaces every character that is not both ASCII and a member of the set by percent sequences
  /// of its UTF-8. Nil for a text with half of a surrogate pair; a nil set has no members.
  [[nodiscard]] NSRef<NSString> stringByAddingPercentEncodingWithAllowedCharacters(
      const NSRef<NSCharacterSet>& allowedCharacters) const;

  /// Publishes "length" besides what every object does.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

  /// Gives the string itself while it is immutable.
  [[nodiscard]] NSRef<NSString> copy() const { return copyWithZone(nullptr).as<NSString>(); }
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }
  [[nodiscard]] NSRef<NSMutableString> mutableCopy() const;
  [[nodiscard]] NSRef<NSObject> mutableCopyWithZone(NSZone* zone) const override;

  /// Joins two texts, of which one at least is a string; nil is the empty text.
  [[nodiscard]] friend NSRef<NSString> operator+(const NSRef<NSString>& a,
                                                 const NSRef<NSString>& b) {
    return joined(unitsOf(a), unitsOf(b));
  }
  [[nodiscard]] friend NSRef<NSString> operator+(const NSRef<NSString>& a, std::u16string_view b) {
    return joined(unitsOf(a), b);
  }
  [[nodiscard]] friend NSRef<NSString> operator+(std::u16string_view a, const NSRef<NSString>& b) {
    return joined(a, unitsOf(b));
  }

 protected:
  explicit NSString(std::span<char16_t> room) noexcept : _text(room) {}
  /// Makes an empty string with room for so many units in one block.
  template <class String>
  [[nodiscard]] static NSRef<String> makeWithRoom(std::size_t units) {
    static_assert(sizeof(String) == sizeof(NSString));
    void* const block = NSString::operator new(sizeof(String) + units * sizeof(char16_t));
    auto* const room = reinterpret_cast<char16_t*>(static_cast<String*>(block) + 1);
    return NSRef<String>::adopt(::new (block) String(std::span(room, units)));
  }
  [[nodiscard]] NSUnitBuffer& text() noexcept { return _text; }

 private:
  static std::u16string_view unitsOf(const NSRef<NSString>& string) noexcept {
    return string ? string.get()->view() : std::u16string_view();
  }
  static NSRef<NSString> joined(std::u16string_view a, std::u16string_view b);

  NSUnitBuffer _text;
};

/// A string that may be changed. Belongs to one thread at a time. A change that fails, for want of
/// memory or because a range does not fit, leaves the string as it was.
class NS_EXPORT NSMutableString : public NSString {
 public:
  using NSString::NSString;

  /// Makes an empty string that takes up to so many units without another allocation.
  [[nodiscard]] static NSRef<NSMutableString> stringWithCapacity(NSUInteger units);
  [[nodiscard]] static NSRef<NSMutableString> makeCompact() { return stringWithCapacity(24); }
  [[nodiscard]] static NSRef<NSMutableString> makeCompact(std::u16string_view units);
  [[nodiscard]] static NSRef<NSMutableString> makeCompact(std::string_view utf8);

  /// Appends a string; nil appends nothing.
  void appendString(const NSRef<NSString>& string);
  void appendUnits(std::u16string_view units) { text().append(units); }
  /// Replaces the whole text; nil empties the string.
  void setString(const NSRef<NSString>& string);
  void insertString_atIndex(const NSRef<NSString>& string, NSUInteger index);
  void deleteCharactersInRange(NSRange range);
  /// Replaces the units of the range; a nil string counts as the empty one.
  void replaceCharactersInRange_withString(NSRange range, const NSRef<NSString>& string);
  /// Replaces as `stringByReplacingOccurrencesOfString_withString_options_range` does, and gives
  /// the number of occurrences.
  NSUInteger replaceOccurrencesOfString_withString_options_range(
      const NSRef<NSString>& target, const NSRef<NSString>& replacement,
      NSOptions<NSStringCompareOptions> options, NSRange range);
  /// Makes room for a text of so many units altogether.
  void reserve(NSUInteger units) { text().reserve(units); }
  /// Gives the units themselves, for algorithms that edit in place.
  [[nodiscard]] NSUnitBuffer& units() noexcept { return text(); }

  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* zone) const override;
};

/// Makes a string: `u"…"_ns`, and `"…"_ns` of UTF-8 text.
NS_EXPORT NSRef<NSString> operator""_ns(const char16_t* units, std::size_t length);
NS_EXPORT NSRef<NSString> operator""_ns(const char* utf8, std::size_t length);

/// Takes a literal as a template argument.
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
      NSMake<NSString>(std::u16string_view(literal.units.data(), literal.units.size() - 1)));
  return *string;
}

/// Gives the units of a string; nil has none.
[[nodiscard]] inline std::u16string_view NSViewOf(const NSRef<NSString>& string) noexcept {
  return string ? string.get()->view() : std::u16string_view();
}

/// Whether the string is exactly this text: UTF-16 units, UTF-8 (as `NSMake` decodes it) or UTF-32.
/// Nil never is, not even an empty text.
inline bool operator==(const NSRef<NSString>& string, std::u16string_view text) noexcept {
  return string && string.get()->view() == text;
}
NS_EXPORT bool operator==(const NSRef<NSString>& string, std::string_view text);
NS_EXPORT bool operator==(const NSRef<NSString>& string, std::u8string_view text);
NS_EXPORT bool operator==(const NSRef<NSString>& string, std::u32string_view text) noexcept;
NS_EXPORT bool operator==(const NSRef<NSString>& string, std::wstring_view text) noexcept;
