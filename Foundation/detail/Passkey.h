#pragma once

/// The key to constructors that are public, as `NSMake` calls them, but for T's own functions
/// alone.
template <class T>
class NSPasskey {
  friend T;
  NSPasskey() = default;
};
