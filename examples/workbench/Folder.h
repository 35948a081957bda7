#pragma once

#include "examples/workbench/Document.h"

#include <ostream>
#include <string_view>

#include <ZKFoundation/ZKFoundation.h>

/// A folder of the documents' tree. It owns its folders and documents; the folders know it.
///
/// With 3 for its contents they are copied, too; with any other copy spec, the copy shares them.
class Folder : public NSObject, public ZKDeepObjectCopyingProtocol {
 public:
  explicit Folder(NSRef<NSString> name) : _name(std::move(name)) {}

  /// Files the document under its path, making folders on the way.
  void file(const NSRef<Document>& document, std::u16string_view path);

  NSRef<NSObject> copyWithZone_refTable_copySpec_subCopySpec(NSZone* zone,
                                                             const NSRef<NSMapTable>& refTable,
                                                             ZKCopySpec copySpec,
                                                             ZKCopySpec subCopySpec) const override;
  ZKCopySpec copySpec(ZKCopySpec requested) const override { return requested; }

  /// Offers itself, the folder that it lies in, and all that it holds.
  void offerTo(ZKObjectVisitor& visitor, bool& stop);

 private:
  NSRef<NSString> _name;
  Folder* _parent = nullptr;
  NSRef<NSMutableOrderedSet> _contents = NSMake<NSMutableOrderedSet>();
};

/// Copies the tree and tells what a visitor meets in it, in the copy and in both.
void printCopying(std::ostream& out, const NSRef<Folder>& root);
