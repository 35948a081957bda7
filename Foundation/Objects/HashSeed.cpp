#include "Foundation/detail/HashSeed.h"

#include <random>

namespace {

std::array<NSUInteger, 3> randomOddNumbers() {
  std::random_device device;
  std::array<NSUInteger, 3> numbers{};
  for (NSUInteger& number : numbers) number = (NSUInteger{device()} << 32U) | device() | 1U;
  return numbers;
}

}  // namespace

// Before all other initialisations of the library, which may already fill collections.
[[gnu::init_priority(101)]] const std::array<NSUInteger, 3> NSHashSeed = randomOddNumbers();
