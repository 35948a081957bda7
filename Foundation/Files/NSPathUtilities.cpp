#include "Foundation/NSPathUtilities.h"

#include <Foundation/Files/FilePaths.h>

NSRef<NSString> NSHomeDirectory() {
  const std::string home = NSHomeDirectoryOf({});
  return NSMake<NSString>(home.empty() ? "/" : home);
}

NSRef<NSString> NSTemporaryDirectory() {
  const std::string bytes = NSEnvironmentPath("TMPDIR");
  auto directory = NSMake<NSString>(bytes);
  const bool isText = !bytes.empty() && directory->utf8() == bytes;
  return isText ? directory : u"/tmp"_ns;
}
