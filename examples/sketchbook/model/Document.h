#pragma once

#include "examples/sketchbook/model/Drawing.h"
#include "examples/sketchbook/model/Recovery.h"

#include <chrono>
#include <memory>

namespace sketchbook {

/// Names the domain of the errors below; all have a sentence for people.
const NSRef<NSString>& DocumentErrorDomain();

enum DocumentError : NSInteger {
  /// What is there is no sketchbook, and is not replaced by one.
  DocumentIsForeign = 1,
  /// A newer version of this program has written it.
  DocumentIsNewer = 2,
  DocumentIsDamaged = 3,
  /// Somebody has written it since it was opened.
  DocumentChangedElsewhere = 4,
};

/// A drawing and the directory that keeps it:
///
///     format        "Sketchbook 1", and a line that differs after each writing
///     drawing       the archive of the shapes
///     preview.svg   what other programs show
///     Attachments/  files that go with it; this and whatever else is there is kept as it is
///
/// Unsaved work is copied to a folder for the case of a crash, as soon as there was no change for a
/// while.
class Document : public NSObject {
 public:
  static constexpr std::chrono::seconds autosaveDelay{3};

  /// Makes a new document without a place; shapes that it begins with are no change.
  explicit Document(const NSRef<NSURL>& recoveryFolder,
                    const NSRef<NSArray>& shapes = NSMake<NSArray>());
  /// Opens the document at the URL; nil, and a sentence that says why.
  static NSRef<Document> open(const NSRef<NSURL>& url, const NSRef<NSURL>& recoveryFolder,
                              NSRef<NSError>* error);
  /// Opens a copy of unsaved work that `Recovery::abandoned` has listed. The document has the place
  /// of the original and is not saved there yet.
  static NSRef<Document> recover(const NSRef<NSURL>& copy, const NSRef<NSURL>& recoveryFolder,
                                 NSRef<NSError>* error);

  const NSRef<Drawing>& drawing() const { return _drawing; }
  /// Gives its place; nil as long as it was never saved.
  NSRef<NSURL> url() const { return _url; }
  /// Gives the name for people.
  NSRef<NSString> title() const;
  bool isEdited() const { return _isEdited || !_drawing->shapes().is(_savedShapes); }

  /// Writes the document to its place, as a whole or not at all. Refuses to write over what others
  /// have written, unless told otherwise.
  bool save(NSRef<NSError>* error, bool overwrites = false);
  /// Writes the document to another place, which it then has. What is there and no sketchbook is
  /// never replaced.
  bool saveAs(const NSRef<NSURL>& url, NSRef<NSError>* error);
  /// Forgets unsaved work for good, when nobody wants it.
  void close();

  /// Copies a file or directory into the document, under a name that is free there, which it gives.
  NSRef<NSString> attach(const NSRef<NSURL>& file, NSRef<NSError>* error);
  /// Lists the names of the attachments.
  NSRef<NSArray> attachmentNames() const;
  /// Counts the bytes of what would be saved, for which all of it is written.
  NSUInteger byteCount() const;

 private:
  bool write(const NSRef<NSURL>& url, NSRef<NSError>* error);
  NSRef<NSError> read(const NSRef<NSURL>& url);
  NSRef<NSFileWrapper> contents(const NSRef<NSString>& revision) const;
  NSRef<NSFileWrapper> attachments() const;
  void noteChange();
  void writeRecoveryCopy();

  const NSRef<Drawing> _drawing = NSMake<Drawing>();
  NSRef<NSURL> _recoveryFolder;
  std::unique_ptr<Recovery> _recovery;
  NSRef<NSURL> _url;
  // The second line of "format" when we read or wrote it last.
  NSRef<NSString> _revision;
  // All that was read, also what we do not know.
  NSRef<NSFileWrapper> _files = NSMake<NSFileWrapper>(NSMake<NSDictionary>());
  NSRef<NSArray> _savedShapes;
  NSRef<NSArray> _copiedShapes;
  bool _isEdited = false;
  NSRef<NSBlock> _autosave;
  NSObservation _observation{DrawingDidChange(), _drawing, [this] { noteChange(); }};
};

}  // namespace sketchbook
