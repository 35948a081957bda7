#pragma once

#include <filesystem>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

/// A text file with what the workbench tells about it.
class Document : public NSObject {
 public:
  /// Reads the file; null when it is not a text (it holds a NUL byte) or cannot be read.
  static NSRef<Document> read(const std::filesystem::path& file);

  explicit Document(NSRef<NSString> text);

  const NSRef<NSString>& text() const { return _text; }
  /// A fresh one for every reading.
  const NSRef<NSString>& identifier() const { return _identifier; }
  /// The first heading, or the first comment of a source, without its markers; empty without one.
  NSRef<NSString> title() const;
  /// The words of the text that begin with "0x" and go on in hexadecimal digits, each once, in
  /// their order.
  std::vector<NSRef<NSString>> hexadecimalWords() const;

  const NSPropertyTable& propertyTable() const override;

 private:
  NSRef<NSString> _text;
  NSRef<NSString> _identifier;
};
