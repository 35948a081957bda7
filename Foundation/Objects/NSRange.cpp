#include "Foundation/NSRange.h"

#include <ostream>

std::ostream& operator<<(std::ostream& out, NSRange range) {
  return out << '{' << range.location << ", " << range.length << '}';
}
