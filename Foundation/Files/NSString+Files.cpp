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

NSRef<NSString> readFile(const fs::path& path, const NSStringEncoding* known,
                         NSStringEncoding* used) {
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

void writeFile(const fs::path& path, std::u16string_view text, NSStringEncoding encoding) {
  const std::size_t fault = NSCountWellFormedUnits(text);
  if (fault != text.size()) {
    throw NSFileRefusal{NSFileWriteInapplicableStringEncodingError, NSMake<NSString>(path.native()),
                        "Half of a surrogate pair at unit " + std::to_string(fault)};
  }
  const std::string bytes = NSEncodedText(text, encoding);
  NSWriteFile(path, std::as_bytes(std::span(bytes)));
}

// Files are named by paths and by URLs.

template <class Name>
NSRef<NSString> read(const NSRef<Name>& file, const NSStringEncoding* known, NSStringEncoding* used,
                     NSRef<NSError>* error) {
  // An unknown one raises, whatever becomes of the file.
  if (known != nullptr) (void)NSNameOfEncoding(*known);
  return NSReportFailure(error, NSFileUse::reading, [&] {
    return readFile(NSPathOfFile(file, NSFileUse::reading), known, used);
  });
}

template <class Name>
bool write(const NSString& text, const NSRef<Name>& file, NSStringEncoding encoding,
           NSRef<NSError>* error) {
  return NSReportFailure(error, NSFileUse::writing, [&] {
    writeFile(NSPathOfFile(file, NSFileUse::writing), text.view(), encoding);
    return true;
  });
}

}  // namespace

NSRef<NSString> NSString::stringWithContentsOfFile_usedEncoding_error(const NSRef<NSString>& path,
                                                                      NSStringEncoding* used,
                                                                      NSRef<NSError>* error) {
  NSCheckArgument("stringWithContentsOfFile:usedEncoding:error:", "path", path);
  return read(path, nullptr, used, error);
}

NSRef<NSString> NSString::stringWithContentsOfURL_usedEncoding_error(const NSRef<NSURL>& url,
                                                                     NSStringEncoding* used,
                                                                     NSRef<NSError>* error) {
  NSCheckArgument("stringWithContentsOfURL:usedEncoding:error:", "url", url);
  return read(url, nullptr, used, error);
}

NSRef<NSString> NSString::stringWithContentsOfFile_encoding_error(const NSRef<NSString>& path,
                                                                  NSStringEncoding encoding,
                                                                  NSRef<NSError>* error) {
  NSCheckArgument("stringWithContentsOfFile:encoding:error:", "path", path);
  return read(path, &encoding, nullptr, error);
}

NSRef<NSString> NSString::stringWithContentsOfURL_encoding_error(const NSRef<NSURL>& url,
                                                                 NSStringEncoding encoding,
                                                                 NSRef<NSError>* error) {
  NSCheckArgument("stringWithContentsOfURL:encoding:error:", "url", url);
  return read(url, &encoding, nullptr, error);
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
  NSCheckArgument("writeToFile:atomically:encoding:error:", "path", path);
  return write(*this, path, encoding, error);
}

bool NSString::writeToURL_atomically_encoding_error(const NSRef<NSURL>& url, bool /*atomically*/,
                                                    NSStringEncoding encoding,
                                                    NSRef<NSError>* error) const {
  NSCheckArgument("writeToURL:atomically:encoding:error:", "url", url);
  return write(*this, url, encoding, error);
}
