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
/// Memory and time are proportional to the bytes, memory for the platform's classes some hundred
/// times at most; time but for keys and members of sets with equal hashes, which are compared with
/// each other, and for URLs of one long text, each of which parses it. A long text that cannot
/// change is hashed once, an `NSMutableString` once for each collection. Others that keys, members
/// of sets and classes of the program hash may add up to 64 MiB and 256 times the bytes of the
/// archive; more raise. 512 KiB of stack are enough.
class NS_EXPORT NSKeyedUnarchiver : public NSCoder {
 public:
  /// Reads the object under the key "root"; gives nil when there is none.
  [[nodiscard]] static NSRef<NSObject> unarchiveObjectWithData(const NSRef<NSData>& data);
  /// Reads the object under the key "root" as a `T`; gives nil when it is of another class.
  template <class T>
  [[nodiscard]] static NSRef<T> unarchivedObjectOfClass(const NSRef<NSData>& data) {
    return unarchiveObjectWithData(data).template as<T>();
  }

  /// Reads the object under the key "root". Gives nil, with an `NSError` of `NSCocoaErrorDomain`
  /// whose text is the reason, when there is none (`NSCoderValueNotFoundError`), it is of another
  /// class or reading throws a `std::exception` other than for want of memory, as `NSException` is
  /// (`NSCoderReadCorruptError`). The elements of a collection may be of any class that archives
  /// can make. The place for the error may be null. Nil as data raises
  /// `NSInvalidArgumentException`.
  [[nodiscard]] static NSRef<NSObject> unarchivedObjectOfClass_fromData_error(
      NSClass aClass, const NSRef<NSData>& data, NSRef<NSError>* error);
  /// Reads the object under the key "root" as a `T`, with an error where it gives nil.
  template <class T>
  [[nodiscard]] static NSRef<T> unarchivedObjectOfClass_fromData_error(const NSRef<NSData>& data,
                                                                       NSRef<NSError>* error) {
    return unarchivedObjectOfClass_fromData_error(NSClass::of<T>(), data, error).template as<T>();
  }

  explicit NSKeyedUnarchiver(const NSRef<NSData>& data);
  ~NSKeyedUnarchiver() override;

  /// Allows archives to make instances of the class, for the whole process. From any thread.
  template <class T>
  static void registerClass() {
    setClass_forClassName<T>(NSClass::of<T>().name());
  }
  /// Allows archives to make instances of the class under the name that it has in them, such as one
  /// that was given to `NSKeyedArchiver::setClassName_forClass`.
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

  [[nodiscard]] bool containsValueForKey(const NSRef<NSString>& key) const override;
  [[nodiscard]] bool decodeBoolForKey(const NSRef<NSString>& key) override;
  [[nodiscard]] NSInteger decodeIntegerForKey(const NSRef<NSString>& key) override;
  [[nodiscard]] double decodeDoubleForKey(const NSRef<NSString>& key) override;
  [[nodiscard]] NSRef<NSObject> decodeObjectForKey(const NSRef<NSString>& key) override;
  /// Reads a text that the caller is going to copy. In one archive these may add up to 1 MiB and 32
  /// times its bytes; more raise `NSInvalidUnarchiveOperationException`.
  [[nodiscard]] NSRef<NSString> decodeTextForKey(const NSRef<NSString>& key);
  /// Reads objects that were written as a list without a class; none when there is no such key.
  [[nodiscard]] std::vector<NSRef<NSObject>> decodeObjectsForKey(const NSRef<NSString>& key);

 private:
  using Reader = NSRef<NSObject> (*)(const NSRef<NSCoder>& coder);
  static void setReader(const NSRef<NSString>& name, Reader reader);

  struct Archive;
  std::unique_ptr<Archive> _archive;
};
