// A program that uses no class, so that nothing but the library itself asks for the platform layer.

#include <ZKFoundation/ZKFoundation.h>

int main() { return ZKLineLength({0, 0}, {3, 4}) == 5 ? 0 : 1; }
