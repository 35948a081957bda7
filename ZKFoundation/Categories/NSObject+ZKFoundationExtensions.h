#pragma once

#include <Foundation/NSBundle.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Gives the bundle of the program or library that defines the class: the application's for a class
/// of the application, this library's for `ZKFoundation`.
[[nodiscard]] ZK_EXPORT NSRef<NSBundle> bundle(NSClass aClass);

/// Gives the bundle of a class that is named in the code: `bundle<ZKFoundation>()`.
template <class T>
[[nodiscard]] NSRef<NSBundle> bundle() {
  return bundle(NSClass::of<T>());
}

/// Gives the bundle of the object's class. A nil object raises `NSInvalidArgumentException`.
[[nodiscard]] ZK_EXPORT NSRef<NSBundle> bundle(const NSRef<NSObject>& object);

/// Answers a key-value read of an unpublished key: gives nil, after one log line, "KVO/Undefined
/// Key: " with the key, " class:" and the name of the object's class. Loading the library makes
/// this the answer of every object, in place of the platform's exception; a class that overrides
/// `NSObject::valueForUndefinedKey` keeps its own answer, and so does a program that sets another
/// `NSUndefinedKeyHandler`.
ZK_EXPORT NSRef<NSObject> valueForUndefinedKey(const NSRef<NSObject>& object,
                                               const NSRef<NSString>& key);

}  // namespace ZKFoundationExtensions
