#include "Foundation/Archives/ArchivedClasses.h"

#include <vector>

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSKeyedArchiver.h>
#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSSet.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>
#include <Foundation/Objects/HashMemo.h>

namespace {

[[noreturn]] void raiseBroken(const char* reason) {
  NSException::raise(NSInvalidUnarchiveOperationException, reason);
}

template <class Collection>
void encodeElements(const NSObject& object, NSKeyedArchiver& coder) {
  coder.encodeObjects_forKey(static_cast<const Collection&>(object), u"NS.objects"_ns);
}

template <class Array>
NSArchivedClass arrayClass(const char16_t* name) {
  return {NSClass::of<Array>(), name, encodeElements<Array>,
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            return NSMake<Array>(coder.decodeObjectsForKey(u"NS.objects"_ns));
          }};
}

template <class Set>
NSArchivedClass setClass(const char16_t* name) {
  return {NSClass::of<Set>(), name, encodeElements<Set>,
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            const auto members = NSMake<NSArray>(coder.decodeObjectsForKey(u"NS.objects"_ns));
            const NSHashMemo::Filling filling;
            return NSMake<Set>(members);
          }};
}

template <class Dictionary>
NSArchivedClass dictionaryClass(const char16_t* name) {
  return {NSClass::of<Dictionary>(), name,
          [](const NSObject& object, NSKeyedArchiver& coder) {
            const auto& dictionary = static_cast<const Dictionary&>(object);
            const auto key = [](const NSEntry& entry) { return entry.first; };
            const auto value = [](const NSEntry& entry) { return entry.second; };
            coder.encodeObjects_forKey(dictionary, u"NS.keys"_ns, key);
            coder.encodeObjects_forKey(dictionary, u"NS.objects"_ns, value);
          },
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            const auto keys = coder.decodeObjectsForKey(u"NS.keys"_ns);
            const auto values = coder.decodeObjectsForKey(u"NS.objects"_ns);
            if (keys.size() != values.size()) raiseBroken("a dictionary has keys without objects");
            const NSHashMemo::Filling filling;
            const auto dictionary = NSMake<NSMutableDictionary>();
            for (std::size_t k = 0; k < keys.size(); ++k) {
              dictionary->setObject_forKey(values[k], keys[k]);
            }
            return NSMake<Dictionary>(NSRef<NSDictionary>(dictionary));
          }};
}

NSArchivedClass mutableStringClass() {
  return {NSClass::of<NSMutableString>(), u"NSMutableString",
          [](const NSObject& object, NSKeyedArchiver& coder) {
            coder.encodeText_forKey(static_cast<const NSString&>(object), u"NS.string"_ns);
          },
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            return NSMake<NSMutableString>(NSViewOf(coder.decodeTextForKey(u"NS.string"_ns)));
          }};
}

// Data stand in the table as they are; other writers make records of them.
NSArchivedClass dataClass(const char16_t* name) {
  return {NSClass::of<NSData>(), name,
          [](const NSObject& object, NSKeyedArchiver& coder) {
            coder.encodeObject_forKey(object.self(), u"NS.data"_ns);
          },
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            auto data = coder.decodeObjectOfClass<NSData>(u"NS.data"_ns);
            return data ? data : NSMake<NSData>();
          }};
}

NSArchivedClass nullClass() {
  return {NSClass::of<NSNull>(), u"NSNull", [](const NSObject&, NSKeyedArchiver&) {},
          [](NSKeyedUnarchiver&) -> NSRef<NSObject> { return NSNull::null(); }};
}

NSArchivedClass urlClass() {
  return {NSClass::of<NSURL>(), u"NSURL",
          [](const NSObject& object, NSKeyedArchiver& coder) {
            coder.encodeObject_forKey(nullptr, u"NS.base"_ns);
            coder.encodeObject_forKey(static_cast<const NSURL&>(object).absoluteString(),
                                      u"NS.relative"_ns);
          },
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            if (coder.decodeObjectForKey(u"NS.base"_ns)) {
              raiseBroken("URLs relative to another one are not supported");
            }
            return NSURL::URLWithString(coder.decodeObjectOfClass<NSString>(u"NS.relative"_ns));
          }};
}

NSArchivedClass localeClass() {
  return {NSClass::of<NSLocale>(), u"NSLocale",
          [](const NSObject& object, NSKeyedArchiver& coder) {
            coder.encodeObject_forKey(static_cast<const NSLocale&>(object).localeIdentifier(),
                                      u"NS.identifier"_ns);
          },
          [](NSKeyedUnarchiver& coder) -> NSRef<NSObject> {
            return NSLocale::localeWithLocaleIdentifier(
                coder.decodeObjectOfClass<NSString>(u"NS.identifier"_ns));
          }};
}

}  // namespace

std::span<const NSArchivedClass> NSArchivedClasses() {
  static const NSNeverDestroyed<std::vector<NSArchivedClass>> classes(
      std::initializer_list<NSArchivedClass>{
          arrayClass<NSMutableArray>(u"NSMutableArray"),
          arrayClass<NSArray>(u"NSArray"),
          setClass<NSMutableSet>(u"NSMutableSet"),
          setClass<NSSet>(u"NSSet"),
          dictionaryClass<NSMutableDictionary>(u"NSMutableDictionary"),
          dictionaryClass<NSDictionary>(u"NSDictionary"),
          mutableStringClass(),
          dataClass(u"NSMutableData"),
          dataClass(u"NSData"),
          nullClass(),
          urlClass(),
          localeClass(),
      });
  return *classes;
}
