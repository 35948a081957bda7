#include "Foundation/NSException.h"

#include <sstream>

#include <Foundation/NSClass.h>
#include <Foundation/NSString.h>

namespace {

std::string textOf(const NSRef<NSString>& string) { return string ? string->utf8() : "(null)"; }

}  // namespace

NSException::NSException(const NSRef<NSString>& name, const NSRef<NSString>& reason)
    : runtime_error(textOf(name) + ": " + textOf(reason)),
      _name(name ? name->copy() : nullptr),
      _reason(reason ? reason->copy() : nullptr) {}

NSException::~NSException() = default;

NSRef<NSString> NSException::name() const noexcept { return _name; }
NSRef<NSString> NSException::reason() const noexcept { return _reason; }

void NSException::raise(std::u16string_view name, std::string_view reason) {
  throw NSException(NSMake<NSString>(name), NSMake<NSString>(reason));
}

void NSRaiseIndexOutOfBounds(const char* operation, NSUInteger index, NSUInteger count) {
  std::ostringstream reason;
  reason << "index " << index << " beyond bounds [0, " << count << ") (in '" << operation << "')";
  NSException::raise(NSRangeException, reason.view());
}

void NSRaiseRangeOutOfBounds(const char* operation, NSRange range, NSUInteger count) {
  std::ostringstream reason;
  reason << "range " << range << " beyond bounds [0, " << count << ") (in '" << operation << "')";
  NSException::raise(NSRangeException, reason.view());
}

void NSRaiseNilArgument(const char* argument, const char* operation) {
  NSException::raise(NSInvalidArgumentException,
                     std::string(argument) + " is nil (in '" + operation + "')");
}

void NSRaiseNilDereference(const std::type_info& type) {
  NSException::raise(NSInvalidArgumentException,
                     NSClass(type).name()->utf8() + " is nil where an object is needed");
}
