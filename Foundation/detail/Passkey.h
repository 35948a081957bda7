#pragma once

/// The key to constructors that `NSMake` calls, but that are meant for T's own functions alone.
template <class T>
class NSPasskey {
  friend T;
  NSPasskey() = default;
};
