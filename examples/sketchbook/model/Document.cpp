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
  const auto name = quoted(url ? url->lastPathComponent() : localized(u"Untitled"_ns));
  return NSError::errorWithDomain_code_description(
      DocumentErrorDomain(), code, NSString::stringWithFormat(localized(sentence), name, reason));
}

NSRef<NSError> foreign(const NSRef<NSURL>& url) {
  return failure(DocumentIsForeign, u"%@ is no sketchbook."_ns, url);
}

// Whether nothing has failed. What has is told in the place, if there is one.
bool succeeds(const NSRef<NSError>& failure, NSRef<NSError>* place) {
  if (failure && place != nullptr) *place = failure;
  return !failure;
}

// Reads the file "format"; nothing when there is none of ours.
std::optional<Format> formatIn(const NSRef<NSData>& file) {
  const auto name = u"Sketchbook "_ns;
  const auto text =
      file ? NSString::stringWithData_usedEncoding_error(file, nullptr, nullptr) : nullptr;
  if (!text || !text->hasPrefix(name)) return std::nullopt;
  const auto lines = text->componentsSeparatedByString(u"\n"_ns);
  auto first = lines[0].as<NSString>()->view().substr(name->length());
  const auto number = NSTakeInteger(first);
  if (!number || !first.empty() || lines->count() < 2) return std::nullopt;
  return Format{*number, lines[1].as<NSString>()};
}

std::optional<Format> formatAt(const NSRef<NSURL>& url) {
  return formatIn(NSData::dataWithContentsOfURL_options_error(
      url->URLByAppendingPathComponent_isDirectory(u"format"_ns, false), 0, nullptr));
}

bool exists(const NSRef<NSURL>& url) {
  std::error_code ignored;
  return std::filesystem::exists(url->fileSystemPath(), ignored);
}

// The bytes of a file in the directory; nil without such a file.
NSRef<NSData> bytesIn(const NSRef<NSFileWrapper>& files, const NSRef<NSString>& name) {
  if (!files->isDirectory()) return nullptr;
  const auto file = files->fileWrappers()->objectForKey(name).as<NSFileWrapper>();
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
}

NSRef<Document> Document::open(const NSRef<NSURL>& url, const NSRef<NSURL>& recoveryFolder,
                               NSRef<NSError>* error) {
  auto document = NSMake<Document>(recoveryFolder);
  document->_url = url;
  return succeeds(document->read(url), error) ? document : nullptr;
}

NSRef<Document> Document::recover(const NSRef<NSURL>& copy, const NSRef<NSURL>& recoveryFolder,
                                  NSRef<NSError>* error) {
  auto document = NSMake<Document>(recoveryFolder);
  auto recovery = Recovery::take(copy);
  NSRef<NSError> reason;
  if (recovery) {
    document->_url = recovery->origin();
    document->_isEdited = true;
    reason = document->read(copy);
  } else {
    reason = failure(DocumentChangedElsewhere, u"%@ is open in another window."_ns, copy);
  }
  const bool isDamaged =
      reason && reason->domain() == DocumentErrorDomain() &&
      (reason->code() == DocumentIsForeign || reason->code() == DocumentIsDamaged);
  if (isDamaged) {
    reason = failure(DocumentIsDamaged, u"What was not saved of %@ is damaged, and kept in %@."_ns,
                     document->_url, quoted(recovery->setAside()));
  }
  document->_recovery = std::move(recovery);
  return succeeds(reason, error) ? document : nullptr;
}

NSRef<NSError> Document::read(const NSRef<NSURL>& url) {
  NSRef<NSError> reason;
  const auto files = NSFileWrapper::initWithURL_options_error(url, 0, &reason);
  if (!files) return reason;
  const auto format = formatIn(bytesIn(files, u"format"_ns));
  if (!format) return foreign(_url);
  if (format->number > currentFormat) {
    return failure(DocumentIsNewer, u"%@ was written by a newer version of this program."_ns, _url);
  }
  const auto archive = bytesIn(files, u"drawing"_ns);
  const auto shapes = shapesWithData(archive ? archive : NSMake<NSData>(), nullptr);
  if (!shapes) return failure(DocumentIsDamaged, u"%@ is damaged."_ns, _url);
  _files = files;
  _revision = format->revision;
  _savedShapes = _copiedShapes = shapes;
  _drawing->setShapes(shapes);
  return nullptr;
}

