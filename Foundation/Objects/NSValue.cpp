#include "Foundation/NSValue.h"

#include <sstream>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/ContentHash.h>

namespace {

NSUInteger hashOf(double value) { return std::hash<double>{}(value); }
NSUInteger hashOf(NSPoint point) { return NSHashWith(hashOf(point.x), hashOf(point.y)); }
NSUInteger hashOf(NSSize size) { return NSHashWith(hashOf(size.width), hashOf(size.height)); }
NSUInteger hashOf(NSRect rect) { return NSHashWith(hashOf(rect.origin), hashOf(rect.size)); }
NSUInteger hashOf(NSRange range) { return NSHashWith(range.location, range.length); }

}  // namespace

template <class T>
T NSValue::checked(const char* operation) const {
  if (const T* value = get<T>()) return *value;
  NSException::raise(
      NSInvalidArgumentException,
      "the value " + description()->utf8() + " is of another kind (in '" + operation + "')");
}

NSPoint NSValue::pointValue() const { return checked<NSPoint>("pointValue"); }
NSSize NSValue::sizeValue() const { return checked<NSSize>("sizeValue"); }
NSRect NSValue::rectValue() const { return checked<NSRect>("rectValue"); }
NSRange NSValue::rangeValue() const { return checked<NSRange>("rangeValue"); }

bool NSValue::isEqual(const NSRef<NSObject>& other) const {
  if (other.get() == this) return true;
  const auto* const value = dynamic_cast<const NSValue*>(other.get());
  return value != nullptr && value->_value == _value;
}

NSUInteger NSValue::hash() const {
  return std::visit([](auto value) { return hashOf(value); }, _value);
}

NSRef<NSString> NSValue::description() const {
  std::ostringstream text;
  std::visit([&](auto value) { text << value; }, _value);
  return NSMake<NSString>(text.view());
}
