#pragma once

#include <memory>

#include <plist/plist.h>

struct NSPropertyListFree {
  void operator()(plist_t node) const { plist_free(node); }
};
/// A property list of libplist's that is freed with its owner.
using NSPropertyListNode = std::unique_ptr<void, NSPropertyListFree>;
