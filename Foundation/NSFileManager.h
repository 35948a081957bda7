#pragma once

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

/// A directory that every system has. Of other numbers there is none.
enum NSSearchPathDirectory : NSUInteger {
  NSUserDirectory = 7,
  NSDocumentDirectory = 9,
  NSDesktopDirectory = 12,
  NSCachesDirectory = 13,
  NSApplicationSupportDirectory = 14,
  NSDownloadsDirectory = 15,
  NSMoviesDirectory = 17,
  NSMusicDirectory = 18,
  NSPicturesDirectory = 19,
  NSSharedPublicDirectory = 21,
};

/// Whose directory it is.
enum NSSearchPathDomainMask : NSUInteger {
  /// The user's
  NSUserDomainMask = 1,
  /// The machine's, for all users
  NSLocalDomainMask = 2,
};

/// Options of listing a directory.
enum NSDirectoryEnumerationOptions : NSUInteger {
  /// Leaves out names that begin with "."
  NSDirectoryEnumerationSkipsHiddenFiles = 4,
};

// Keys of attributes.

/// Key of the kind of file, one of the strings below.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFileType();
/// Key of the number of bytes.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFileSize();
/// Key of the permission bits as chmod takes them, a number such as 0755.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFilePosixPermissions();

[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFileTypeDirectory();
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFileTypeRegular();
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFileTypeSymbolicLink();
/// A socket, pipe or device.
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSFileTypeUnknown();

/// Asks and changes the file system. It has no state: any number of threads may use one.
///
/// An operation that fails gives nil or false and stores the reason in `*error`: an error of
/// `NSCocoaErrorDomain`, of a file with its path, and with the `errno` as underlying error if the
/// system refused. `error` may be null. A nil URL or path raises `NSInvalidArgumentException`.
class NS_EXPORT NSFileManager : public NSObject {
 public:
  ~NSFileManager() override;

  /// Gives the file manager that all may share.
  [[nodiscard]] static const NSRef<NSFileManager>& defaultManager();

  /// Gives the URL of a standard directory, which need not exist; with `create` it is made.
  ///
  /// | directory | of the user | of the machine |
  /// |---|---|---|
  /// | users | | /home |
  /// | application support | XDG_DATA_HOME, else ~/.local/share | /usr/local/share |
  /// | caches | XDG_CACHE_HOME, else ~/.cache | /var/cache |
  /// | all others | `user-dirs.dirs`, else a folder in ~ | |
  ///
  /// The folders in ~ are Documents, Desktop, Downloads, Videos, Music, Pictures and Public.
  /// Of the environment these variables count, the XDG ones if they are absolute paths, and HOME
  /// for "~", else the system's list of users; `user-dirs.dirs` is read from XDG_CONFIG_HOME, else
  /// from ~/.config. All are read anew each time. Other directories and domains, and several
  /// domains at once, give nil with `NSFileReadUnknownError`. The reference URL is for directories
  /// that other systems have; it means nothing here.
  NSRef<NSURL> URLForDirectory_inDomain_appropriateForURL_create_error(
      NSUInteger directory, NSUInteger domain, const NSRef<NSURL>& reference, bool create,
      NSRef<NSError>* error) const;

  /// Makes a directory, with `createIntermediates` also those above it that are missing; then one
  /// that exists is as good. Any number of threads and processes may make the same one at once.
  /// When it cannot be made, the directories that were made for it are removed, unless something
  /// else is in them by then; that another call has just found one there does not keep it.
  ///
  /// Of the attributes `NSFilePosixPermissions` counts, for the directory itself; those above it,
  /// and it without attributes, get what the process's file mode creation mask leaves.
  bool createDirectoryAtURL_withIntermediateDirectories_attributes_error(
      const NSRef<NSURL>& url, bool createIntermediates, const NSRef<NSDictionary>& attributes,
      NSRef<NSError>* error) const;

  /// Makes a new file with the contents; nil has none. Never touches what stands there already, not
  /// even a symbolic link: that is `NSFileWriteFileExistsError`, and of any number of threads and
  /// processes one alone makes the file. One that cannot be written whole is removed again.
  bool createNewFileAtURL_contents_error(const NSRef<NSURL>& url, const NSRef<NSData>& contents,
                                         NSRef<NSError>* error) const;

  /// Lists what is in a directory, without "." and "..": URLs in the order of their names' bytes,
  /// those of directories with "/" at the end; a symbolic link never has one. One to the directory
  /// itself is followed. The keys mean nothing here; `NSDirectoryEnumerationSkipsHiddenFiles` is
  /// the only option.
  [[nodiscard]] NSRef<NSArray> contentsOfDirectoryAtURL_includingPropertiesForKeys_options_error(
      const NSRef<NSURL>& url, const NSRef<NSArray>& keys, NSUInteger options,
      NSRef<NSError>* error) const;

  /// Copies a file, a symbolic link or a directory with all that is in it, with permissions and
  /// times. The copy is made in a hidden folder beside the target and appears there as a whole.
  /// Whatever stands at the target is `NSFileWriteFileExistsError`; devices, pipes and a target
  /// within the directory itself are refused, and a source or target that is the root of all or
  /// ends with "." or "..".
  bool copyItemAtURL_toURL_error(const NSRef<NSURL>& source, const NSRef<NSURL>& target,
                                 NSRef<NSError>* error) const;

  /// Moves a file, symbolic link or directory; refuses what copying does. On another file system it
  /// copies and then removes: if the removal fails, the copy stays.
  bool moveItemAtURL_toURL_error(const NSRef<NSURL>& source, const NSRef<NSURL>& target,
                                 NSRef<NSError>* error) const;

  /// Removes a file, a symbolic link itself or a directory with all that is in it; nothing by a URL
  /// that is the root of all or ends with "." or "..". What fails leaves the rest where it is.
  bool removeItemAtURL_error(const NSRef<NSURL>& url, NSRef<NSError>* error) const;

  /// Tells type, size and permissions of what stands at the path; a symbolic link is not followed.
  [[nodiscard]] NSRef<NSDictionary> attributesOfItemAtPath_error(const NSRef<NSString>& path,
                                                                 NSRef<NSError>* error) const;
};
