#pragma once

#include <filesystem>

#include <Foundation/NSClass.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

class NSString;

/// A program or shared library with its resources. There is one bundle for each, which lives as
/// long as the process; all classes that it defines have the same.
class NS_EXPORT NSBundle : public NSObject {
 public:
  /// The bundle of the running program.
  static NSRef<NSBundle> mainBundle();
  /// The bundle of the program or library that defines the class. May be called from any thread.
  static NSRef<NSBundle> bundleForClass(NSClass aClass);

  /// The program or library itself, as an absolute path without symbolic links.
  NSRef<NSString> executablePath() const;
  /// The folder that holds it.
  NSRef<NSString> bundlePath() const;
  /// The folder of its resources: beside it, named like it up to the first "." and, of a
  /// library, without the leading "lib", with ".resources" behind ("editor.resources",
  /// "ZKFoundation.resources"). Where there is no such folder, `bundlePath`.
  NSRef<NSString> resourcePath() const;

  /// "NSBundle <executable path>"
  NSRef<NSString> description() const override;
  const NSPropertyTable& propertyTable() const override;

  /// Only for the two functions above.
  class Key {
    friend class NSBundle;
    Key() = default;
  };
  NSBundle(Key /*key*/, std::filesystem::path executable) : _executable(std::move(executable)) {}
  NSBundle(const NSBundle&) = delete;

 private:
  static NSRef<NSBundle> bundleForFile(const std::filesystem::path& file, const void* address);

  std::filesystem::path _executable;
};
