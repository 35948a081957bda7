#pragma once

#include <filesystem>
#include <memory>

#include <Foundation/NSClass.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Passkey.h>

class NSLocalizedStrings;
class NSString;

/// A program or shared library with its resources. There is one bundle for each, which lives as
/// long as the process; all classes that it defines have the same.
class NS_EXPORT NSBundle : public NSObject {
 public:
  /// Gives the bundle of the running program.
  [[nodiscard]] static NSRef<NSBundle> mainBundle();
  /// Gives the bundle of the program or library that defines the class. From any thread.
  [[nodiscard]] static NSRef<NSBundle> bundleForClass(NSClass aClass);

  /// Gives the program or library itself, as an absolute path without symbolic links.
  [[nodiscard]] NSRef<NSString> executablePath() const;
  /// Gives the folder that holds it.
  [[nodiscard]] NSRef<NSString> bundlePath() const;
  /// Gives the folder of its resources: beside it, named like it up to the first ".", a library
  /// without the leading "lib", with ".resources" appended ("editor.resources",
  /// "ZKFoundation.resources"). Where there is no such folder, `bundlePath`.
  [[nodiscard]] NSRef<NSString> resourcePath() const;

  /// Gives the text for the key in a table of localized strings, a file "<table>.strings" in UTF-8
  /// or UTF-16 with lines `"key" = "value";`. It is looked for in the resource folder: for each of
  /// the user's languages, the best one first, in "de-CH.lproj", "de_CH.lproj" and then "de.lproj",
  /// and at last in the resource folder itself. The first that is there counts; it is read once.
  ///
  /// Without an entry the answer is `value`, unless that is nil or empty, then the key; for a nil
  /// key `value`, or the empty string. A nil or empty table is "Localizable". Of a table with
  /// faults the readable entries are there, and one log line names the first. From any thread.
  [[nodiscard]] NSRef<NSString> localizedStringForKey_value_table(
      const NSRef<NSString>& key, const NSRef<NSString>& value, const NSRef<NSString>& table) const;

  /// "NSBundle <executable path>"
  [[nodiscard]] NSRef<NSString> description() const override;
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

  NSBundle(NSPasskey<NSBundle> key, std::filesystem::path executable);
  NSBundle(const NSBundle&) = delete;
  ~NSBundle() override;

 private:
  static NSRef<NSBundle> bundleForFile(const std::filesystem::path& file, const void* address);

  std::filesystem::path _executable;
  std::unique_ptr<NSLocalizedStrings> _tables;
};
