#pragma once

/// Marks what the platform library exports; everything else in it is hidden.
#define NS_EXPORT __attribute__((visibility("default")))
