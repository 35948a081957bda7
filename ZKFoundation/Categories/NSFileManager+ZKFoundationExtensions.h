#pragma once

#include <Foundation/NSFileManager.h>
#include <ZKFoundation/Categories/ZKNamingOptions.h>
#include <ZKFoundation/ZKExport.h>

// From any thread.

// Well-known directories, which need not exist; `NSFileManager` tells where.

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

// Names are found and taken in one step: what another program makes meanwhile is never touched, and
// the next number is tried. Numbers are as for `uniqueStringWithString_forStringArray_options`, the
// options' names always those of files. Names that differ in letter case alone are kept apart, if
// that is asked for, from all that is in the folder when it is read. What fails gives nil, with the
// reason in `*error`, which is nil otherwise and may be null; so do a thousand names that others
// have taken first. A nil manager or URL raises `NSInvalidArgumentException`.

/// Makes a new file with the contents, nil for none, at the URL or beside it under a free name:
/// "/d/a.txt", "/d/a 2.txt". Gives its URL.
ZK_EXPORT NSRef<NSURL> createFileWithUniqueNameAtURL_contents_options_error(
    const NSRef<NSFileManager>& manager, const NSRef<NSURL>& url, const NSRef<NSData>& contents,
    const ZKNamingOptions& options, NSRef<NSError>* error);

/// Makes a new directory at the URL or beside it under a free name. Gives its URL.
ZK_EXPORT NSRef<NSURL> createDirectoryWithUniqueNameAtURL_options_error(
    const NSRef<NSFileManager>& manager, const NSRef<NSURL>& url, const ZKNamingOptions& options,
    NSRef<NSError>* error);

}  // namespace ZKFoundationExtensions
