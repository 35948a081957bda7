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
  /// Makes the URL of a text. Nil for nil and for text that is not of this syntax, such as text
  /// with blanks, with characters outside ASCII or with a "%" that begins no percent sequence.
  [[nodiscard]] static NSRef<NSURL> URLWithString(const NSRef<NSString>& text);
  /// Makes the file URL of a path. A relative path is made absolute by the current directory. The
  /// URL ends with "/" if the path does or is a directory on the disk. Nil for an empty path, for
  /// one with U+0000 or half of a surrogate pair, which no file has, and for a relative one when
  /// the current directory is gone. A nil path raises `NSInvalidArgumentException`.
  [[nodiscard]] static NSRef<NSURL> fileURLWithPath(const NSRef<NSString>& path);
  /// Makes the file URL of a path, with "/" at the end of a directory; asks no disk.
  [[nodiscard]] static NSRef<NSURL> fileURLWithPath_isDirectory(const NSRef<NSString>& path,
                                                                bool isDirectory);
  /// Makes the file URL of a path whose bytes need not be UTF-8.
  [[nodiscard]] static NSRef<NSURL> fileURLWithPath(const std::filesystem::path& path);
  /// Makes it without a look at the disk.
  [[nodiscard]] static NSRef<NSURL> fileURLWithPath_isDirectory(const std::filesystem::path& path,
                                                                bool isDirectory);
  /// Makes the file URL of the path that has these components, as `pathComponents` gives them. Nil
  /// for nil and an empty array; what is no string is left out.
  [[nodiscard]] static NSRef<NSURL> fileURLWithPathComponents(const NSRef<NSArray>& components);

  /// Gives the text of the URL.
  [[nodiscard]] NSRef<NSString> absoluteString() const noexcept;
  /// Gives the scheme as it was written.
  [[nodiscard]] NSRef<NSString> scheme() const;
  /// Gives what stands before "@" up to the first ":", decoded.
  [[nodiscard]] NSRef<NSString> user() const;
  /// Gives what stands between that ":" and "@", decoded.
  [[nodiscard]] NSRef<NSString> password() const;
  /// Gives the host, decoded; an IPv6 address without its brackets.
  [[nodiscard]] NSRef<NSString> host() const;
  /// Gives the port; nil also for one that is empty or does not fit 64 bits.
  [[nodiscard]] NSRef<NSNumber> port() const;
  /// Whether there is no scheme, or "//" or "/" follows it; "mailto:someone" has no hierarchy.
  [[nodiscard]] bool hasHierarchy() const noexcept;
  /// Gives the path, decoded and without "/" at its end; nil only for a URL without hierarchy.
  [[nodiscard]] NSRef<NSString> path() const;
  /// Gives the query as it was written.
  [[nodiscard]] NSRef<NSString> query() const;
  /// Gives the fragment as it was written.
  [[nodiscard]] NSRef<NSString> fragment() const;

  /// Gives the components of `path`: "/" and the names. Nil where the path is.
  [[nodiscard]] NSRef<NSArray> pathComponents() const;
  /// Gives the last component of `path`; nil where it is.
  [[nodiscard]] NSRef<NSString> lastPathComponent() const;
  /// Gives the extension of `path`; nil where it is.
  [[nodiscard]] NSRef<NSString> pathExtension() const;
  /// Appends the component to the path, and "/" if it is a directory; query and fragment stay. "/"
  /// at the ends of the component do not count. Nil for a URL without hierarchy and for a component
  /// with half of a surrogate pair; a nil component raises `NSInvalidArgumentException`.
  [[nodiscard]] NSRef<NSURL> URLByAppendingPathComponent_isDirectory(
      const NSRef<NSString>& component, bool isDirectory) const;
  /// Whether the path ends with "/".
  [[nodiscard]] bool hasDirectoryPath() const noexcept;

  /// Whether the scheme is "file", in any letter case.
  [[nodiscard]] bool isFileURL() const noexcept;
  /// Gives the path of a file URL, byte for byte; empty for all others. That of a directory ends
  /// with "/" if the URL does: it has no `filename()` then.
  [[nodiscard]] std::filesystem::path fileSystemPath() const;

  /// Whether the texts are the same.
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `absoluteString`
  [[nodiscard]] NSRef<NSString> description() const override;
  /// "absoluteString", "scheme", "host", "path", "query" and "fragment" besides what every object
  /// publishes.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

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
    [[nodiscard]] bool exists() const noexcept { return start != missing; }
  };

  [[nodiscard]] std::u16string_view unitsOf(Part part) const noexcept;
  [[nodiscard]] NSRef<NSString> written(Part part) const;
  [[nodiscard]] NSRef<NSString> decoded(Part part) const;

  NSRef<NSString> _text;
  Part _scheme, _userInfo, _host, _port, _path, _query, _fragment;
};
