#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSString.h>

/// Gives the user's home directory: HOME, or if that is no absolute path what the system's list of
/// users says. Where neither is there, "/".
[[nodiscard]] NS_EXPORT NSRef<NSString> NSHomeDirectory();

/// Gives the directory for temporary files: TMPDIR, if an absolute path in UTF-8, else "/tmp".
[[nodiscard]] NS_EXPORT NSRef<NSString> NSTemporaryDirectory();
