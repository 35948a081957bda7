#pragma once

#include <Foundation/NSFileManager.h>
#include <ZKFoundation/ZKExport.h>

// Well-known directories, which need not exist; `NSFileManager` tells where. From any thread.

namespace ZKFoundationExtensions {

/// Gives the directory of the user's documents.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> documentsDirectory();
/// Gives the directory with the users' home directories.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> usersDirectory();
/// Gives the machine's directory for the data of applications.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> applicationSupportDirectory();
/// Gives the user's directory for the data of applications.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> userApplicationSupportDirectory();
/// Gives `NSTemporaryDirectory` as a URL.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> temporaryFolder();

/// Gives the standard directory, or the one with that name in it, unless the component is nil;
/// makes what is missing of it. Nil if there is none or it cannot be made; `*error` then has the
/// reason and is nil otherwise, and may be null. A nil manager raises `NSInvalidArgumentException`.
ZK_EXPORT NSRef<NSURL> findOrCreateDirectory_inDomain_appendPathComponent_error(
    const NSRef<NSFileManager>& manager, NSUInteger directory, NSUInteger domain,
    const NSRef<NSString>& component, NSRef<NSError>* error);

}  // namespace ZKFoundationExtensions
