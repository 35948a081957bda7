#pragma once

#include <memory>
#include <vector>

#include <Foundation/NSCoder.h>
#include <Foundation/NSData.h>
#include <Foundation/NSError.h>
#include <Foundation/NSExport.h>

/// Reads what `NSKeyedArchiver` writes; also where its references went through a property list
/// without UIDs and became dictionaries of the key "CF$UID", as plistutil makes them.
///
/// Archives are not trusted. Bytes that are no keyed archive raise `NSInvalidArgumentException`.
/// A reference that leads nowhere, a value of another kind than its reader asks for, an object that
/// contains itself, more than 500 objects in each other, and a class that is neither the
/// platform's own nor registered raise `NSInvalidUnarchiveOperationException`. What a class raises
/// itself, such as for nil in an array, comes through. Where damage is an ordinary outcome, as with
/// a file, `unarchivedObjectOfClass_fromData_error` gives it back as an error.
///
/// Memory is proportional to the bytes, for the platform's classes at most some hundred times as
/// much, and 512 KiB of stack are enough. Time is too, but for keys and members of sets that have
/// equal hashes and are compared with each other, and for URLs of one long text, each of which
/// parses it.
class NS_EXPORT NSKeyedUnarchiver : public NSCoder {
 public:
  /// The object under the key "root", nil when there is none.
  static NSRef<NSObject> unarchiveObjectWithData(const NSRef<NSData>& data);
  /// The same as a `T`; nil when it is of another class.
  template <class T>
  static NSRef<T> unarchivedObjectOfClass(const NSRef<NSData>& data) {
    return unarchiveObjectWithData(data).template as<T>();
  }

  /// The object under the key "root". Nil, with an `NSError` of the domain `NSCocoaErrorDomain`
  /// whose text is the reason, when there is none (`NSCoderValueNotFoundError`), and when it is of
  /// another class or reading raises an `NSException` (`NSCoderReadCorruptError`). The place for
  /// the error may be null. Nil as data raises `NSInvalidArgumentException`.
  static NSRef<NSObject> unarchivedObjectOfClass_fromData_error(NSClass aClass,
                                                                const NSRef<NSData>& data,
                                                                NSRef<NSError>* error);
  /// The same as a `T`.
  template <class T>
  static NSRef<T> unarchivedObjectOfClass_fromData_error(const NSRef<NSData>& data,
                                                         NSRef<NSError>* error) {
    return unarchivedObjectOfClass_fromData_error(NSClass::of<T>(), data, error).template as<T>();
  }

  explicit NSKeyedUnarchiver(const NSRef<NSData>& data);
  ~NSKeyedUnarchiver() override;

  /// Allows archives to make instances of the class, for the whole process. May be called from any
  /// thread.
  template <class T>
  static void registerClass() {
    setClass_forClassName<T>(NSClass::of<T>().name());
  }
  /// The same, under the name that the class has in the archive, such as one that was given to
  /// `NSKeyedArchiver::setClassName_forClass`.
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
  /// A text that the caller is going to copy. In one archive these may add up to 1 MiB and 32 times
  /// its bytes; more raise `NSInvalidUnarchiveOperationException`.
  NSRef<NSString> decodeTextForKey(const NSRef<NSString>& key);
  /// Objects that were written as a list without a class; none when there is no such key.
  std::vector<NSRef<NSObject>> decodeObjectsForKey(const NSRef<NSString>& key);

 private:
  using Reader = NSRef<NSObject> (*)(const NSRef<NSCoder>& coder);
  static void setReader(const NSRef<NSString>& name, Reader reader);

  struct Archive;
  std::unique_ptr<Archive> _archive;
};
