#pragma once

#include <optional>

#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

/// Options of writing; a set of bits.
enum NSFileWrapperWritingOptions : NSUInteger {
  /// Every write is atomic, with and without it.
  NSFileWrapperWritingAtomic = 1,
  /// The wrappers get the names under which they were written as their `filename`.
  NSFileWrapperWritingWithNameUpdating = 2,
};

/// A file or a directory tree in memory: a document that is read, changed and written as a whole.
///
/// A directory knows its children by name. One wrapper may be the child of several directories, but
/// none is within itself. What asks a file for its children, or a directory for its bytes, raises
/// `NSInternalInconsistencyException`; nil as contents, new child or URL raises
/// `NSInvalidArgumentException`. A wrapper belongs to one thread at a time.
///
/// Keeps the nine permission bits, but no owners, extended attributes or further hard links.
class NS_EXPORT NSFileWrapper : public NSObject {
 public:
  /// Makes a regular file.
  explicit NSFileWrapper(const NSRef<NSData>& contents);
  /// Makes a directory with these children by name; nil has none. Children without a preferred name
  /// get the one by which they are entered.
  explicit NSFileWrapper(const NSRef<NSDictionary>& childrenByName);

  /// Reads what stands at the URL, with all that is in it. Nil, and the reason in `*error` unless
  /// that is null, for what cannot be read: besides what the system refuses, a URL that is no file
  /// URL, a name that is not UTF-8, and anything but regular files and directories. Only the URL
  /// itself may be a symbolic link; the names are then those of what it refers to. A document that
  /// is written meanwhile is read as it was before or is afterwards. There are no options.
  [[nodiscard]] static NSRef<NSFileWrapper> initWithURL_options_error(const NSRef<NSURL>& url,
                                                                      NSUInteger options,
                                                                      NSRef<NSError>* error);

  /// Writes the file, or the directory with all that is in it, in the place of what stands at the
  /// URL (of what it refers to, if it is a symbolic link). False, and the reason in `*error`, when
  /// that fails; then the place is as it was before.
  ///
  /// It is atomic: a hidden folder beside the place takes all of it first, and only when it is on
  /// the disk it changes places with what was there. (On a file system without such an exchange
  /// there is nothing at the place of a directory for a moment.) A directory also replaces a
  /// regular file, as a document may become one. A regular file in the place of a directory is
  /// refused, and both are in that of a pipe, device or socket. So is a name that no file can have
  /// ("a/b", ".."), and that of a place that ends with "." or ".." or is not UTF-8. What has
  /// permissions keeps them; a document without has those of the one before, if that is of the same
  /// kind. `NSFileWrapperWritingWithNameUpdating` is the only option with a meaning. The URL of the
  /// original means nothing.
  bool writeToURL_options_originalContentsURL_error(const NSRef<NSURL>& url, NSUInteger options,
                                                    const NSRef<NSURL>& original,
                                                    NSRef<NSError>* error);

  [[nodiscard]] bool isRegularFile() const noexcept { return _contents.get() != nullptr; }
  [[nodiscard]] bool isDirectory() const noexcept { return _children.get() != nullptr; }

  /// Gives the name under which it would like to be added, or nil.
  [[nodiscard]] NSRef<NSString> preferredFilename() const noexcept { return _preferredFilename; }
  /// Sets that name. The name by which a directory already has it stays.
  void setPreferredFilename(const NSRef<NSString>& name);
  /// Gives the name that it had when it was read, or written with name updating; nil before.
  [[nodiscard]] NSRef<NSString> filename() const noexcept { return _filename; }
  void setFilename(const NSRef<NSString>& name);
  /// Gives `NSFilePosixPermissions`, if it has any: those that were read or set.
  [[nodiscard]] NSRef<NSDictionary> fileAttributes() const;
  /// Sets the permissions. Without a number of them it will have those of new files.
  void setFileAttributes(const NSRef<NSDictionary>& attributes);

  /// Gives the bytes of a regular file.
  [[nodiscard]] NSRef<NSData> regularFileContents() const;

  /// Gives the children by name.
  [[nodiscard]] NSRef<NSDictionary> fileWrappers() const;
  /// Adds a child by its preferred name, or where another has that by its `unusedFilename`. A child
  /// without one gets "Untitled", or the unused name for that. Gives the name by which the
  /// directory has it. One that holds this, or is it, raises `NSInvalidArgumentException`.
  NSRef<NSString> addFileWrapper(const NSRef<NSFileWrapper>& child);
  /// Makes a regular file with that preferred name and adds it, as `addFileWrapper` does.
  NSRef<NSString> addRegularFileWithContents_preferredFilename(const NSRef<NSData>& contents,
                                                               const NSRef<NSString>& name);
  /// Removes the child under all its names; does nothing for a wrapper that is no child.
  void removeFileWrapper(const NSRef<NSFileWrapper>& child);
  /// Gives a name by which the directory has the child; nil for a wrapper that is none.
  [[nodiscard]] NSRef<NSString> keyForFileWrapper(const NSRef<NSFileWrapper>& child) const;
  /// Gives the name, if no child has it. Otherwise appends " 2" before the extension, then " 3" and
  /// so on until no child has it: "a.txt", "a 2.txt", "a 2 3.txt".
  [[nodiscard]] NSRef<NSString> unusedFilename(const NSRef<NSString>& name) const;

  /// "NSFileWrapper notes.txt (regular file of 12 bytes)", "NSFileWrapper (directory of 3)"
  [[nodiscard]] NSRef<NSString> description() const override;
  /// "preferredFilename", "filename" and "fileAttributes" besides what every object publishes.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

 private:
  [[nodiscard]] const NSMutableDictionary& children(const char* operation) const;
  NSMutableDictionary& children(const char* operation);
  [[nodiscard]] bool contains(const NSFileWrapper* wrapper) const;
  void setWrittenName(const NSRef<NSString>& name);

  // One of these two is nil.
  NSRef<NSData> _contents;
  NSRef<NSMutableDictionary> _children;
  NSRef<NSString> _preferredFilename;
  NSRef<NSString> _filename;
  std::optional<unsigned> _permissions;
};
