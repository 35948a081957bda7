// Collections only lend their elements; what compilers say names the operations that sort and read.
#include <algorithm>

#include <Foundation/Foundation.h>

void sort(NSMutableArray& array) {
  std::ranges::sort(array, [](const auto& a, const auto& b) { return a->hash() < b->hash(); });
}
