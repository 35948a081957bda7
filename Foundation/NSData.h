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
  /// Takes over the bytes.
  explicit NSData(std::vector<std::byte>&& bytes) noexcept : _bytes(std::move(bytes)) {}
  /// Copies the bytes of a narrow text, such as a file's contents.
  explicit NSData(std::string_view bytes) : NSData(std::as_bytes(std::span(bytes))) {}

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
