#include "ZKFoundation/Classes/ZKLocaleEntity/ZKLocaleEntity.h"

#include <utility>

#include <Foundation/NSKeyValueCoding.h>

ZKLocaleEntity::ZKLocaleEntity(const NSRef<NSLocale>& locale) : _locale(locale) {}

NSRef<NSLocale> ZKLocaleEntity::locale() const {
  const std::lock_guard lock(_mutex);
  return _locale;
}

void ZKLocaleEntity::setLocale(const NSRef<NSLocale>& locale) {
  // The former locale goes when the lock has gone.
  NSRef<NSLocale> exchanged = locale;
  const std::lock_guard lock(_mutex);
  std::swap(_locale, exchanged);
}

// What is stored counts, whatever a subclass makes of `locale`.
NSRef<NSString> ZKLocaleEntity::localeIdentifier() const {
  const auto locale = ZKLocaleEntity::locale();
  return locale ? locale->localeIdentifier() : nullptr;
}

NSRef<NSString> ZKLocaleEntity::languageIdentifier() const {
  return NSLocale::canonicalLanguageIdentifierFromString(localeIdentifier());
}

NSRef<NSString> ZKLocaleEntity::displayName() const {
  return NSLocale::currentLocale()->displayNameForKey_value(NSLocaleIdentifier(),
                                                            localeIdentifier());
}

NSRef<NSString> ZKLocaleEntity::languageDisplayName() const {
  return NSLocale::currentLocale()->displayNameForKey_value(NSLocaleIdentifier(),
                                                            languageIdentifier());
}

NSRef<NSString> ZKLocaleEntity::description() const {
  return NSString::stringWithFormat(u"<ZKLocaleEntity %@>"_ns, localeIdentifier());
}

const NSPropertyTable& ZKLocaleEntity::propertyTable() const {
  static const NSPropertyTable table(
      {{u"locale", &ZKLocaleEntity::locale},
       {u"localeIdentifier", &ZKLocaleEntity::localeIdentifier},
       {u"languageIdentifier", &ZKLocaleEntity::languageIdentifier},
       {u"displayName", &ZKLocaleEntity::displayName},
       {u"languageDisplayName", &ZKLocaleEntity::languageDisplayName}},
      NSObject::propertyTable());
  return table;
}
