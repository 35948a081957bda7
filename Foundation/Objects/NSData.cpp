#include "Foundation/NSData.h"

#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/ContentHash.h>
#include <Foundation/Objects/HashMemo.h>

bool NSData::isEqualToData(const NSRef<NSData>& other) const noexcept {
  return other && view() == other.get()->view();
}

bool NSData::isEqual(const NSRef<NSObject>& other) const {
  const auto* const data = other.cast<NSData>();
  return data != nullptr && view() == data->view();
}

NSUInteger NSData::hash() const {
  return NSHashMemo::hash(*this, length(), [&] { return NSHashText(view()); });
}

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
