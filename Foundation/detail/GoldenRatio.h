#pragma once

#include <Foundation/NSTypes.h>

/// 2^64 over the golden ratio: the factor that scatters hashes. Its multiples fall evenly between
/// one another (Knuth, The Art of Computer Programming, 6.4); odd, it keeps all numbers apart.
inline constexpr NSUInteger NSGoldenRatio = 0x9E3779B97F4A7C15;
