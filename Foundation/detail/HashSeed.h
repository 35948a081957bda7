#pragma once

#include <array>

#include <Foundation/NSExport.h>
#include <Foundation/NSTypes.h>

/// Odd numbers drawn at random when the library is loaded, the same for the whole process: what
/// hashes are mixed with, so that who chooses the contents cannot choose where they meet.
NS_EXPORT extern const std::array<NSUInteger, 3> NSHashSeed;
