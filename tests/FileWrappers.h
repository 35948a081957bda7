#pragma once

#include "tests/Files.h"

// Documents in few words.

inline NSRef<NSFileWrapper> file(std::string_view bytes, const char* name = nullptr) {
  auto wrapper = NSMake<NSFileWrapper>(NSMake<NSData>(bytes));
  if (name != nullptr) wrapper->setPreferredFilename(string(name));
  return wrapper;
}

inline NSRef<NSFileWrapper> directory(std::initializer_list<NSRef<NSFileWrapper>> children,
                                      const char* name = nullptr) {
  auto wrapper = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  for (const auto& child : children) wrapper->addFileWrapper(child);
  if (name != nullptr) wrapper->setPreferredFilename(string(name));
  return wrapper;
}

inline NSRef<NSError> errorOfWriting(const NSRef<NSFileWrapper>& wrapper, const fs::path& path,
                                     NSUInteger options = 0) {
  NSRef<NSError> error;
  const bool isWritten = wrapper->writeToURL_options_originalContentsURL_error(
      fileURL(path), options, nullptr, &error);
  EXPECT_EQ(isWritten, !error);
  return error;
}

/// The code of the error, 0 for success.
inline NSInteger write(const NSRef<NSFileWrapper>& wrapper, const fs::path& path,
                       NSUInteger options = 0) {
  const auto error = errorOfWriting(wrapper, path, options);
  return error ? error->code() : 0;
}

inline NSRef<NSFileWrapper> read(const fs::path& path, NSInteger* code = nullptr) {
  NSRef<NSError> error;
  auto wrapper = NSFileWrapper::initWithURL_options_error(fileURL(path), 0, &error);
  EXPECT_EQ(!wrapper, error != nullptr);
  if (code != nullptr) *code = error ? error->code() : 0;
  return wrapper;
}

inline NSRef<NSFileWrapper> childOf(const NSRef<NSFileWrapper>& wrapper,
                                    const NSRef<NSString>& name) {
  return wrapper->fileWrappers()->objectForKey(name).as<NSFileWrapper>();
}

inline bool haveSameContents(const NSRef<NSFileWrapper>& a, const NSRef<NSFileWrapper>& b) {
  if (a->isDirectory() != b->isDirectory()) return false;
  if (!a->isDirectory()) return a->regularFileContents()->isEqual(b->regularFileContents());
  const auto others = b->fileWrappers();
  if (a->fileWrappers()->count() != others->count()) return false;
  for (const auto& entry : a->fileWrappers()) {
    const auto other = others->objectForKey(entry.first).as<NSFileWrapper>();
    if (!other || !haveSameContents(entry.second.as<NSFileWrapper>(), other)) return false;
  }
  return true;
}
