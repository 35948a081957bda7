#include "ZKFoundation/ZKFoundationClass.h"

// Defined here and not in the header, so that the class belongs to this library.
ZKFoundation::~ZKFoundation() = default;
