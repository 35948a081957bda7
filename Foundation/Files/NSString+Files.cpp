#include "Foundation/NSString.h"

#include <cstddef>
#include <span>
#include <string>
#include <utility>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/Files/Workshop.h>
#include <Foundation/NSData.h>
#include <Foundation/NSError.h>
#include <Foundation/NSException.h>
#include <Foundation/NSStringEncoding.h>
#include <Foundation/NSURL.h>

namespace fs = std::filesystem;

namespace {

NSRef<NSString> stringOf(std::string_view bytes, NSStringEncoding encoding,
                         const NSRef<NSString>& path) {
  NSUnitBuffer units;
  const std::size_t fault = NSAppendDecoded(bytes, encoding, units);
  if (fault != bytes.size()) {
    const std::string name(NSNameOfEncoding(encoding));
    throw NSFileRefusal{NSFileReadInapplicableStringEncodingError, path,
                        "Not " + name + " at byte " + std::to_string(fault)};
  }
  units.shrink();
  return NSMake<NSString>(std::move(units));
}

// The mark decides without a known encoding.
NSRef<NSString> stringOf(std::string_view bytes, const NSStringEncoding* known,
                         NSStringEncoding* used, const NSRef<NSString>& path) {
  const NSStringEncoding encoding = known != nullptr ? *known : NSDetectEncoding(bytes);
  auto string = stringOf(bytes, encoding, path);
  if (used != nullptr) *used = encoding;
  return string;
}

NSRef<NSString> read(const fs::path& path, const NSStringEncoding* known, NSStringEncoding* used) {
  return NSWithinMemory(path, [&] {
    // Unlike a vector it does not fill memory that is about to be written.
    NSUnitBuffer memory;
    const std::size_t length = NSReadFile(path, 0, [&](std::size_t size) {
      memory.extend((size + 1) / 2 - memory.size());
      return reinterpret_cast<std::byte*>(memory.data());
    });
    const std::string_view bytes(reinterpret_cast<const char*>(memory.data()), length);
    return stringOf(bytes, known, used, NSMake<NSString>(path.native()));
  });
}

NSRef<NSString> readFile(const NSRef<NSString>& path, const NSStringEncoding* known,
                         NSStringEncoding* used, NSRef<NSError>* error, const char* operation) {
  if (!path) NSRaiseNilArgument("path", operation);
  return NSReportFailure(error, NSFileUse::reading,
                         [&] { return read(NSPathOfText(path, NSFileUse::reading), known, used); });
}

NSRef<NSString> readURL(const NSRef<NSURL>& url, const NSStringEncoding* known,
                        NSStringEncoding* used, NSRef<NSError>* error, const char* operation) {
  if (!url) NSRaiseNilArgument("url", operation);
  return NSReportFailure(error, NSFileUse::reading,
                         [&] { return read(NSPathOfFile(url, NSFileUse::reading), known, used); });
}

void write(const fs::path& path, std::u16string_view text, NSStringEncoding encoding) {
  const std::size_t fault = NSCountWellFormedUnits(text);
  if (fault != text.size()) {
    throw NSFileRefusal{NSFileWriteInapplicableStringEncodingError, NSMake<NSString>(path.native()),
                        "Half of a surrogate pair at unit " + std::to_string(fault)};
  }
  const std::string bytes = NSEncodedText(text, encoding);
  NSWriteFile(path, std::as_bytes(std::span(bytes)));
}

}  // namespace

NSRef<NSString> NSString::stringWithContentsOfFile_usedEncoding_error(const NSRef<NSString>& path,
                                                                      NSStringEncoding* used,
                                                                      NSRef<NSError>* error) {
  return readFile(path, nullptr, used, error, "stringWithContentsOfFile:usedEncoding:error:");
}

NSRef<NSString> NSString::stringWithContentsOfURL_usedEncoding_error(const NSRef<NSURL>& url,
                                                                     NSStringEncoding* used,
                                                                     NSRef<NSError>* error) {
  return readURL(url, nullptr, used, error, "stringWithContentsOfURL:usedEncoding:error:");
}

NSRef<NSString> NSString::stringWithContentsOfFile_encoding_error(const NSRef<NSString>& path,
                                                                  NSStringEncoding encoding,
                                                                  NSRef<NSError>* error) {
  return readFile(path, &encoding, nullptr, error, "stringWithContentsOfFile:encoding:error:");
}

NSRef<NSString> NSString::stringWithContentsOfURL_encoding_error(const NSRef<NSURL>& url,
                                                                 NSStringEncoding encoding,
                                                                 NSRef<NSError>* error) {
  return readURL(url, &encoding, nullptr, error, "stringWithContentsOfURL:encoding:error:");
}

NSRef<NSString> NSString::stringWithData_usedEncoding_error(const NSRef<NSData>& data,
                                                            NSStringEncoding* used,
                                                            NSRef<NSError>* error) {
  if (!data) NSRaiseNilArgument("data", "stringWithData:usedEncoding:error:");
  return NSReportFailure(error, NSFileUse::reading,
                         [&] { return stringOf(data->view(), nullptr, used, nullptr); });
}

bool NSString::writeToFile_atomically_encoding_error(const NSRef<NSString>& path,
                                                     bool /*atomically*/, NSStringEncoding encoding,
                                                     NSRef<NSError>* error) const {
  if (!path) NSRaiseNilArgument("path", "writeToFile:atomically:encoding:error:");
  return NSReportFailure(error, NSFileUse::writing, [&] {
    write(NSPathOfText(path, NSFileUse::writing), view(), encoding);
    return true;
  });
}

bool NSString::writeToURL_atomically_encoding_error(const NSRef<NSURL>& url, bool /*atomically*/,
                                                    NSStringEncoding encoding,
                                                    NSRef<NSError>* error) const {
  if (!url) NSRaiseNilArgument("url", "writeToURL:atomically:encoding:error:");
  return NSReportFailure(error, NSFileUse::writing, [&] {
    write(NSPathOfFile(url, NSFileUse::writing), view(), encoding);
    return true;
  });
}
