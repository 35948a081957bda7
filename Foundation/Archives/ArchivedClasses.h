#pragma once

#include <span>

#include <Foundation/NSClass.h>
#include <Foundation/NSObject.h>

class NSKeyedArchiver;
class NSKeyedUnarchiver;

/// The most objects in each other that archives may hold: writing and reading take stack for each.
inline constexpr unsigned NSMostNestedObjects = 500;

/// A class of the platform's own, with its name in archives and both directions.
struct NSArchivedClass {
  NSClass itself;
  const char16_t* name;
  void (*encode)(const NSObject& object, NSKeyedArchiver& coder);
  NSRef<NSObject> (*decode)(NSKeyedUnarchiver& coder);
};

/// Lists the classes, each before the one that it derives from.
[[nodiscard]] std::span<const NSArchivedClass> NSArchivedClasses();
