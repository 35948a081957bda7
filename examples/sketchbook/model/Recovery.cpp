#include "examples/sketchbook/model/Recovery.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

NSRef<NSString> textAt(const NSRef<NSURL>& url) {
  return NSString::stringWithContentsOfURL_usedEncoding_error(url, nullptr, nullptr);
}

}  // namespace

std::unique_ptr<Recovery> Recovery::hold(const NSRef<NSURL>& place) {
  const int lock = open(place->fileSystemPath().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (lock < 0) return nullptr;
  if (flock(lock, LOCK_EX | LOCK_NB) == 0) {
    return std::unique_ptr<Recovery>(new Recovery(place, lock));
  }
  close(lock);
  return nullptr;
}

Recovery::~Recovery() { close(_lock); }

NSRef<NSURL> Recovery::within(const NSRef<NSString>& name) const {
  return _place->URLByAppendingPathComponent_isDirectory(name, false);
}

std::unique_ptr<Recovery> Recovery::create(const NSRef<NSURL>& folder, const NSRef<NSURL>& origin,
                                           NSRef<NSError>* error) {
  const auto place = folder->URLByAppendingPathComponent_isDirectory(UUIDString(), true);
  const bool isMade = NSFileManager::defaultManager()
                          ->createDirectoryAtURL_withIntermediateDirectories_attributes_error(
                              place, true, nullptr, error);
  if (!isMade) return nullptr;
  auto recovery = hold(place);
  if (!recovery) {
    *error = NSError::errorWithDomain_code_userInfo(NSPOSIXErrorDomain(), EWOULDBLOCK, nullptr);
    return nullptr;
  }
  const bool isNoted =
      !origin || origin->absoluteString()->writeToURL_atomically_encoding_error(
                     recovery->within(u"origin"_ns), true, NSUTF8StringEncoding, error);
  return isNoted ? std::move(recovery) : nullptr;
}

std::unique_ptr<Recovery> Recovery::take(const NSRef<NSURL>& copy) {
  return hold(NSURL::fileURLWithPath_isDirectory(copy->fileSystemPath().parent_path(), true));
}

NSRef<NSArray> Recovery::abandoned(const NSRef<NSURL>& folder) {
  const auto result = NSMake<NSMutableArray>();
  const auto all = NSFileManager::defaultManager()
                       ->contentsOfDirectoryAtURL_includingPropertiesForKeys_options_error(
                           folder, nullptr, 0, nullptr);
  if (!all) return result;
  for (const auto& place : all->each<NSURL>()) {
    const auto recovery = isEmptyString(place->pathExtension()) ? hold(place) : nullptr;
    if (!recovery) continue;
    if (recovery->isNeeded()) {
      result->addObject(recovery->copy());
    } else {
      recovery->remove();
    }
  }
  return result;
}

NSRef<NSURL> Recovery::origin() const { return NSURL::URLWithString(textAt(within(u"origin"_ns))); }

// Who saves removes the place afterwards, and may be killed in between.
bool Recovery::isNeeded() const {
  if (!std::filesystem::exists(copy()->fileSystemPath())) return false;
  const auto document = origin();
  const auto format =
      document ? textAt(document->URLByAppendingPathComponent_isDirectory(u"format"_ns, false))
               : nullptr;
  return !format || format->rangeOfString(revision()).length == 0;
}

void Recovery::remove() {
  // First as a whole: half of a copy is none.
  const auto manager = NSFileManager::defaultManager();
  manager->moveItemAtURL_toURL_error(copy(), within(u"removed"_ns), nullptr);
  manager->removeItemAtURL_error(_place, nullptr);
}

NSRef<NSString> Recovery::setAside() {
  auto aside = _place->path()->stringByAppendingPathExtension(u"damaged"_ns);
  NSFileManager::defaultManager()->moveItemAtURL_toURL_error(
      _place, NSURL::fileURLWithPath_isDirectory(aside, true), nullptr);
  return aside;
}

}  // namespace sketchbook
