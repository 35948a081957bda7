#pragma once

// The include after each sentence exists nowhere: it ends the compilation before further errors.
#if __cplusplus < 202002L
#error "ZKFoundation needs C++20: compile with -std=c++20 or later"
#include <Foundation/needs-c++20>
#elif !defined(__cpp_exceptions)
#error "ZKFoundation needs exceptions: compile without -fno-exceptions"
#include <Foundation/needs-exceptions>
#elif !defined(__cpp_rtti)
#error "ZKFoundation needs run-time type information: compile without -fno-rtti"
#include <Foundation/needs-rtti>
#endif

/// Marks what the platform library exports; everything else in it is hidden.
#define NS_EXPORT __attribute__((visibility("default")))
