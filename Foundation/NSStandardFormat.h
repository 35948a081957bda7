#pragma once

#include <locale>
#include <sstream>
#include <string_view>
#include <utility>
#include <version>

#include <Foundation/NSGeometry.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSRef.h>

#ifdef __cpp_lib_format
#include <format>

/// Formats what `operator<<` prints, with the fill, alignment, width and precision of strings.
struct NSPrintedFormatter : std::formatter<std::string_view> {
  template <class Value, class Context>
  auto format(const Value& value, Context& context) const {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << value;
    return std::formatter<std::string_view>::format(std::move(out).str(), context);
  }
};

/// Lets `std::format` write descriptions of objects as UTF-8, "(null)" for nil, where the
/// compiler's library has it: `std::format("{:>20}", title)`.
template <class T>
struct std::formatter<NSRef<T>> : NSPrintedFormatter {};
template <>
struct std::formatter<NSPoint> : NSPrintedFormatter {};
template <>
struct std::formatter<NSSize> : NSPrintedFormatter {};
template <>
struct std::formatter<NSRect> : NSPrintedFormatter {};
template <>
struct std::formatter<NSRange> : NSPrintedFormatter {};
#endif
