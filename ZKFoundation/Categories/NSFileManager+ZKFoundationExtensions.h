#pragma once

#include <Foundation/NSFileManager.h>
#include <ZKFoundation/ZKExport.h>

// Well-known directories. They need not exist; `NSFileManager` tells where they are. May be called
// from any thread.

namespace ZKFoundationExtensions {

/// The user's documents.
ZK_EXPORT NSRef<NSURL> documentsDirectory();
/// The one with the users' home directories.
ZK_EXPORT NSRef<NSURL> usersDirectory();
/// The machine's, for the data of applications.
ZK_EXPORT NSRef<NSURL> applicationSupportDirectory();
/// The user's, for the data of applications.
ZK_EXPORT NSRef<NSURL> userApplicationSupportDirectory();
/// `NSTemporaryDirectory`
ZK_EXPORT NSRef<NSURL> temporaryFolder();

/// The standard directory, or the one with that name in it, unless the component is nil; it is made
/// if it is not there, with all above it. Nil if there is no such directory or it cannot be made;
/// `*error` then has the reason and is nil otherwise, and may be null. A nil manager raises
/// `NSInvalidArgumentException`.
ZK_EXPORT NSRef<NSURL> findOrCreateDirectory_inDomain_appendPathComponent_error(
    const NSRef<NSFileManager>& manager, NSUInteger directory, NSUInteger domain,
    const NSRef<NSString>& component, NSRef<NSError>* error);

}  // namespace ZKFoundationExtensions
