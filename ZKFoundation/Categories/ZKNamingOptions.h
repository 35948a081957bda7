#pragma once

#include <Foundation/NSTypes.h>

/// Says how a number is joined to a name that is taken.
enum ZKNamingStyle : NSUInteger {
  /// "name 2"; any other value is this too.
  ZKNamingSpaced = 0,
  /// "name (2)"
  ZKNamingParenthesized = 1,
  /// "name2"
  ZKNamingJoined = 2,
};

/// Says how a name is made unique. A number that a name ends with in the style goes on, and keeps
/// its width where it has leading zeros: "shot 009", "shot 010". Without one numbers begin at 2.
struct ZKNamingOptions {
  ZKNamingStyle style = ZKNamingSpaced;
  /// Whether a name is taken by one that differs in letter case or composition of characters alone.
  bool ignoresCase = false;
  /// Whether the number goes before the extension, as in the names of files: "a 2.txt". Of a file
  /// that is compressed there are two: "archive 2.tar.gz". An extension has a letter and no blank.
  bool isFileName = false;
};
