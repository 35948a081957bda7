#pragma once

#include <Foundation/NSExport.h>
#include <Foundation/NSRef.h>

class NSString;

/// The user's home directory: HOME, or if that is not set what the system's list of users says.
/// Where neither is there, "/".
NS_EXPORT NSRef<NSString> NSHomeDirectory();

/// The directory for temporary files: TMPDIR, if it is an absolute path, else "/tmp". Whether it
/// exists is not asked.
NS_EXPORT NSRef<NSString> NSTemporaryDirectory();
