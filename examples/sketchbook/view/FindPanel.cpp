#include "examples/sketchbook/view/FindPanel.h"

#include "examples/sketchbook/view/Bridge.h"

#include <QFormLayout>
#include <QPushButton>

namespace sketchbook {

FindPanel::FindPanel(const NSRef<Drawing>& drawing, const dispatch_queue_t& queue)
    : _drawing(drawing), _queue(queue) {
  auto* const completer = new QCompleter(_words, this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  _needle->setCompleter(completer);
  _needle->setObjectName(QStringLiteral("needle"));
  _replacement->setObjectName(QStringLiteral("replacement"));
  _answer->setWordWrap(true);
  _respectsCase->setText(inLanguage(u"Match case"_ns));
  _wholeWords->setText(inLanguage(u"Whole words"_ns));
  _isPattern->setText(inLanguage(u"Regular expression"_ns));
  auto* const next = new QPushButton(inLanguage(u"Find Next"_ns));
  auto* const all = new QPushButton(inLanguage(u"Replace All"_ns));
  auto* const form = new QFormLayout(this);
  form->addRow(inLanguage(u"Find"_ns), _needle);
  form->addRow(inLanguage(u"Replace by"_ns), _replacement);
  for (QWidget* const row :
       {static_cast<QWidget*>(_respectsCase), static_cast<QWidget*>(_wholeWords),
        static_cast<QWidget*>(_isPattern), static_cast<QWidget*>(next), static_cast<QWidget*>(all),
        static_cast<QWidget*>(_answer)}) {
    form->addRow(row);
  }
  connect(_needle, &QLineEdit::returnPressed, this, [this] { findNext(); });
  connect(next, &QPushButton::clicked, this, [this] { findNext(); });
  connect(all, &QPushButton::clicked, this, [this] { replaceAll(); });
  const auto center = NSNotificationCenter::defaultCenter();
  _observation = {center, center->addObserverForName_object_queue_usingBlock(
                              DrawingDidChange(), drawing, nullptr, [this] { collectWords(); })};
}

FindPanel::~FindPanel() {
  if (_collecting) _collecting->cancel();
}

void FindPanel::takeFocus() {
  _needle->setFocus();
  _needle->selectAll();
  collectWords();
}

NSRef<ZKTextFinder> FindPanel::finder() const {
  NSStringCompareOptions options{};
  if (!_respectsCase->isChecked()) options |= NSCaseInsensitiveSearch;
  if (_isPattern->isChecked()) options |= ZKRegularExpressionSearch;
  return NSMake<ZKTextFinder>(fromQt(_needle->text()), options,
                              _wholeWords->isChecked() ? ZKWordCompareWhole : ZKWordCompareNone);
}

void FindPanel::findNext() {
  NSRef<NSError> error;
  _match = sketchbook::findNext(_drawing->shapes(), *finder(), _match, &error);
  if (_match) {
    _drawing->select(NSMake<NSIndexSet>(_match->index));
    const auto text = _drawing->shapes()[_match->index].as<Shape>()->text();
    _answer->setText(
        toQt(quoted(text->substringWithRange(text->lineRangeForRange(_match->range)))));
  } else {
    _answer->setText(error ? toQt(error->localizedDescription()) : inLanguage(u"Not found."_ns));
  }
}

void FindPanel::replaceAll() {
  NSRef<NSError> error;
  const NSUInteger count =
      sketchbook::replaceAll(*_drawing, *finder(), fromQt(_replacement->text()), &error);
  _answer->setText(error ? toQt(error->localizedDescription())
                         : toQt(NSString::stringWithFormat(localized(u"%u replaced."_ns), count)));
}

void FindPanel::collectWords() {
  if (!isVisible() || _drawing->shapes().is(_collected)) return;
  if (_collecting) _collecting->cancel();
  _collected = _drawing->shapes();
  // The shapes of an array stay as they are while people draw on.
  _collecting = Task::start(
      localized(u"Collecting words"_ns), _queue,
      [shapes = _collected](const Progress& progress) { return wordsOfLabels(shapes, progress); },
      [this](const NSRef<NSObject>& result) {
        QStringList words;
        for (const auto& word : result.as<NSArray>()->each<NSString>()) words.append(toQt(word));
        _words->setStringList(words);
      });
  if (onTask) onTask(_collecting);
}

}  // namespace sketchbook
