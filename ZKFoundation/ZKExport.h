#pragma once

/// Marks what the library exports; everything else in it is hidden.
#define ZK_EXPORT __attribute__((visibility("default")))
