#include "examples/sketchbook/model/Document.h"

#include "examples/sketchbook/model/Pictures.h"
#include "examples/sketchbook/model/Shapes.h"
#include "examples/sketchbook/model/Texts.h"

using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

constexpr NSInteger currentFormat = 1;

struct Format {
  NSInteger number = 0;
  NSRef<NSString> revision;
};

NSRef<NSError> failure(DocumentError code, const NSRef<NSString>& sentence, const NSRef<NSURL>& url,
                       const NSRef<NSString>& reason = nullptr) {
  const auto text =
      NSString::stringWithFormat(localized(sentence), quoted(url->lastPathComponent()), reason);
  return NSError::errorWithDomain_code_userInfo(
      DocumentErrorDomain(), code, NSMake<NSDictionary>({{NSLocalizedDescriptionKey(), text}}));
}

NSRef<NSError> foreign(const NSRef<NSURL>& url) {
  return failure(DocumentIsForeign, u"%@ is no sketchbook."_ns, url);
}

// Reads the file "format"; nothing when the text is none of ours.
std::optional<Format> formatOf(const NSRef<NSString>& text) {
  const auto name = u"Sketchbook "_ns;
  if (!text || !text->hasPrefix(name)) return std::nullopt;
  const auto lines = text->componentsSeparatedByString(u"\n"_ns);
  auto first = lines[0].as<NSString>()->view().substr(name->length());
  const auto number = NSTakeInteger(first);
  if (!number || !first.empty() || lines->count() < 2) return std::nullopt;
  return Format{*number, lines[1].as<NSString>()};
}

std::optional<Format> formatAt(const NSRef<NSURL>& url) {
  return formatOf(NSString::stringWithContentsOfURL_usedEncoding_error(
      url->URLByAppendingPathComponent_isDirectory(u"format"_ns, false), nullptr, nullptr));
}

bool exists(const NSRef<NSURL>& url) {
  return static_cast<bool>(
      NSFileManager::defaultManager()->attributesOfItemAtPath_error(url->path(), nullptr));
}

NSRef<NSFileWrapper> child(const NSRef<NSFileWrapper>& directory, const NSRef<NSString>& name) {
  return directory->fileWrappers()->objectForKey(name).as<NSFileWrapper>();
}

// The bytes of a file in the directory; nil without such a file.
NSRef<NSData> bytesOf(const NSRef<NSFileWrapper>& directory, const NSRef<NSString>& name) {
  const auto file = child(directory, name);
  return file && file->isRegularFile() ? file->regularFileContents() : nullptr;
}

NSUInteger sizeOf(const NSFileWrapper& wrapper) {
  if (wrapper.isRegularFile()) return wrapper.regularFileContents()->length();
  NSUInteger sum = 0;
  for (const auto& [name, file] : wrapper.fileWrappers()) sum += sizeOf(*file.as<NSFileWrapper>());
  return sum;
}

}  // namespace

const NSRef<NSString>& DocumentErrorDomain() {
  return NSConstantString<u"SketchbookDocumentErrorDomain">();
}

Document::Document(const NSRef<NSURL>& recoveryFolder, const NSRef<NSArray>& shapes)
    : _recoveryFolder(recoveryFolder), _savedShapes(shapes->copy()), _copiedShapes(_savedShapes) {
  _drawing->setShapes(_savedShapes);
  const auto center = NSNotificationCenter::defaultCenter();
  _observation = {center, center->addObserverForName_object_queue_usingBlock(
                              DrawingDidChange(), _drawing, nullptr, [this] { noteChange(); })};
}

NSRef<Document> Document::open(const NSRef<NSURL>& url, const NSRef<NSURL>& recoveryFolder,
                               NSRef<NSError>* error) {
  auto document = NSMake<Document>(recoveryFolder);
  if (!document->read(url, error)) return nullptr;
  document->_url = url;
  return document;
}

NSRef<Document> Document::recover(const NSRef<NSURL>& copy, const NSRef<NSURL>& recoveryFolder,
                                  NSRef<NSError>* error) {
  auto recovery = Recovery::take(copy);
  if (!recovery) {
    if (error != nullptr) {
      *error = failure(DocumentChangedElsewhere, u"%@ is open in another window."_ns, copy);
    }
    return nullptr;
  }
  auto document = NSMake<Document>(recoveryFolder);
  if (!document->read(copy, error)) return nullptr;
  document->_recovery = std::move(recovery);
  document->_isEdited = true;
  const auto origin = child(document->_files, u"origin"_ns);
  if (!origin) return document;
  document->_url = NSURL::URLWithString(
      NSString::stringWithData_usedEncoding_error(origin->regularFileContents(), nullptr, nullptr));
  document->_files->removeFileWrapper(origin);
  return document;
}

bool Document::read(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  NSRef<NSError> reason;
  const auto give = [&](const NSRef<NSError>& what) {
    if (error != nullptr) *error = what;
    return false;
  };
  const auto files = NSFileWrapper::initWithURL_options_error(url, 0, &reason);
  if (!files) return give(reason);
  const auto head = files->isDirectory() ? bytesOf(files, u"format"_ns) : nullptr;
  const auto format =
      head ? formatOf(NSString::stringWithData_usedEncoding_error(head, nullptr, nullptr))
           : std::nullopt;
  if (!format) return give(foreign(url));
  if (format->number > currentFormat) {
    return give(
        failure(DocumentIsNewer, u"%@ was written by a newer version of this program."_ns, url));
  }
  const auto archive = bytesOf(files, u"drawing"_ns);
  const auto shapes = archive ? shapesWithData(archive, &reason) : nullptr;
  if (!shapes) {
    const auto why = reason ? reason->localizedDescription() : localized(u"no drawing"_ns);
    return give(failure(DocumentIsDamaged, u"%@ is damaged (%@)."_ns, url, why));
  }
  _files = files;
  _revision = format->revision;
  _savedShapes = _copiedShapes = shapes;
  _drawing->setShapes(shapes);
  return true;
}

