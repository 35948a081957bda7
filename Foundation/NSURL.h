#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSArray;
class NSNumber;
class NSString;

/// A URL, or a reference without a scheme, in the generic syntax of RFC 3986. Immutable.
///
/// It is kept as it was written: nothing changes its letter case or resolves its ".". Parts come
/// without the signs that delimit them; a part that does not occur is nil, one that is empty is the
/// empty string. Percent sequences are decoded where it says so, what is not UTF-8 then as U+FFFD.
class NS_EXPORT NSURL : public NSObject {
 public:
  /// Nil for text that is not of this syntax, such as text with blanks, with characters outside
  /// ASCII or with a "%" that begins no percent sequence; also for nil.
  static NSRef<NSURL> URLWithString(const NSRef<NSString>& text);
  /// The file URL of a path, made absolute by the current directory if it is relative, with "/" at
  /// the end if it has one or is a directory on the disk. Nil for an empty path, for one with
  /// U+0000 or half of a surrogate pair, which no file has, and for a relative one when the current
  /// directory is gone. A nil path raises
  /// `NSInvalidArgumentException`.
  static NSRef<NSURL> fileURLWithPath(const NSRef<NSString>& path);
  /// The same without a look at the disk: the URL ends with "/" if it is a directory.
  static NSRef<NSURL> fileURLWithPath_isDirectory(const NSRef<NSString>& path, bool isDirectory);
  /// Of paths whose bytes need not be UTF-8.
  static NSRef<NSURL> fileURLWithPath(const std::filesystem::path& path);
  static NSRef<NSURL> fileURLWithPath_isDirectory(const std::filesystem::path& path,
                                                  bool isDirectory);
  /// `fileURLWithPath` of the path that has these components, as `pathComponents` gives them. Nil
  /// and an empty array give nil; what is no string is left out.
  static NSRef<NSURL> fileURLWithPathComponents(const NSRef<NSArray>& components);

  /// The text of the URL.
  NSRef<NSString> absoluteString() const noexcept;
  /// As it was written.
  NSRef<NSString> scheme() const;
  /// The part before "@" up to the first ":", and the one behind that; decoded.
  NSRef<NSString> user() const;
  NSRef<NSString> password() const;
  /// Decoded, of an IPv6 address without the brackets.
  NSRef<NSString> host() const;
  /// Nil also for one that is empty or does not fit 64 bits.
  NSRef<NSNumber> port() const;
  /// Whether there is no scheme, or "//" or "/" behind it; "mailto:someone" has no hierarchy.
  bool hasHierarchy() const noexcept;
  /// Decoded and without "/" at its end; nil only for a URL without hierarchy.
  NSRef<NSString> path() const;
  /// As they were written.
  NSRef<NSString> query() const;
  NSRef<NSString> fragment() const;

  /// The components of `path`: "/" and the names. Nil where the path is.
  NSRef<NSArray> pathComponents() const;
  /// Those of `path`; nil where it is.
  NSRef<NSString> lastPathComponent() const;
  NSRef<NSString> pathExtension() const;
  /// The URL with the component behind its path, and "/" behind that if it is a directory; query
  /// and fragment stay. "/" at the ends of the component do not count. Nil for a URL without
  /// hierarchy and for a component with half of a surrogate pair; a nil component raises
  /// `NSInvalidArgumentException`.
  NSRef<NSURL> URLByAppendingPathComponent_isDirectory(const NSRef<NSString>& component,
                                                       bool isDirectory) const;
  /// Whether the path ends with "/".
  bool hasDirectoryPath() const noexcept;

  /// Whether the scheme is "file", in any letter case.
  bool isFileURL() const noexcept;
  /// The path of a file URL, byte for byte; empty for all others.
  std::filesystem::path fileSystemPath() const;

  /// Whether the texts are the same.
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// `absoluteString`
  NSRef<NSString> description() const override;
  /// "absoluteString", "scheme", "host", "path", "query" and "fragment" besides what every object
  /// publishes.
  const NSPropertyTable& propertyTable() const override;
  /// The URL itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

  /// Only for the functions above.
  class Parts;
  NSURL(const NSRef<NSString>& text, const Parts& parts) noexcept;
  NSURL(const NSURL&) = delete;

 private:
  // A part of the text; one that does not occur begins at `missing`.
  struct Part {
    static constexpr std::uint32_t missing = UINT32_MAX;
    std::uint32_t start = missing;
    std::uint32_t end = missing;
    bool exists() const noexcept { return start != missing; }
  };

  std::u16string_view unitsOf(Part part) const noexcept;
  NSRef<NSString> written(Part part) const;
  NSRef<NSString> decoded(Part part) const;

  NSRef<NSString> _text;
  Part _scheme, _userInfo, _host, _port, _path, _query, _fragment;
};
