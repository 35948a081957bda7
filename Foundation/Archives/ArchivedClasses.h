#pragma once

#include <span>

#include <Foundation/NSClass.h>
#include <Foundation/NSObject.h>

class NSKeyedArchiver;
class NSKeyedUnarchiver;

/// How a class of the platform's own stands in archives.
struct NSArchivedClass {
  NSClass itself;
  const char16_t* name;
  void (*encode)(const NSObject& object, NSKeyedArchiver& coder);
  NSRef<NSObject> (*decode)(NSKeyedUnarchiver& coder);
};

/// Classes before the classes that they derive from.
std::span<const NSArchivedClass> NSArchivedClasses();
