#pragma once

#include "examples/sketchbook/model/Finding.h"
#include "examples/sketchbook/view/Canvas.h"
#include "examples/sketchbook/view/TaskBar.h"

namespace sketchbook {

/// Finds and replaces in the labels, and completes the words that stand in them, which it collects
/// in the background.
class FindPanel : public QWidget {
 public:
  FindPanel(const NSRef<Drawing>& drawing, Canvas* canvas, TaskBar* tasks)
      : _drawing(drawing), _canvas(canvas), _tasks(tasks) {
    auto* const completer = new QCompleter(_collectedWords, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    _needle->setCompleter(completer);
    _needle->setObjectName(QStringLiteral("needle"));
    _replacement->setObjectName(QStringLiteral("replacement"));
    _answer->setWordWrap(true);
    _answer->setMinimumHeight(3 * fontMetrics().lineSpacing());
    _answer->setAlignment(Qt::AlignTop);
    auto* const next = new QPushButton(inLanguage(u"Find Next"_ns));
    auto* const all = new QPushButton(inLanguage(u"Replace All"_ns));
    auto* const buttons = new QHBoxLayout;
    for (auto* const button : {next, all}) buttons->addWidget(button);
    auto* const form = new QFormLayout(this);
    form->addRow(inLanguage(u"Find"_ns), _needle);
    form->addRow(inLanguage(u"Replace by"_ns), _replacement);
    form->addRow(inLanguage(u"Words"_ns), _words);
    // In the order of ZKWordCompareOption.
    for (const auto& words :
         {u"Any part"_ns, u"Whole words"_ns, u"Start of words"_ns, u"End of words"_ns}) {
      _words->addItem(inLanguage(words));
    }
    for (auto* const option : {_respectsCase, _isPattern, _wraps}) form->addRow(option);
    _wraps->setChecked(true);
    form->addRow(buttons);
    form->addRow(_answer);
    connect(_needle, &QLineEdit::returnPressed, this, &FindPanel::findNext);
    connect(next, &QPushButton::clicked, this, &FindPanel::findNext);
    connect(all, &QPushButton::clicked, this, &FindPanel::replaceAll);
  }

  void takeFocus() {
    _needle->setFocus();
    _needle->selectAll();
    collectWords();
  }

  void findNext() {
    NSRef<NSError> error;
    _match = sketchbook::findNext(_drawing->shapes(), *finder(), _match, &error);
    if (!_match) return tell(error, localized(u"Not found."_ns));
    _drawing->select(NSMake<NSIndexSet>(_match->index));
    _canvas->showSelection();
    const auto text = _drawing->shapes()[_match->index].as<Shape>()->text();
    tell(error, quoted(text->substringWithRange(text->lineRangeForRange(_match->range))));
  }

 private:
  void replaceAll() {
    NSRef<NSError> error;
    const NSUInteger count =
        sketchbook::replaceAll(*_drawing, *finder(), fromQt(_replacement->text()), &error);
    tell(error, NSString::stringWithFormat(localized(u"%u replaced."_ns), count));
  }

  NSRef<ZKTextFinder> finder() const {
    NSStringCompareOptions options{};
    if (!_respectsCase->isChecked()) options |= NSCaseInsensitiveSearch;
    if (_isPattern->isChecked()) options |= ZKRegularExpressionSearch;
    auto finder = NSMake<ZKTextFinder>(fromQt(_needle->text()), options,
                                       static_cast<ZKWordCompareOption>(_words->currentIndex()));
    finder->setWraps(_wraps->isChecked());
    return finder;
  }

  void tell(const NSRef<NSError>& error, const NSRef<NSString>& answer) {
    _answer->setText(toQt(error ? localized(u"This is no regular expression."_ns) : answer));
  }

  void collectWords() {
    if (!isVisible() || _drawing->shapes().is(_collected)) return;
    if (_collecting) _collecting->cancel();
    _collected = _drawing->shapes();
    // The shapes of an array stay as they are while people draw on.
    _collecting = _tasks->start(
        u"Collecting words"_ns,
        [shapes = _collected](const Progress& progress) { return wordsOfLabels(shapes, progress); },
        [this](const NSRef<NSObject>& result) {
          QStringList words;
          for (const auto& word : result.as<NSArray>()->each<NSString>()) words.append(toQt(word));
          _collectedWords->setStringList(words);
        });
  }

  NSRef<Drawing> _drawing;
  Canvas* _canvas;
  TaskBar* _tasks;
  std::optional<LabelMatch> _match;
  NSRef<NSArray> _collected;
  NSRef<Task> _collecting;
  QLineEdit* _needle = new QLineEdit;
  QLineEdit* _replacement = new QLineEdit;
  QCheckBox* _respectsCase = new QCheckBox(inLanguage(u"Match case"_ns));
  QComboBox* _words = new QComboBox;
  QCheckBox* _isPattern = new QCheckBox(inLanguage(u"Regular expression"_ns));
  QCheckBox* _wraps = new QCheckBox(inLanguage(u"Wrap around"_ns));
  QLabel* _answer = new QLabel;
  QStringListModel* _collectedWords = new QStringListModel(this);
  const NSObservation _observation{DrawingDidChange(), _drawing, [this] { collectWords(); }};
};

}  // namespace sketchbook
