#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSError;
class NSString;
class NSURL;

/// Options of writing bytes; a set of bits.
enum NSDataWritingOptions : NSUInteger {
  /// Every write is atomic, with and without it.
  NSDataWritingAtomic = 1,
};

/// A sequence of bytes. Immutable.
class NS_EXPORT NSData : public NSObject {
 public:
  NSData() noexcept = default;
  explicit NSData(std::span<const std::byte> bytes) : _bytes(bytes.begin(), bytes.end()) {}
  /// Takes over the bytes.
  explicit NSData(std::vector<std::byte>&& bytes) noexcept : _bytes(std::move(bytes)) {}
  /// Copies the bytes of a narrow text, such as a file's contents.
  explicit NSData(std::string_view bytes) : NSData(std::as_bytes(std::span(bytes))) {}

  // Whole files. A nil path or URL raises `NSInvalidArgumentException`.

  /// Reads a regular file to its end. Nil, and the reason in `*error` unless that is null, for what
  /// cannot be read. Symbolic links are followed. There are no options.
  [[nodiscard]] static NSRef<NSData> dataWithContentsOfFile_options_error(
      const NSRef<NSString>& path, NSUInteger options, NSRef<NSError>* error);
  [[nodiscard]] static NSRef<NSData> dataWithContentsOfURL_options_error(const NSRef<NSURL>& url,
                                                                         NSUInteger options,
                                                                         NSRef<NSError>* error);
  /// Writes the bytes in the place of a regular file, or to a new one. False, and the reason in
  /// `*error`, when that fails; then the place is as it was before.
  ///
  /// It is atomic: the bytes go to a new file in a hidden folder beside the place and take the
  /// place when they are on the disk, with the permissions of the file before. Of a symbolic link
  /// what it refers to is replaced. Directories, devices and pipes are refused.
  bool writeToFile_options_error(const NSRef<NSString>& path, NSUInteger options,
                                 NSRef<NSError>* error) const;
  bool writeToURL_options_error(const NSRef<NSURL>& url, NSUInteger options,
                                NSRef<NSError>* error) const;

  [[nodiscard]] NSUInteger length() const noexcept { return _bytes.size(); }
  /// Lends the bytes.
  [[nodiscard]] std::span<const std::byte> bytes() const noexcept { return _bytes; }
  /// Lends the bytes as a narrow text.
  [[nodiscard]] std::string_view view() const noexcept {
    return {reinterpret_cast<const char*>(_bytes.data()), _bytes.size()};
  }

  [[nodiscard]] bool isEqualToData(const NSRef<NSData>& other) const noexcept;
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Gives "NSData of 12 bytes".
  [[nodiscard]] NSRef<NSString> description() const override;
  /// Publishes "length" besides what every object does.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  std::vector<std::byte> _bytes;
};
