#include "Foundation/Threads/RunLoopModes.h"

#include <Foundation/NSNeverDestroyed.h>

const NSRef<NSArray>& NSDefaultRunLoopModes() {
  static const NSNeverDestroyed<NSRef<NSArray>> modes(NSMake<NSArray>({NSDefaultRunLoopMode()}));
  return *modes;
}

NSRef<NSArray> NSCopiedModes(const NSRef<NSArray>& modes) {
  // Mostly it is this one.
  if (modes.is(NSDefaultRunLoopModes())) return modes;
  auto copies = NSMake<NSMutableArray>();
  for (const auto& mode : modes) copies->addObject(mode->copy());
  return copies;
}
