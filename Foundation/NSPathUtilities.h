#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSString.h>

/// The user's home directory: HOME, or if that is no absolute path what the system's list of users
/// says. Where neither is there, "/".
NS_EXPORT NSRef<NSString> NSHomeDirectory();

/// The directory for temporary files: TMPDIR, if it is an absolute path in UTF-8, else "/tmp".
/// Whether it exists is not asked.
NS_EXPORT NSRef<NSString> NSTemporaryDirectory();
