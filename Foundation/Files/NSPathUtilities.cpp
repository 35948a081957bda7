#include "Foundation/NSPathUtilities.h"

#include <Foundation/Files/FilePaths.h>

NSRef<NSString> NSHomeDirectory() {
  const std::string home = NSHomeDirectoryOf({});
  return NSMake<NSString>(home.empty() ? "/" : home);
}

NSRef<NSString> NSTemporaryDirectory() {
  const std::string bytes = NSEnvironmentPath("TMPDIR");
  return bytes.empty() || !NSIsWellFormedUTF8(bytes) ? u"/tmp"_ns : NSMake<NSString>(bytes);
}
