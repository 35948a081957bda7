#pragma once

/// The key to constructors that are public because `NSMake` calls them, but meant for T's own
/// functions alone.
template <class T>
class NSPasskey {
  friend T;
  NSPasskey() = default;
};
