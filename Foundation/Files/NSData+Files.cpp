#include "Foundation/NSData.h"

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/Files/Workshop.h>
#include <Foundation/NSError.h>
#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace {

NSRef<NSData> read(const std::filesystem::path& path) {
  return NSWithinMemory(path, [&] { return NSDataOfFile(path); });
}

}  // namespace

NSRef<NSData> NSData::dataWithContentsOfFile_options_error(const NSRef<NSString>& path,
                                                           NSUInteger /*options*/,
                                                           NSRef<NSError>* error) {
  if (!path) NSRaiseNilArgument("path", "dataWithContentsOfFile:options:error:");
  return NSReportFailure(error, NSFileUse::reading,
                         [&] { return read(NSPathOfText(path, NSFileUse::reading)); });
}

NSRef<NSData> NSData::dataWithContentsOfURL_options_error(const NSRef<NSURL>& url,
                                                          NSUInteger /*options*/,
                                                          NSRef<NSError>* error) {
  if (!url) NSRaiseNilArgument("url", "dataWithContentsOfURL:options:error:");
  return NSReportFailure(error, NSFileUse::reading,
                         [&] { return read(NSPathOfFile(url, NSFileUse::reading)); });
}

bool NSData::writeToFile_options_error(const NSRef<NSString>& path, NSUInteger /*options*/,
                                       NSRef<NSError>* error) const {
  if (!path) NSRaiseNilArgument("path", "writeToFile:options:error:");
  return NSReportFailure(error, NSFileUse::writing, [&] {
    NSWriteFile(NSPathOfText(path, NSFileUse::writing), bytes());
    return true;
  });
}

bool NSData::writeToURL_options_error(const NSRef<NSURL>& url, NSUInteger /*options*/,
                                      NSRef<NSError>* error) const {
  if (!url) NSRaiseNilArgument("url", "writeToURL:options:error:");
  return NSReportFailure(error, NSFileUse::writing, [&] {
    NSWriteFile(NSPathOfFile(url, NSFileUse::writing), bytes());
    return true;
  });
}
