#include "ZKFoundation/Categories/NSFileWrapper+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

NSRef<NSString> addFileWrapperWithUniqueFileName(const NSRef<NSFileWrapper>& directory,
                                                 const NSRef<NSFileWrapper>& child) {
  NSCheckArgument("addFileWrapperWithUniqueFileName:", "directory", directory);
  // It takes the name that this wants; all that remains is to tell the child.
  auto name = directory->addFileWrapper(child);
  if (!name->isEqualToString(child->preferredFilename())) child->setPreferredFilename(name);
  return name;
}

}  // namespace ZKFoundationExtensions
