#pragma once

#include <filesystem>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

/// A text file with what the workbench tells about it. Its copies share the text.
class Document : public NSObject, public ZKDeepObjectCopyingProtocol {
 public:
  /// Reads the file; null when it is not a text (it holds a NUL byte) or cannot be read.
  static NSRef<Document> read(const std::filesystem::path& file, NSRef<NSString> name);

  Document(NSRef<NSString> name, NSRef<NSString> text, std::size_t byteCount);

  /// The name under which it is shown.
  const NSRef<NSString>& name() const { return _name; }
  const NSRef<NSString>& text() const { return _text; }
  /// The size of the file.
  std::size_t byteCount() const { return _byteCount; }
  /// A fresh one for every reading.
  const NSRef<NSString>& identifier() const { return _identifier; }
  /// The first heading, or the first comment of a source, without its markers; empty without one.
  const NSRef<NSString>& title() const { return _title; }
  /// The order of the titles, without regard to letter case.
  NSComparisonResult compareTitle(const Document& other) const;
  /// The words of the text that begin with "0x" and go on in hexadecimal digits, each once, in
  /// their order.
  std::vector<NSRef<NSString>> hexadecimalWords() const;

  /// The numbers of the lines, from 1, that hold the term, without regard to letter case.
  NSRef<NSIndexSet> linesWith(const NSRef<NSString>& term) const;

  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(NSZone* zone,
                                                             const NSRef<NSMapTable>& refTable,
                                                             ZKCopySpec copySpec,
                                                             ZKCopySpec subCopySpec) const override;
  ZKCopySpec copySpec(ZKCopySpec requested) const override { return requested; }
  /// Offers itself and its text.
  void offerTo(ZKObjectVisitor& visitor, bool& stop);

  const NSPropertyTable& propertyTable() const override;

 private:
  NSRef<NSString> _name;
  NSRef<NSString> _text;
  std::size_t _byteCount;
  NSRef<NSString> _identifier;
  NSRef<NSString> _title;
};