NSRef<NSString> Document::title() const {
  return _url ? _url->lastPathComponent()->stringByDeletingPathExtension()
              : localized(u"Untitled"_ns);
}

NSRef<NSFileWrapper> Document::contents(const NSRef<NSString>& revision) const {
  const auto files = _files->fileWrappers()->mutableCopy();
  const auto put = [&](const NSRef<NSString>& name, const NSRef<NSData>& data) {
    files->setObject_forKey(NSMake<NSFileWrapper>(data), name);
  };
  const auto shapes = _drawing->shapes();
  const auto format =
      NSString::stringWithFormat(u"Sketchbook %d\n%@\n"_ns, currentFormat, revision);
  put(u"format"_ns, NSMake<NSData>(format->utf8()));
  put(u"drawing"_ns, dataWithShapes(shapes));
  put(u"preview.svg"_ns, NSMake<NSData>(svgPicture(shapes)->utf8()));
  return NSMake<NSFileWrapper>(files);
}

bool Document::write(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  const auto revision = _recovery ? _recovery->revision() : UUIDString();
  const auto files = contents(revision);
  if (!files->writeToURL_options_originalContentsURL_error(url, 0, nullptr, error)) return false;
  _files = files;
  _revision = revision;
  _url = url;
  close();
  return true;
}

bool Document::save(NSRef<NSError>* error, bool overwrites) {
  // What was moved away or removed is written again.
  NSRef<NSError> refusal;
  if (!overwrites && exists(_url)) {
    const auto there = formatAt(_url);
    if (!there) {
      refusal = foreign(_url);
    } else if (there->revision != _revision) {
      refusal = failure(DocumentChangedElsewhere,
                        u"%@ has been changed elsewhere since it was opened."_ns, _url);
    }
  }
  return succeeds(refusal, error) && write(_url, error);
}

bool Document::saveAs(const NSRef<NSURL>& url, NSRef<NSError>* error) {
  const bool isForeign = exists(url) && !formatAt(url);
  return succeeds(isForeign ? foreign(url) : nullptr, error) && write(url, error);
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
  if (!isEdited()) return;
  NSRef<NSError> error;
  if (!_recovery) _recovery = Recovery::create(_recoveryFolder, _url, &error);
  const bool isWritten = _recovery && contents(_revision ? _revision : UUIDString())
                                          ->writeToURL_options_originalContentsURL_error(
                                              _recovery->copy(), 0, nullptr, &error);
  if (isWritten) {
    _copiedShapes = _drawing->shapes();
  } else {
    NSLog(u"No copy for the case of a crash: "_ns + error->description());
  }
}

NSRef<NSFileWrapper> Document::attachments() const {
  const auto folder = _files->fileWrappers()->objectForKey(u"Attachments"_ns).as<NSFileWrapper>();
  return folder && folder->isDirectory() ? folder : nullptr;
}

NSRef<NSString> Document::attach(const NSRef<NSURL>& file, NSRef<NSError>* error) {
  const auto attached = NSFileWrapper::initWithURL_options_error(file, 0, error);
  if (!attached) return nullptr;
  attached->setPreferredFilename(file->lastPathComponent());
  auto folder = attachments();
  if (!folder) {
    if (_files->fileWrappers()->objectForKey(u"Attachments"_ns)) {
      (void)succeeds(
          failure(DocumentIsForeign, u"%@ has a file in the place of its attachments."_ns, _url),
          error);
      return nullptr;
    }
    folder = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
    folder->setPreferredFilename(u"Attachments"_ns);
    _files->addFileWrapper(folder);
  }
  _isEdited = true;
  _copiedShapes = nullptr;
  _drawing->noteChange();
  return addFileWrapperWithUniqueFileName(folder, attached);
}

NSRef<NSArray> Document::attachmentNames() const {
  const auto folder = attachments();
  return folder ? sortedArrayUsingSelector(folder->fileWrappers()->allKeys().as<NSArray>(),
                                           &NSString::compare)
                : NSMake<NSArray>();
}

NSUInteger Document::byteCount() const { return sizeOf(*contents(UUIDString())); }

}  // namespace sketchbook
