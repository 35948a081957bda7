#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSURL.h>
#include <ZKFoundation/ZKExport.h>

// A nil receiver raises `NSInvalidArgumentException` unless it says otherwise.

namespace ZKFoundationExtensions {

/// Gives the file URL of a path that no URL of the array has, apart from extensions: the path
/// itself if that is free, else with a number before its extension, as
/// `uniqueStringWithString_forStringArray` finds it: "/d/report1.txt" beside "/d/report.pdf".
///
/// Paths are compared as text, folders and all; the disk is not asked whether there is such a file.
/// A name that ends with "." has no extension: "/d/a." beside itself gives "/d/a.1", also where
/// there is another "/d/a" or "/d/a.1". A URL that is no file URL is given back itself. Nil
/// for a path that is not UTF-8 or that no file can have; a nil array is empty. As of every path,
/// the result ends with "/" if there is a directory.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> uniqueURLWithURL_forURLArray(const NSRef<NSURL>& url,
                                                                  const NSRef<NSArray>& urls);

/// Whether the URL may be handed to the desktop to be opened, wherever it comes from: "http" and
/// "https" with a host, "mailto" with a recipient, and "file" with an absolute path of this machine
/// (no host, or "localhost"); schemes in any letter case. All others, such as "javascript" and
/// "ssh", could run something, and are false; so is nil. Whether there is such a file is not asked.
[[nodiscard]] ZK_EXPORT bool isSafeToOpen(const NSRef<NSURL>& url);

/// Whether the query has "applesecurityscope=", or there is no query.
[[nodiscard]] ZK_EXPORT bool isSecurityScoped(const NSRef<NSURL>& url);

/// Gives the file URL of the path alone, also of "http://a.b/c"; nil for a path that is empty, not
/// UTF-8 or no file's, and for a URL without hierarchy; the URL itself if not security-scoped.
[[nodiscard]] ZK_EXPORT NSRef<NSURL> strippedSecurityScopedURL(const NSRef<NSURL>& url);

}  // namespace ZKFoundationExtensions
