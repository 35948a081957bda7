#include "examples/sketchbook/model/Recovery.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

std::filesystem::path lockOf(const NSRef<NSURL>& url) {
  auto path = url->fileSystemPath();
  // Directories that were listed have "/" at the end.
  if (!path.has_filename()) path = path.parent_path();
  return path.replace_extension("lock");
}

// The descriptor that holds the place, or -1.
int hold(const NSRef<NSURL>& url) {
  const int descriptor = open(lockOf(url).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) == 0) return descriptor;
  const int reason = errno;
  if (descriptor >= 0) close(descriptor);
  errno = reason;
  return -1;
}

}  // namespace

std::unique_ptr<Recovery> Recovery::create(const NSRef<NSURL>& folder, NSRef<NSError>* error) {
  const auto manager = NSFileManager::defaultManager();
  if (!manager->createDirectoryAtURL_withIntermediateDirectories_attributes_error(folder, true,
                                                                                  nullptr, error)) {
    return nullptr;
  }
  const auto url =
      folder->URLByAppendingPathComponent_isDirectory(UUIDString() + u".sketch", false);
  const int lock = hold(url);
  if (lock >= 0) return std::unique_ptr<Recovery>(new Recovery(url, lock));
  if (error != nullptr) {
    *error = NSError::errorWithDomain_code_userInfo(NSPOSIXErrorDomain(), errno, nullptr);
  }
  return nullptr;
}

std::unique_ptr<Recovery> Recovery::take(const NSRef<NSURL>& url) {
  const int lock = hold(url);
  return lock < 0 ? nullptr : std::unique_ptr<Recovery>(new Recovery(url, lock));
}

NSRef<NSArray> Recovery::abandoned(const NSRef<NSURL>& folder) {
  const auto result = NSMake<NSMutableArray>();
  const auto all = NSFileManager::defaultManager()
                       ->contentsOfDirectoryAtURL_includingPropertiesForKeys_options_error(
                           folder, nullptr, 0, nullptr);
  if (!all) return result;
  for (const auto& url : all->each<NSURL>()) {
    if (url->pathExtension() != u"sketch"_ns) continue;
    const int lock = hold(url);
    if (lock < 0) continue;
    close(lock);
    result->addObject(url);
  }
  return result;
}

Recovery::~Recovery() {
  if (_lock >= 0) close(_lock);
}

void Recovery::clear() { NSFileManager::defaultManager()->removeItemAtURL_error(_url, nullptr); }

void Recovery::remove() {
  clear();
  std::error_code ignored;
  std::filesystem::remove(lockOf(_url), ignored);
}

}  // namespace sketchbook
