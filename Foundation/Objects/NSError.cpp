#include "Foundation/NSError.h"

#include <system_error>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSString.h>

const NSRef<NSString>& NSPOSIXErrorDomain() { return NSConstantString<u"NSPOSIXErrorDomain">(); }

const NSRef<NSString>& NSCocoaErrorDomain() { return NSConstantString<u"NSCocoaErrorDomain">(); }

const NSRef<NSString>& NSLocalizedDescriptionKey() {
  return NSConstantString<u"NSLocalizedDescription">();
}

const NSRef<NSString>& NSUnderlyingErrorKey() { return NSConstantString<u"NSUnderlyingError">(); }

const NSRef<NSString>& NSFilePathErrorKey() { return NSConstantString<u"NSFilePath">(); }

NSError::NSError(const NSRef<NSString>& domain, NSInteger code, const NSRef<NSDictionary>& userInfo)
    : _code(code), _userInfo(userInfo ? userInfo->copy() : NSMake<NSDictionary>()) {
  if (!domain) NSRaiseNilArgument("domain", "initWithDomain:code:userInfo:");
  _domain = domain->copy();
}

NSRef<NSError> NSError::errorWithDomain_code_description(const NSRef<NSString>& domain,
                                                         NSInteger code,
                                                         const NSRef<NSString>& description) {
  const auto info = NSMake<NSMutableDictionary>();
  if (description) info->setObject_forKey(description, NSLocalizedDescriptionKey());
  return NSMake<NSError>(domain, code, info);
}

NSRef<NSString> NSError::localizedDescription() const {
  if (auto text = _userInfo->objectForKey(NSLocalizedDescriptionKey()).as<NSString>()) return text;
  if (const auto error = _userInfo->objectForKey(NSUnderlyingErrorKey()).as<NSError>()) {
    return error->localizedDescription();
  }
  const auto number = static_cast<int>(_code);
  if (_domain == NSPOSIXErrorDomain() && number == _code) {
    return NSMake<NSString>(std::system_category().message(number));
  }
  return NSString::stringWithFormat(u"%@ %ld"_ns, _domain, _code);
}

bool NSError::isEqual(const NSRef<NSObject>& other) const {
  const auto* const error = other.cast<NSError>();
  return error != nullptr && _code == error->_code && _domain->isEqualToString(error->_domain) &&
         _userInfo->isEqualToDictionary(error->_userInfo);
}

NSUInteger NSError::hash() const { return _domain->hash() + static_cast<NSUInteger>(_code); }

NSRef<NSString> NSError::description() const {
  const auto path = _userInfo->objectForKey(NSFilePathErrorKey());
  return NSString::stringWithFormat(path ? u"%@ %ld: %@ (%@)"_ns : u"%@ %ld: %@"_ns, _domain, _code,
                                    localizedDescription(), path);
}

const NSPropertyTable& NSError::propertyTable() const {
  static const NSPropertyTable table({{u"domain", &NSError::domain},
                                      {u"code", &NSError::code},
                                      {u"userInfo", &NSError::userInfo},
                                      {u"localizedDescription", &NSError::localizedDescription}},
                                     NSObject::propertyTable());
  return table;
}
