#include "Foundation/NSFileWrapper.h"

#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include <Foundation/Files/FileError.h>
#include <Foundation/Files/FileWrapperReading.h>
#include <Foundation/Files/FileWrapperWriting.h>
#include <Foundation/Files/Posix.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSException.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

namespace {

constexpr mode_t permissionBits = 0777;

[[noreturn]] void raiseWrongKind(const char* operation, const char* kind) {
  NSException::raise(NSInternalInconsistencyException,
                     std::string("the file wrapper is no ") + kind + " (in '" + operation + "')");
}

NSRef<NSString> copyOf(const NSRef<NSString>& name) { return name ? name->copy() : nullptr; }

}  // namespace

NSFileWrapper::NSFileWrapper(const NSRef<NSData>& contents) : _contents(contents) {
  if (!contents) NSRaiseNilArgument("contents", "initRegularFileWithContents:");
}

NSFileWrapper::NSFileWrapper(const NSRef<NSDictionary>& childrenByName)
    : _children(NSMake<NSMutableDictionary>()) {
  if (!childrenByName) return;
  for (const auto& entry : childrenByName) {
    if (!entry.first.cast<NSString>() || !entry.second.cast<NSFileWrapper>()) {
      NSException::raise(NSInvalidArgumentException,
                         "not all are file wrappers by name "
                         "(in 'initDirectoryWithFileWrappers:')");
    }
    _children->setObject_forKey(entry.second, entry.first);
  }
  for (const auto& entry : childrenByName) {
    auto* const child = entry.second.cast<NSFileWrapper>();
    const bool hasName = !NSViewOf(child->_preferredFilename).empty();
    if (!hasName) child->setPreferredFilename(entry.first.as<NSString>());
  }
}

NSRef<NSFileWrapper> NSFileWrapper::initWithURL_options_error(const NSRef<NSURL>& url,
                                                              NSUInteger /*options*/,
                                                              NSRef<NSError>* error) {
  if (!url) NSRaiseNilArgument("url", "initWithURL:options:error:");
  return NSReportFailure(error, NSFileUse::reading,
                         [&] { return NSReadFileTree(NSPathOfFile(url, NSFileUse::reading)); });
}

bool NSFileWrapper::writeToURL_options_originalContentsURL_error(const NSRef<NSURL>& url,
                                                                 NSUInteger options,
                                                                 const NSRef<NSURL>& /*original*/,
                                                                 NSRef<NSError>* error) {
  if (!url) NSRaiseNilArgument("url", "writeToURL:options:originalContentsURL:error:");
  const auto name = NSReportFailure(error, NSFileUse::writing, [&] {
    return NSWriteFileTree(*this, NSPathOfFile(url, NSFileUse::writing));
  });
  if (name && (options & NSFileWrapperWritingWithNameUpdating) != 0) setWrittenName(name);
  return name != nullptr;
}

void NSFileWrapper::setWrittenName(const NSRef<NSString>& name) {
  setFilename(name);
  if (!isDirectory()) return;
  for (const auto& entry : fileWrappers()) {
    entry.second.as<NSFileWrapper>()->setWrittenName(entry.first.as<NSString>());
  }
}

void NSFileWrapper::setPreferredFilename(const NSRef<NSString>& name) {
  _preferredFilename = copyOf(name);
}

void NSFileWrapper::setFilename(const NSRef<NSString>& name) { _filename = copyOf(name); }

NSRef<NSDictionary> NSFileWrapper::fileAttributes() const {
  if (!_permissions) return NSMake<NSDictionary>();
  return NSMake<NSDictionary>({{NSFilePosixPermissions(), NSMake<NSNumber>(*_permissions)}});
}

void NSFileWrapper::setFileAttributes(const NSRef<NSDictionary>& attributes) {
  _permissions = NSPermissionsIn(attributes);
  if (_permissions) *_permissions &= permissionBits;
}

NSRef<NSData> NSFileWrapper::regularFileContents() const {
  if (!_contents) raiseWrongKind("regularFileContents", "regular file");
  return _contents;
}

