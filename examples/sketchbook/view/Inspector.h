#pragma once

#include "examples/sketchbook/model/Document.h"
#include "examples/sketchbook/view/Bridge.h"

namespace sketchbook {

/// Shows and changes the name and the address of what is selected, and tells the size
/// of the document and its attachments.
class Inspector : public QWidget {
 public:
  explicit Inspector(const NSRef<Document>& document) : _document(document) {
    _addresses->setAllowedSchemes(NSMake<NSArray>({u"http"_ns, u"https"_ns, u"file"_ns}));
    _name->setObjectName(QStringLiteral("name"));
    _address->setObjectName(QStringLiteral("address"));
    _refusal->setObjectName(QStringLiteral("refusal"));
    for (auto* const text : {_refusal, _attachments}) {
      text->setWordWrap(true);
      // Whatever it says, the panel stays as wide as it is.
      text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    setMinimumWidth(280);
    auto* const column = new QVBoxLayout(this);
    const auto addForm = [column](QGroupBox* box) {
      column->addWidget(box);
      return new QFormLayout(box);
    };
    auto* const shape = addForm(_selection);
    shape->addRow(inLanguage(u"Name"_ns), _name);
    shape->addRow(inLanguage(u"Frame"_ns), _frame);
    shape->addRow(inLanguage(u"Address"_ns), _address);
    shape->addRow({}, _refusal);
    shape->addRow({}, _open);
    auto* const whole = addForm(new QGroupBox(inLanguage(u"Document"_ns)));
    whole->addRow(inLanguage(u"Size"_ns), _size);
    whole->addRow(inLanguage(u"Attachments"_ns), _attachments);
    column->addStretch();

    connect(_name, &QLineEdit::editingFinished, this, [this] {
      if (_name->isModified()) _document->drawing()->rename(fromQt(_name->text()));
      _name->setModified(false);
    });
    connect(_address, &QLineEdit::textEdited, this, &Inspector::readLink);
    connect(_address, &QLineEdit::editingFinished, this, &Inspector::takeLink);
    connect(_open, &QPushButton::clicked, this, [this] {
      const auto url = _link.as<NSURL>();
      if (ZKFoundationExtensions::isSafeToOpen(url))
        QDesktopServices::openUrl(QUrl(toQt(url->absoluteString())));
    });
    showSelection();
    showSize();
  }

 private:
  // Why an address is refused, in words of our own.
  static NSRef<NSString> sentenceFor(ZKURLRefusal refusal) {
    static const std::map<ZKURLRefusal, NSRef<NSString>> sentences = {
        {ZKURLAccepted, u""_ns},
        {ZKURLInvalidPath, u"No file can have this path."_ns},
        {ZKURLInvalidSyntax, u"An address has neither blanks nor letters like “é”."_ns},
        {ZKURLWithoutScheme, u"A word alone is no address."_ns},
        {ZKURLWithoutHost, u"The name of a computer is missing."_ns},
        {ZKURLSchemeNotAllowed, u"Only “http”, “https” and files can be opened."_ns},
    };
    return sentences.at(refusal);
  }

  void showSelection() {
    const auto& drawing = *_document->drawing();
    const NSUInteger count = drawing.selection()->count();
    _selection->setEnabled(count > 0);
    _selection->setTitle(toQt(NSString::stringWithFormat(
        localized(count > 0 ? u"%u selected"_ns : u"Nothing selected"_ns), count)));
    const NSRect frame = drawing.selectedFrame();
    _frame->setText(toQt(NSString::stringWithFormat(
        count > 0 ? u"%.0f, %.0f · %.0f × %.0f"_ns : u""_ns, NSMinX(frame), NSMinY(frame),
        frame.size.width, frame.size.height)));
    // What is typed is kept as long as it is about the same shapes.
    if (drawing.selection() != _shown) {
      _shown = drawing.selection();
      for (auto* const field : {_name, _address}) field->setModified(false);
    }
    const auto one = count == 1 ? drawing.selectedShapes()[0].as<Shape>() : nullptr;
    if (!_name->isModified()) _name->setText(one ? toQt(one->name) : QString());
    if (!_address->isModified()) {
      _address->setText(toQt(_addresses->stringForObjectValue(one ? one->link : nullptr)));
      _address->setCursorPosition(0);
      readLink(_address->text());
    }
    // Saving all to know its size can wait until nobody draws.
    const NSWeakRef life = _life;
    ZKFoundationExtensions::cancelDelayedBlock(life, _laterSize);
    _laterSize = ZKFoundationExtensions::performBlock_afterDelay(
        life, [this] { showSize(); }, 0.3);
  }

  void showSize() {
    const auto shapes = _document->drawing()->shapes();
    const auto names = _document->attachmentNames();
    if (shapes.is(_measured) && names == _attached) return;
    _measured = shapes;
    _attached = names;
    _size->setText(toQt(NSMake<ZKUnitOfInformationFormatter>()->stringFromNumber_ofUnit(
        NSMake<NSNumber>(_document->byteCount()), ZKUnitOfInformationByte)));
    _attachments->setText(names->count() > 0 ? toQt(names->componentsJoinedByString(u", "_ns))
                                             : inLanguage(u"none"_ns));
  }

  void readLink(const QString& typed) {
    auto refusal = _addresses->refusalOfString_objectValue(fromQt(typed), _link);
    // A path from ".." leads nowhere in a document that moves.
    if (refusal == ZKURLAccepted && _link && !_link.as<NSURL>()) refusal = ZKURLInvalidPath;
    if (refusal != ZKURLAccepted) _link = nullptr;
    _refusal->setText(inLanguage(sentenceFor(refusal)));
    _refusal->setVisible(refusal != ZKURLAccepted);
    _open->setEnabled(ZKFoundationExtensions::isSafeToOpen(_link.as<NSURL>()));
  }

  void takeLink() {
    if (!_address->isModified() || !_refusal->text().isEmpty()) return;
    _address->setModified(false);
    const auto link = _link.as<NSURL>();
    _document->drawing()->changeSelected(u"Link"_ns, [&](Shape& shape) { shape.link = link; });
  }

  NSRef<Document> _document;
  const NSRef<ZKURLFormatter> _addresses = NSMake<ZKURLFormatter>();
  NSRef<NSObject> _link;
  QGroupBox* _selection = new QGroupBox;
  QLineEdit* _name = new QLineEdit;
  QLabel* _frame = new QLabel;
  QLineEdit* _address = new QLineEdit;
  QLabel* _refusal = new QLabel;
  QPushButton* _open = new QPushButton(inLanguage(u"Open"_ns));
  QLabel* _size = new QLabel;
  QLabel* _attachments = new QLabel;
  // What these show.
  NSRef<NSIndexSet> _shown;
  NSRef<NSArray> _measured;
  NSRef<NSArray> _attached;
  const NSRef<WidgetLife> _life = NSMake<WidgetLife>();
  NSRef<NSBlock> _laterSize;
  const NSObservation _observation{DrawingDidChange(), _document->drawing(),
                                   [this] { showSelection(); }};
};

}  // namespace sketchbook
