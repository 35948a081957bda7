#pragma once

#include <memory>
#include <vector>

#include <Foundation/NSCoder.h>
#include <Foundation/NSData.h>
#include <Foundation/NSExport.h>

/// Reads what `NSKeyedArchiver` writes; also where its references went through a property list
/// without UIDs and became dictionaries of the key "CF$UID", as plistutil makes them.
///
/// Archives are not trusted. Bytes that are no keyed archive raise `NSInvalidArgumentException`.
/// A reference that leads nowhere, a value of another kind than its reader asks for, an object that
/// contains itself, more than 500 objects in each other, and a class that is neither the
/// platform's own nor registered raise `NSInvalidUnarchiveOperationException`. What a class raises
/// itself, such as for nil in an array, comes through. Memory is proportional to the bytes, at most
/// some hundred times as much, and 512 KiB of stack are enough for the platform's classes. Time is
/// not bounded so: equal collections in each other, as keys or in sets, take long to compare.
class NS_EXPORT NSKeyedUnarchiver : public NSCoder {
 public:
  /// The object under the key "root", nil when there is none.
  static NSRef<NSObject> unarchiveObjectWithData(const NSRef<NSData>& data);
  /// The same as a `T`; nil when it is of another class.
  template <class T>
  static NSRef<T> unarchivedObjectOfClass(const NSRef<NSData>& data) {
    return unarchiveObjectWithData(data).template as<T>();
  }

  explicit NSKeyedUnarchiver(const NSRef<NSData>& data);
  ~NSKeyedUnarchiver() override;

  /// Allows archives to make instances of the class, for the whole process. May be called from any
  /// thread.
  template <class T>
  static void registerClass() {
    setClass_forClassName<T>(NSClass::of<T>().name());
  }
  /// The same, under the name that the class has in the archive.
  template <class T>
  static void setClass_forClassName(const NSRef<NSString>& name) {
    setReader(name, [](const NSRef<NSCoder>& coder) -> NSRef<NSObject> {
      if constexpr (requires { T::initWithCoder(coder); }) {
        return T::initWithCoder(coder);
      } else {
        return NSMake<T>(coder);
      }
    });
  }

  bool containsValueForKey(const NSRef<NSString>& key) const override;
  bool decodeBoolForKey(const NSRef<NSString>& key) override;
  NSInteger decodeIntegerForKey(const NSRef<NSString>& key) override;
  double decodeDoubleForKey(const NSRef<NSString>& key) override;
  NSRef<NSObject> decodeObjectForKey(const NSRef<NSString>& key) override;
  /// Objects that were written as a list without a class; none when there is no such key.
  std::vector<NSRef<NSObject>> decodeObjectsForKey(const NSRef<NSString>& key);

 private:
  using Reader = NSRef<NSObject> (*)(const NSRef<NSCoder>& coder);
  static void setReader(const NSRef<NSString>& name, Reader reader);

  struct Archive;
  std::unique_ptr<Archive> _archive;
};