const NSMutableDictionary& NSFileWrapper::children(const char* operation) const {
  if (!_children) raiseWrongKind(operation, "directory");
  return *_children;
}

NSMutableDictionary& NSFileWrapper::children(const char* operation) {
  return const_cast<NSMutableDictionary&>(std::as_const(*this).children(operation));
}

NSRef<NSDictionary> NSFileWrapper::fileWrappers() const {
  return children("fileWrappers").copy().as<NSDictionary>();
}

// Each directory is looked at once, however often it is a child.
bool NSFileWrapper::contains(const NSFileWrapper* wrapper) const {
  std::vector<const NSFileWrapper*> open = {this};
  std::unordered_set<const NSFileWrapper*> seen = {this};
  while (!open.empty()) {
    const NSFileWrapper* const at = open.back();
    open.pop_back();
    if (at == wrapper) return true;
    if (!at->isDirectory()) continue;
    for (const auto& entry : at->_children) {
      const auto* const child = entry.second.cast<NSFileWrapper>();
      if (child->isDirectory() && seen.insert(child).second) open.push_back(child);
    }
  }
  return false;
}

NSRef<NSString> NSFileWrapper::addFileWrapper(const NSRef<NSFileWrapper>& child) {
  auto& children = this->children("addFileWrapper:");
  if (!child) NSRaiseNilArgument("child", "addFileWrapper:");
  if (child->contains(this)) {
    NSException::raise(NSInvalidArgumentException,
                       "the child contains the directory (in 'addFileWrapper:')");
  }
  const bool hasName = !NSViewOf(child->_preferredFilename).empty();
  auto name = unusedFilename(hasName ? child->_preferredFilename : u"Untitled"_ns);
  if (!hasName) child->setPreferredFilename(name);
  children.setObject_forKey(child, name);
  return name;
}

NSRef<NSString> NSFileWrapper::addRegularFileWithContents_preferredFilename(
    const NSRef<NSData>& contents, const NSRef<NSString>& name) {
  const auto file = NSMake<NSFileWrapper>(contents);
  file->setPreferredFilename(name);
  return addFileWrapper(file);
}

void NSFileWrapper::removeFileWrapper(const NSRef<NSFileWrapper>& child) {
  auto& children = this->children("removeFileWrapper:");
  while (const auto name = keyForFileWrapper(child)) children.removeObjectForKey(name);
}

NSRef<NSString> NSFileWrapper::keyForFileWrapper(const NSRef<NSFileWrapper>& child) const {
  for (const auto& entry : children("keyForFileWrapper:")) {
    if (entry.second.is(child)) return entry.first.as<NSString>();
  }
  return nullptr;
}

NSRef<NSString> NSFileWrapper::unusedFilename(const NSRef<NSString>& name) const {
  const auto& children = this->children("unusedFilename:");
  const auto extension = name->pathExtension();
  const bool hasExtension = extension->length() != 0;
  auto result = name->copy();
  for (NSUInteger k = 2; children.objectForKey(result); ++k) {
    // The number stands after those before it.
    if (hasExtension) result = result->stringByDeletingPathExtension();
    result = NSString::stringWithFormat(u"%@ %ld"_ns, result, k);
    if (hasExtension) result = result->stringByAppendingPathExtension(extension);
  }
  return result;
}

NSRef<NSString> NSFileWrapper::description() const {
  const auto kind =
      isDirectory()
          ? NSString::stringWithFormat(u"(directory of %lu)"_ns, _children->count())
          : NSString::stringWithFormat(u"(regular file of %lu bytes)"_ns, _contents->length());
  const auto& name = _preferredFilename;
  return name ? NSString::stringWithFormat(u"NSFileWrapper %@ %@"_ns, name, kind)
              : NSString::stringWithFormat(u"NSFileWrapper %@"_ns, kind);
}

const NSPropertyTable& NSFileWrapper::propertyTable() const {
  static const NSPropertyTable table({{u"preferredFilename", &NSFileWrapper::preferredFilename},
                                      {u"filename", &NSFileWrapper::filename},
                                      {u"fileAttributes", &NSFileWrapper::fileAttributes}},
                                     NSObject::propertyTable());
  return table;
}
