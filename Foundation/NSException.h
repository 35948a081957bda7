#pragma once

#include <stdexcept>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>

class NSString;

// Names of exceptions. Compare with `exception.name() == NSRangeException`.
inline constexpr std::u16string_view NSGenericException = u"NSGenericException";
inline constexpr std::u16string_view NSRangeException = u"NSRangeException";
inline constexpr std::u16string_view NSInvalidArgumentException = u"NSInvalidArgumentException";
inline constexpr std::u16string_view NSInternalInconsistencyException =
    u"NSInternalInconsistencyException";
inline constexpr std::u16string_view NSUndefinedKeyException = u"NSUnknownKeyException";
inline constexpr std::u16string_view NSInvalidArchiveOperationException =
    u"NSInvalidArchiveOperationException";
inline constexpr std::u16string_view NSInvalidUnarchiveOperationException =
    u"NSInvalidUnarchiveOperationException";

/// A programming error; ordinary outcomes are returned. It keeps copies of its name and reason;
/// `what` is "name: reason" in UTF-8.
class NS_EXPORT NSException : public std::runtime_error {
 public:
  NSException(const NSRef<NSString>& name, const NSRef<NSString>& reason);
  NSException(const NSException&) noexcept = default;
  NSException& operator=(const NSException&) noexcept = default;
  ~NSException() override;

  [[nodiscard]] NSRef<NSString> name() const noexcept;
  [[nodiscard]] NSRef<NSString> reason() const noexcept;

  /// Throws an exception of this name; the reason is UTF-8.
  [[noreturn]] static void raise(std::u16string_view name, std::string_view reason);

 private:
  NSRef<NSString> _name;
  NSRef<NSString> _reason;
};

/// Raises `NSRangeException`: "index 7 beyond bounds [0, 3) (in 'objectAtIndex:')".
[[noreturn]] NS_EXPORT void NSRaiseIndexOutOfBounds(const char* operation, NSUInteger index,
                                                    NSUInteger count);
/// Raises `NSRangeException`: "range {2, 5} beyond bounds [0, 3) (in 'substringWithRange:')".
[[noreturn]] NS_EXPORT void NSRaiseRangeOutOfBounds(const char* operation, NSRange range,
                                                    NSUInteger count);
/// Raises `NSInvalidArgumentException`: "anObject is nil (in 'addObject:')".
[[noreturn]] NS_EXPORT void NSRaiseNilArgument(const char* argument, const char* operation);

/// Raises `NSInvalidArgumentException`, as `NSRaiseNilArgument` does, when the argument is nil.
template <class T>
void NSCheckArgument(const char* operation, const char* name, const NSRef<T>& argument) {
  if (!argument) [[unlikely]] {
    NSRaiseNilArgument(name, operation);
  }
}
/// Raises `NSRangeException` unless the index is below the count.
inline void NSCheckIndex(const char* operation, NSUInteger index, NSUInteger count) {
  if (index >= count) [[unlikely]] {
    NSRaiseIndexOutOfBounds(operation, index, count);
  }
}
/// Raises `NSRangeException` unless the range lies within [0, count).
inline void NSCheckRange(const char* operation, NSRange range, NSUInteger count) {
  if (!NSRangeFits(range, count)) [[unlikely]] {
    NSRaiseRangeOutOfBounds(operation, range, count);
  }
}