NSRef<NSString> Document::title() const {
  return _url ? _url->lastPathComponent()->stringByDeletingPathExtension()
              : localized(u"Untitled"_ns);
}

NSRef<NSFileWrapper> Document::contents(const NSRef<NSString>& revision) const {
  auto files = NSMake<NSFileWrapper>(_files->fileWrappers());
  const auto put = [&](const NSRef<NSString>& name, const NSRef<NSData>& data) {
    if (const auto old = child(files, name)) files->removeFileWrapper(old);
    files->addRegularFileWithContents_preferredFilename(data, name);
  };
  const auto shapes = _drawing->shapes();
  const auto format =
      NSString::stringWithFormat(u"Sketchbook %d\n%@\n"_ns, currentFormat, revision);
  put(u"format"_ns, NSMake<NSData>(format->utf8()));
  put(u"drawing"_ns, dataWithShapes(shapes));
  put(u"preview.svg"_ns, NSMake<NSData>(svgPicture(shapes)->utf8()));
  return files;
}

bool Document::write(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  const auto revision = UUIDString();
  const auto files = contents(revision);
  if (!files->writeToURL_options_originalContentsURL_error(url, 0, nullptr, error)) return false;
  cancelDelayedBlock(NSWeakRef(share(this)), _autosave);
  _files = files;
  _revision = revision;
  _url = url;
  _savedShapes = _copiedShapes = _drawing->shapes();
  _isEdited = false;
  if (_recovery) _recovery->clear();
  return true;
}

bool Document::save(NSRef<NSError>* error, bool overwrites) {
  // What was moved away or removed is written again.
  if (!overwrites && exists(_url)) {
    const auto there = formatAt(_url);
    if (!there || there->revision != _revision) {
      if (error != nullptr) {
        *error = there ? failure(DocumentChangedElsewhere,
                                 u"%@ has been changed elsewhere since it was opened."_ns, _url)
                       : foreign(_url);
      }
      return false;
    }
  }
  return write(_url, error);
}

bool Document::saveAs(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  if (exists(url) && !formatAt(url)) {
    if (error != nullptr) *error = foreign(url);
    return false;
  }
  return write(url, error);
}

void Document::close() {
  cancelDelayedBlock(NSWeakRef(share(this)), _autosave);
  if (_recovery) _recovery->remove();
  _recovery = nullptr;
  _copiedShapes = _savedShapes = _drawing->shapes();
  _isEdited = false;
}

void Document::noteChange() {
  if (_drawing->shapes().is(_copiedShapes)) return;
  // Each further change pushes the copy back; a document that has gone needs none.
  const NSWeakRef self = share(this);
  cancelDelayedBlock(self, _autosave);
  _autosave = performBlock_afterDelay(self, &Document::writeRecoveryCopy, autosaveDelay);
}

void Document::writeRecoveryCopy() {
  NSRef<NSError> error;
  if (!_recovery) _recovery = Recovery::create(_recoveryFolder, &error);
  if (_recovery && isEdited()) {
    const auto files = contents(_revision ? _revision : UUIDString());
    if (_url) {
      files->addRegularFileWithContents_preferredFilename(
          NSMake<NSData>(_url->absoluteString()->utf8()), u"origin"_ns);
    }
    if (files->writeToURL_options_originalContentsURL_error(_recovery->url(), 0, nullptr, &error)) {
      _copiedShapes = _drawing->shapes();
    }
  }
  if (error) NSLog(u"No copy for the case of a crash: "_ns + error->description());
}

NSRef<NSString> Document::attach(const NSRef<NSURL>& file, NSRef<NSError>* error) {
  const auto attached = NSFileWrapper::initWithURL_options_error(file, 0, error);
  if (!attached) return nullptr;
  attached->setPreferredFilename(file->lastPathComponent());
  auto folder = child(_files, u"Attachments"_ns);
  if (!folder || !folder->isDirectory()) {
    folder = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
    folder->setPreferredFilename(u"Attachments"_ns);
    _files->addFileWrapper(folder);
  }
  _isEdited = true;
  _copiedShapes = nullptr;
  enqueueNotificationName_object_postingStyle(NSNotificationQueue::defaultQueue(),
                                              DrawingDidChange(), _drawing, NSPostASAP);
  return addFileWrapperWithUniqueFileName(folder, attached);
}

NSRef<NSArray> Document::attachmentNames() const {
  const auto folder = child(_files, u"Attachments"_ns);
  if (!folder || !folder->isDirectory()) return NSMake<NSArray>();
  return sortedArrayUsingSelector(folder->fileWrappers()->allKeys().as<NSArray>(),
                                  &NSString::compare);
}

NSUInteger Document::byteCount() const { return sizeOf(*contents(UUIDString())); }

}  // namespace sketchbook
