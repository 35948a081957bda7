#pragma once

#include <memory>

#include <ZKFoundation/ZKFoundation.h>

namespace sketchbook {

/// A place for unsaved work in a folder. It is held by a lock that ends with the process, however
/// that ends: what nobody holds has been left behind by a crash.
class Recovery {
 public:
  /// Makes a new place; nil, and the reason, when there can be none.
  static std::unique_ptr<Recovery> create(const NSRef<NSURL>& folder, NSRef<NSError>* error);
  /// Takes over a place that was left behind; nil when somebody holds it.
  static std::unique_ptr<Recovery> take(const NSRef<NSURL>& url);
  /// Lists the places that were left behind with something in them.
  static NSRef<NSArray> abandoned(const NSRef<NSURL>& folder);

  Recovery(const Recovery&) = delete;
  ~Recovery();

  /// Gives where the document goes.
  const NSRef<NSURL>& url() const { return _url; }
  /// Removes what is there; the place is still held.
  void clear();
  /// Removes all of it, lock and all.
  void remove();

 private:
  Recovery(const NSRef<NSURL>& url, int lock) : _url(url), _lock(lock) {}

  NSRef<NSURL> _url;
  int _lock;
};

}  // namespace sketchbook
