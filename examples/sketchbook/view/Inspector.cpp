#include "examples/sketchbook/view/Inspector.h"

#include "examples/sketchbook/view/Bridge.h"

#include <QDesktopServices>
#include <QFormLayout>
#include <QUrl>

using namespace std::chrono_literals;
using namespace ZKFoundationExtensions;

namespace sketchbook {

namespace {

// Why an address is refused, in words of our own.
NSRef<NSString> sentenceFor(ZKURLRefusal refusal) {
  switch (refusal) {
    case ZKURLAccepted:
      return u""_ns;
    case ZKURLInvalidPath:
      return u"No file can have this path."_ns;
    case ZKURLInvalidSyntax:
      return u"An address has neither blanks nor letters like “é”."_ns;
    case ZKURLWithoutScheme:
      return u"A word alone is no address."_ns;
    case ZKURLWithoutHost:
      return u"The name of a computer is missing."_ns;
    case ZKURLSchemeNotAllowed:
      return u"Only “http”, “https” and files can be opened."_ns;
  }
  return u"This is no address."_ns;
}

}  // namespace

Inspector::Inspector(const NSRef<Document>& document) : _document(document) {
  _addresses->setAllowedSchemes(NSMake<NSArray>({u"http"_ns, u"https"_ns, u"file"_ns}));
  _refusal->setWordWrap(true);
  _attachments->setWordWrap(true);
  _name->setObjectName(QStringLiteral("name"));
  _address->setObjectName(QStringLiteral("address"));
  _refusal->setObjectName(QStringLiteral("refusal"));
  setMinimumWidth(260);
  _open->setText(inLanguage(u"Open"_ns));
  auto* const form = new QFormLayout(this);
  form->addRow(inLanguage(u"Name"_ns), _name);
  form->addRow(inLanguage(u"Address"_ns), _address);
  form->addRow(_refusal);
  form->addRow(_open);
  form->addRow(inLanguage(u"Size"_ns), _size);
  form->addRow(inLanguage(u"Attachments"_ns), _attachments);

  connect(_name, &QLineEdit::editingFinished, this, [this] {
    if (_name->isModified()) _document->drawing()->rename(fromQt(_name->text()));
    _name->setModified(false);
  });
  connect(_address, &QLineEdit::textEdited, this,
          [this](const QString& typed) { readLink(typed); });
  connect(_address, &QLineEdit::editingFinished, this, [this] { takeLink(); });
  connect(_open, &QPushButton::clicked, this, [this] {
    const auto url = _link.as<NSURL>();
    if (isSafeToOpen(url)) QDesktopServices::openUrl(QUrl(toQt(url->absoluteString())));
  });
  const auto center = NSNotificationCenter::defaultCenter();
  _observation = {
      center, center->addObserverForName_object_queue_usingBlock(
                  DrawingDidChange(), document->drawing(), nullptr, [this] { showSelection(); })};
  showSelection();
}

void Inspector::showSelection() {
  const auto selected = _document->drawing()->selectedShapes();
  const auto first = selected->firstObject().as<Shape>();
  setEnabled(static_cast<bool>(first));
  // Not while somebody types.
  if (!_name->isModified()) _name->setText(first ? toQt(first->name) : QString());
  if (!_address->isModified()) {
    _link = first ? first->link : nullptr;
    _address->setText(toQt(_addresses->stringForObjectValue(_link)));
    _address->setCursorPosition(0);
    readLink(_address->text());
  }
  // Saving all to know its size can wait until nobody draws.
  const NSWeakRef life = _life;
  cancelDelayedBlock(life, _laterSize);
  _laterSize = performBlock_afterDelay(
      life, [this] { showSize(); }, 300ms);
}

void Inspector::showSize() {
  const auto formatter = NSMake<ZKUnitOfInformationFormatter>();
  _size->setText(toQt(formatter->stringFromNumber_ofUnit(NSMake<NSNumber>(_document->byteCount()),
                                                         ZKUnitOfInformationByte)));
  _attachments->setText(toQt(_document->attachmentNames()->componentsJoinedByString(u", "_ns)));
}

void Inspector::readLink(const QString& typed) {
  auto refusal = _addresses->refusalOfString_objectValue(fromQt(typed), _link);
  // A path from ".." leads nowhere in a document that moves.
  if (refusal == ZKURLAccepted && _link && !_link.as<NSURL>()) refusal = ZKURLInvalidPath;
  if (refusal != ZKURLAccepted) _link = nullptr;
  _refusal->setText(inLanguage(sentenceFor(refusal)));
  _open->setEnabled(isSafeToOpen(_link.as<NSURL>()));
}

void Inspector::takeLink() {
  if (!_address->isModified() || !_refusal->text().isEmpty()) return;
  _address->setModified(false);
  const auto link = _link.as<NSURL>();
  _document->drawing()->changeSelected(u"Link"_ns, [&](Shape& shape) { shape.link = link; });
}

}  // namespace sketchbook
