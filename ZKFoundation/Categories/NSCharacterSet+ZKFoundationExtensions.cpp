#include "ZKFoundation/Categories/NSCharacterSet+ZKFoundationExtensions.h"

#include <Foundation/NSNeverDestroyed.h>

namespace ZKFoundationExtensions {

const NSRef<NSCharacterSet>& attachmentCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      NSCharacterSet::characterSetWithRange({0xFFFC, 1}));
  return *set;
}

const NSRef<NSCharacterSet>& wordBoundariesCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      NSCharacterSet::alphanumericCharacterSet()->invertedSet());
  return *set;
}

const NSRef<NSCharacterSet>& controlAndAttachmentCharacterSet() {
  // Complete before any thread sees it.
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set([] {
    auto united = NSCharacterSet::controlCharacterSet()->mutableCopy();
    united->formUnionWithCharacterSet(attachmentCharacterSet());
    return united->copy();
  }());
  return *set;
}

}  // namespace ZKFoundationExtensions
