#include "Foundation/NSKeyValueCoding.h"

#include <atomic>

#include <Foundation/NSBundle.h>
#include <Foundation/NSException.h>

namespace {

std::atomic<NSUndefinedKeyHandler> undefinedKeyHandler = nullptr;

NSRef<NSBundle> bundleOf(const NSObject& object) {
  return NSBundle::bundleForClass(object.objectClass());
}

}  // namespace

const NSProperty* NSPropertyTable::find(std::u16string_view name) const noexcept {
  for (const NSProperty& property : *_properties) {
    if (property.name() == name) return &property;
  }
  return _inherited == nullptr ? nullptr : _inherited->find(name);
}

NSUndefinedKeyHandler NSSetUndefinedKeyHandler(NSUndefinedKeyHandler handler) noexcept {
  return undefinedKeyHandler.exchange(handler);
}

const NSPropertyTable& NSObject::propertyTable() const {
  static const NSPropertyTable table({{u"self", &NSObject::self},
                                      {u"hash", &NSObject::hash},
                                      {u"description", &NSObject::description},
                                      {u"bundle", &bundleOf}});
  return table;
}

NSRef<NSObject> NSObject::valueForKey(const NSRef<NSString>& key) const {
  const NSProperty* const property = propertyTable().find(key->view());
  return property == nullptr ? valueForUndefinedKey(key) : property->read(*this);
}

NSRef<NSObject> NSObject::valueForKeyPath(const NSRef<NSString>& keyPath) const {
  // Of its own: what an object answers may change the path.
  const auto path = keyPath->copy();
  std::u16string_view rest = path->view();
  NSRef<NSObject> value = self();
  for (;;) {
    const std::size_t dot = rest.find(u'.');
    value = value->valueForKey(NSMake<NSString>(rest.substr(0, dot)));
    if (!value || dot == std::u16string_view::npos) return value;
    rest.remove_prefix(dot + 1);
  }
}

NSRef<NSObject> NSObject::valueForUndefinedKey(const NSRef<NSString>& key) const {
  if (const NSUndefinedKeyHandler handler = undefinedKeyHandler.load()) return handler(*this, key);
  NSException::raise(NSUndefinedKeyException,
                     objectClass().name()->utf8() + " publishes no property '" + key->utf8() + "'");
}
