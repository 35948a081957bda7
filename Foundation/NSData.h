#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSString;

/// A sequence of bytes. Immutable.
class NS_EXPORT NSData : public NSObject {
 public:
  NSData() noexcept = default;
  explicit NSData(std::span<const std::byte> bytes) : _bytes(bytes.begin(), bytes.end()) {}
  /// Takes the bytes over.
  explicit NSData(std::vector<std::byte>&& bytes) noexcept : _bytes(std::move(bytes)) {}
  /// The bytes of a narrow text, such as a file's contents.
  explicit NSData(std::string_view bytes) : NSData(std::as_bytes(std::span(bytes))) {}

  NSUInteger length() const noexcept { return _bytes.size(); }
  /// The bytes in place.
  std::span<const std::byte> bytes() const noexcept { return _bytes; }
  /// The same as a narrow text.
  std::string_view view() const noexcept {
    return {reinterpret_cast<const char*>(_bytes.data()), _bytes.size()};
  }

  bool isEqualToData(const NSRef<NSData>& other) const noexcept;
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "NSData of 12 bytes"
  NSRef<NSString> description() const override;
  /// "length" besides what every object publishes.
  const NSPropertyTable& propertyTable() const override;
  /// The data itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  std::vector<std::byte> _bytes;
};
