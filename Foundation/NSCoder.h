#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSCoder;
class NSString;

/// The second base, besides `NSObject`, of classes that can be archived. Reading is a constructor,
/// or, where it may give nil, a static function of the name `initWithCoder`:
///
///     struct Chapter : NSObject, NSCoding {
///       explicit Chapter(const NSRef<NSCoder>& coder)
///           : heading(coder->decodeObjectOfClass<NSString>(u"heading"_ns)) {}
///       void encodeWithCoder(const NSRef<NSCoder>& coder) const override {
///         coder->encodeObject_forKey(heading, u"heading"_ns);
///       }
///       NSRef<NSString> heading;
///     };
///
/// `NSKeyedUnarchiver::registerClass<Chapter>()` allows archives to make it.
class NS_EXPORT NSCoding {
 public:
  virtual ~NSCoding();
  virtual void encodeWithCoder(const NSRef<NSCoder>& coder) const = 0;

 protected:
  NSCoding() noexcept = default;
  NSCoding(const NSCoding&) noexcept = default;
  NSCoding& operator=(const NSCoding&) noexcept = default;
};

/// The archive that objects write themselves to or read themselves from, value by value under keys
/// that are unique in their class and its bases: a second value for a key raises
/// `NSInvalidArchiveOperationException`. Nil as a key raises `NSInvalidArgumentException`.
///
/// A key that was not written reads as false, 0 or nil. A value of another kind than is asked for
/// raises `NSInvalidUnarchiveOperationException`; kinds are not converted, but for integers that
/// are read as doubles, so a flag that becomes a number needs another key. Asking an archiver to
/// decode, or an unarchiver to encode, raises `NSInvalidArgumentException`.
class NS_EXPORT NSCoder : public NSObject {
 public:
  NSCoder(const NSCoder&) = delete;

  virtual void encodeBool_forKey(bool value, const NSRef<NSString>& key);
  virtual void encodeInteger_forKey(NSInteger value, const NSRef<NSString>& key);
  virtual void encodeDouble_forKey(double value, const NSRef<NSString>& key);
  /// Writes an object, once however often it occurs. An object that cannot be archived raises
  /// `NSInvalidArchiveOperationException`.
  virtual void encodeObject_forKey(const NSRef<NSObject>& object, const NSRef<NSString>& key);

  [[nodiscard]] virtual bool containsValueForKey(const NSRef<NSString>& key) const;
  [[nodiscard]] virtual bool decodeBoolForKey(const NSRef<NSString>& key);
  [[nodiscard]] virtual NSInteger decodeIntegerForKey(const NSRef<NSString>& key);
  /// Reads a number, an integer as well.
  [[nodiscard]] virtual double decodeDoubleForKey(const NSRef<NSString>& key);
  [[nodiscard]] virtual NSRef<NSObject> decodeObjectForKey(const NSRef<NSString>& key);

  /// Reads an object as a `T`; gives nil when nil was written, or nothing. An object of another
  /// class raises `NSInvalidUnarchiveOperationException`.
  template <class T>
  [[nodiscard]] NSRef<T> decodeObjectOfClass(const NSRef<NSString>& key) {
    NSRef<NSObject> object = decodeObjectForKey(key);
    NSRef<T> result = object.as<T>();
    if (object && !result) raiseWrongClass(*object, NSClass::of<T>(), key);
    return result;
  }

 protected:
  NSCoder() noexcept = default;

  [[noreturn]] static void raiseWrongClass(const NSObject& object, NSClass wanted,
                                           const NSRef<NSString>& key);
};
