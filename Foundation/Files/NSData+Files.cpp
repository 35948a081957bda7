#include "Foundation/NSData.h"

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/Files/Workshop.h>
#include <Foundation/NSError.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace {

// Files are named by paths and by URLs.

template <class Name>
NSRef<NSData> read(const NSRef<Name>& file, NSRef<NSError>* error) {
  return NSReportFailure(error, NSFileUse::reading, [&] {
    const auto path = NSPathOfFile(file, NSFileUse::reading);
    return NSWithinMemory(path, [&] { return NSDataOfFile(path); });
  });
}

template <class Name>
bool write(const NSData& data, const NSRef<Name>& file, NSRef<NSError>* error) {
  return NSReportFailure(error, NSFileUse::writing, [&] {
    NSWriteFile(NSPathOfFile(file, NSFileUse::writing), data.bytes());
    return true;
  });
}

}  // namespace

NSRef<NSData> NSData::dataWithContentsOfFile_options_error(const NSRef<NSString>& path,
                                                           NSUInteger /*options*/,
                                                           NSRef<NSError>* error) {
  NSCheckArgument("dataWithContentsOfFile:options:error:", "path", path);
  return read(path, error);
}

NSRef<NSData> NSData::dataWithContentsOfURL_options_error(const NSRef<NSURL>& url,
                                                          NSUInteger /*options*/,
                                                          NSRef<NSError>* error) {
  NSCheckArgument("dataWithContentsOfURL:options:error:", "url", url);
  return read(url, error);
}

bool NSData::writeToFile_options_error(const NSRef<NSString>& path, NSUInteger /*options*/,
                                       NSRef<NSError>* error) const {
  NSCheckArgument("writeToFile:options:error:", "path", path);
  return write(*this, path, error);
}

bool NSData::writeToURL_options_error(const NSRef<NSURL>& url, NSUInteger /*options*/,
                                      NSRef<NSError>* error) const {
  NSCheckArgument("writeToURL:options:error:", "url", url);
  return write(*this, url, error);
}
