#pragma once

#include <memory>

#include <ZKFoundation/ZKFoundation.h>

namespace sketchbook {

/// A place for a copy of unsaved work: a directory in a folder, named as the revision that the
/// document will have when the work is saved. A lock holds it, which ends with the process, however
/// that ends: what nobody holds has been left behind by a crash.
class Recovery {
 public:
  /// Makes a place for a copy of the document at the origin, which may be nil; nil, and the reason,
  /// when there can be none.
  static std::unique_ptr<Recovery> create(const NSRef<NSURL>& folder, const NSRef<NSURL>& origin,
                                          NSRef<NSError>* error);
  /// Takes over the place of a copy that was left behind; nil when somebody holds it.
  static std::unique_ptr<Recovery> take(const NSRef<NSURL>& copy);
  /// Lists the copies that were left behind. Removes places without a copy, and those whose work
  /// has been saved.
  static NSRef<NSArray> abandoned(const NSRef<NSURL>& folder);

  Recovery(const Recovery&) = delete;
  ~Recovery();

  /// Gives where the copy goes.
  NSRef<NSURL> copy() const { return within(u"copy.sketch"_ns); }
  /// Gives where the document belongs; nil as long as it was never saved.
  NSRef<NSURL> origin() const;
  NSRef<NSString> revision() const { return _place->lastPathComponent(); }
  /// Removes the place and what is in it.
  void remove();
  /// Renames the place of a copy that cannot be read, so that it is listed no more, and gives its
  /// path. Who knows how may read it still.
  NSRef<NSString> setAside();

 private:
  Recovery(const NSRef<NSURL>& place, int lock) : _place(place), _lock(lock) {}
  static std::unique_ptr<Recovery> hold(const NSRef<NSURL>& place);
  NSRef<NSURL> within(const NSRef<NSString>& name) const;
  bool isNeeded() const;

  NSRef<NSURL> _place;
  int _lock;
};

}  // namespace sketchbook
