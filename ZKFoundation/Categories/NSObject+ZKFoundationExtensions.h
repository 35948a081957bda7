#pragma once

#include <Foundation/NSBundle.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// The bundle of the program or library that defines the class: the application's for a class of
/// the application, this library's for `ZKFoundation`.
ZK_EXPORT NSRef<NSBundle> bundle(NSClass aClass);

/// The same, of a class named in the code: `bundle<ZKFoundation>()`.
template <class T>
NSRef<NSBundle> bundle() {
  return bundle(NSClass::of<T>());
}

/// The bundle of the object's class. A nil object raises `NSInvalidArgumentException`.
ZK_EXPORT NSRef<NSBundle> bundle(const NSRef<NSObject>& object);

/// What a key-value read of an unpublished key gives: nil, after one log line,
/// "KVO/Undefined Key: " with the key, " class:" and the name of the object's class. Loading the
/// library makes this the answer of every object, in place of the platform's exception; a class
/// that overrides `NSObject::valueForUndefinedKey` keeps its own answer, and so does a program that
/// sets another `NSUndefinedKeyHandler`.
ZK_EXPORT NSRef<NSObject> valueForUndefinedKey(const NSRef<NSObject>& object,
                                               const NSRef<NSString>& key);

}  // namespace ZKFoundationExtensions
