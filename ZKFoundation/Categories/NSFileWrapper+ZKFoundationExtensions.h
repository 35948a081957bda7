#pragma once

#include <Foundation/NSFileWrapper.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Adds the child under its preferred name, or where another child has that, under the first that
/// is free of those that add " 2", then " 3" and so on before the extension: "a.txt", "a 2.txt", "a
/// 2 3.txt". That becomes its preferred name. Gives the name. A child without a preferred name gets
/// one from `NSFileWrapper::addFileWrapper`, which tells what is raised.
ZK_EXPORT NSRef<NSString> addFileWrapperWithUniqueFileName(const NSRef<NSFileWrapper>& directory,
                                                           const NSRef<NSFileWrapper>& child);

}  // namespace ZKFoundationExtensions
