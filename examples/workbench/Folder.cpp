#include "examples/workbench/Folder.h"

using namespace ZKFoundationExtensions;

namespace {

NSRef<NSSet> objectsReachedFrom(const NSRef<Folder>& folder) {
  const auto visitor = NSMake<ZKGenericVisitor>();
  bool stop = false;
  folder->offerTo(*visitor, stop);
  return visitor->visitedObjects();
}

}  // namespace

void Folder::file(const NSRef<Document>& document, std::u16string_view path) {
  const std::size_t slash = path.find(u'/');
  if (slash == std::u16string_view::npos) {
    _contents->addObject(document);
    return;
  }
  const auto name = path.substr(0, slash);
  for (const auto& item : _contents) {
    auto* const folder = item.cast<Folder>();
    if (folder != nullptr && folder->_name == name) {
      return folder->file(document, path.substr(slash + 1));
    }
  }
  const auto folder = NSMake<Folder>(NSMake<NSString>(name));
  folder->_parent = this;
  _contents->addObject(folder);
  folder->file(document, path.substr(slash + 1));
}

NSRef<NSObject> Folder::copyWithZone_refTable_copySpec_subCopySpec(
    NSZone* zone, const NSRef<NSMapTable>& refTable, ZKCopySpec /*copySpec*/,
    ZKCopySpec subCopySpec) const {
  auto copy = NSMake<Folder>(_name);
  refTable->setObject_forKey(copy, self());
  if (_parent != nullptr) copy->_parent = refTable->objectForKey(_parent->self()).cast<Folder>();
  for (const auto& item : _contents) {
    const auto* const copyable = dynamic_cast<const ZKDeepObjectCopyingProtocol*>(item.get());
    auto copied = refTable->objectForKey(item);
    if (!copied && copyable != nullptr && subCopySpec == 3) {
      copied = copyable->copyWithZone_refTable_copySpec_subCopySpec(zone, refTable, subCopySpec,
                                                                    subCopySpec);
    }
    copy->_contents->addObject(copied ? copied : item);
  }
  return copy;
}

void Folder::offerTo(ZKObjectVisitor& visitor, bool& stop) {
  if (stop || !visitor.shouldVisitObject(self())) return;
  visitor.visitObject_stop(self(), stop);
  if (_parent != nullptr) _parent->offerTo(visitor, stop);
  for (const auto& item : _contents) {
    if (auto* const folder = item.cast<Folder>()) {
      folder->offerTo(visitor, stop);
    } else {
      item.as<Document>()->offerTo(visitor, stop);
    }
  }
}

void printCopying(std::ostream& out, const NSRef<Folder>& root) {
  const auto originals = objectsReachedFrom(root);
  const auto copies = objectsReachedFrom(copyWithCopySpec(root, 7).as<Folder>());
  const auto isShared = NSPredicate::predicateWithBlock(
      [&](const NSRef<NSObject>& object) { return originals->member(object).is(object); });
  const auto shared = copies->filteredSetUsingPredicate(isShared);
  out << "  visited " << originals->count() << " objects, in the copy " << copies->count()
      << ", of which " << shared->count() << " are shared with the original\n";
}
