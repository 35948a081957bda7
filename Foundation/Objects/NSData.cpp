#include "Foundation/NSData.h"

#include <functional>

#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSString.h>

bool NSData::isEqualToData(const NSRef<NSData>& other) const noexcept {
  return other && view() == other.get()->view();
}

bool NSData::isEqual(const NSRef<NSObject>& other) const {
  const auto* const data = other.cast<NSData>();
  return data != nullptr && view() == data->view();
}

NSUInteger NSData::hash() const { return std::hash<std::string_view>()(view()); }

NSRef<NSString> NSData::description() const {
  auto text = NSMake<NSMutableString>(u"NSData of "_ns->view());
  text->units().appendDecimal(length());
  text->appendUnits(length() == 1 ? u" byte" : u" bytes");
  return text;
}

const NSPropertyTable& NSData::propertyTable() const {
  static const NSPropertyTable table({{u"length", &NSData::length}}, NSObject::propertyTable());
  return table;
}
