#include <chrono>
#include <iostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace std::chrono_literals;
using namespace ZKFoundationExtensions;

const NSRef<NSString>& DocumentDidChange() { return NSConstantString<u"DocumentDidChange">(); }

// A text that is being edited, and the file that it came from.
struct Document : NSObject {
  Document(const NSRef<NSURL>& anURL, NSStringEncoding anEncoding, const NSRef<NSString>& string)
      : url(anURL), encoding(anEncoding), text(string->mutableCopy()) {}

  // The old file stays until the new one is whole.
  bool save() {
    cancelDelayedBlock(NSWeakRef(share(this)), autosave);
    NSRef<NSError> error;
    isSaved = text->writeToURL_atomically_encoding_error(url, true, encoding, &error);
    std::cout << (isSaved ? "saved" : error->localizedDescription()->utf8()) << '\n';
    return isSaved;
  }

  // Changes what is selected; whoever shows the document hears of it at the end of the pass.
  void replaceSelection(const NSRef<NSString>& string) {
    remember();
    text->replaceCharactersInRange_withString(selection, string);
    selection.length = string->length();
    noteChange();
  }
  NSRef<NSString> selected() const { return text->substringWithRange(selection); }
  std::string bytes() const { return NSEncodedText(text->view(), encoding); }
  void remember() { before.emplace_back(text->copy(), selection); }
  void undo() {
    if (before.empty()) return;
    text->setString(before.back().first);
    selection = before.back().second;
    before.pop_back();
    noteChange();
  }
  // A document that has been closed meanwhile is not saved again.
  void noteChange() {
    isSaved = false;
    const NSWeakRef self = share(this);
    cancelDelayedBlock(self, autosave);
    autosave = performBlock_afterDelay(self, &Document::save, 30s);
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(
        NSNotification::notificationWithName_object(DocumentDidChange(), share(this)), NSPostASAP);
  }

  const NSRef<NSURL> url;
  const NSStringEncoding encoding;
  const NSRef<NSMutableString> text;
  NSRange selection;
  std::vector<std::pair<NSRef<NSString>, NSRange>> before;
  NSRef<NSBlock> autosave;
  bool isSaved = true;
};

// Performs commands, a line each.
class Editor : public NSObject {
 public:
  explicit Editor(const NSRef<NSManualClock>& clock) : _clock(clock) {}

  void perform(const NSRef<NSString>& line) {
    std::cout << "> " << line << '\n';
    const auto space = line->rangeOfString(u" "_ns).location;
    const auto name = space == NSNotFound ? line : line->substringToIndex(space);
    const auto argument = space == NSNotFound ? u""_ns : line->substringFromIndex(space + 1);
    const auto command = _commands.find(name);
    if (command == _commands.end()) {
      std::cout << "There is no command " << quoted(name) << '\n';
    } else if (_document || name == u"open") {
      (this->*command->second)(argument);
    }
  }

 private:
  using Text = const NSRef<NSString>&;
  using Command = void (Editor::*)(Text);

  static NSRef<NSString> quoted(Text text) {
    return stringByQuotingAtLevel_forLocaleIdentifier(
        text, 0, NSLocale::currentLocale()->localeIdentifier());
  }

  void open(Text path) {
    const auto url = NSURL::fileURLWithPath(path);
    NSStringEncoding encoding{};
    NSRef<NSError> error;
    const auto text = NSString::stringWithContentsOfURL_usedEncoding_error(url, &encoding, &error);
    if (text) {
      _document = NSMake<Document>(url, encoding, text);
      showStatus();
    } else {
      std::cout << error->localizedDescription() << '\n';
    }
  }

  void findBy(Text needle, NSOptions<NSStringCompareOptions> options, ZKWordCompareOption words) {
    _finder->setNeedle(needle);
    _finder->setOptions(options);
    _finder->setWordCompareOption(words);
    next(nullptr);
  }
  void find(Text needle) { findBy(needle, NSCaseInsensitiveSearch, ZKWordCompareNone); }
  void findWhole(Text needle) { findBy(needle, NSCaseInsensitiveSearch, ZKWordCompareWhole); }
  void findPattern(Text needle) { findBy(needle, ZKRegularExpressionSearch, ZKWordCompareNone); }

  void next(Text /*none*/) {
    NSRef<NSError> error;
    const auto found =
        _finder->nextMatchInString_selectedRange(_document->text, _document->selection, &error);
    if (!found) {
      std::cout << (error ? error->localizedDescription() : u"not found"_ns) << '\n';
      return;
    }
    _document->selection = found->match;
    showSelection();
  }
  void replace(Text replacement) {
    _document->remember();
    if (_finder->replaceNextInString_withString_selectedRange(_document->text, replacement,
                                                              &_document->selection)) {
      showSelection();
      _document->noteChange();
    }
  }
  void replaceAll(Text replacement) {
    _document->remember();
    std::cout << _finder->replaceAllInString_withString_selectedRange(_document->text, replacement,
                                                                      &_document->selection)
              << " replaced\n";
    _document->noteChange();
  }

  void selectAll(Text /*none*/) { _document->selection = {0, _document->text->length()}; }
  void selectLines(Text /*none*/) {
    _document->selection = _document->text->lineRangeForRange(_document->selection);
    showSelection();
  }
  void upper(Text /*none*/) {
    _document->replaceSelection(_document->selected()->localizedUppercaseString());
    showSelection();
  }
  void sort(Text /*none*/) {
    const auto lines = componentsSeparatedByCharactersInSet_trimWhitespace(
        _document->selected(), NSCharacterSet::characterSetWithCharactersInString(u"\n"_ns), false);
    sortUsingSelector(lines, &NSString::caseInsensitiveCompare);
    _document->replaceSelection(lines->componentsJoinedByString(u"\n"_ns) + u"\n");
    showSelection();
  }
  // Adds the numbers in the selection, as they are written in the user's country.
  void sum(Text /*none*/) {
    const auto formatter = NSMake<NSNumberFormatter>();
    double result = 0;
    const auto selected = _document->selected();
    for (auto rest = selected->view(); !rest.empty();) {
      const auto number = formatter->takeNumber(rest);
      result += number.value_or(0);
      if (!number) rest.remove_prefix(1);
    }
    std::cout << result << '\n';
  }
  void undo(Text /*none*/) { _document->undo(); }

  void pending(Text /*none*/) {
    const auto work = NSRunLoop::currentRunLoop()->pendingWork();
    for (const auto& line : work->each<NSString>()) std::cout << line << '\n';
  }
  // Lets that many seconds pass.
  void wait(Text seconds) {
    auto rest = seconds->view();
    _clock->advance(NSMake<NSNumberFormatter>()->takeNumber(rest).value_or(0));
  }

  // Puts a copy beside the file, which is never an existing one.
  void copy(Text /*none*/) {
    NSRef<NSError> error;
    const auto url = createFileWithUniqueNameAtURL_contents_options_error(
        NSFileManager::defaultManager(), _document->url, NSMake<NSData>(_document->bytes()),
        {.style = ZKNamingParenthesized, .isFileName = true}, &error);
    std::cout << (url ? url->lastPathComponent() : error->localizedDescription()) << '\n';
  }
  void close(Text /*none*/) {
    if (!_document->isSaved && !_document->save()) return;
    const NSWeakRef weak = std::exchange(_document, nullptr);
    std::cout << (weak.isNil() ? "closed\n" : "still held\n");
  }

  void showSelection() const {
    std::cout << _document->selection.location << ": " << quoted(_document->selected()) << '\n';
  }
  void showStatus() const {
    const auto size = NSMake<NSNumber>(_document->bytes().size());
    const auto sizes = NSMake<ZKUnitOfInformationFormatter>();
    std::cout << _document->url->lastPathComponent() << ", "
              << sizes->stringFromNumber_ofUnit(size, ZKUnitOfInformationByte)
              << (_document->isSaved ? "\n" : ", changed\n");
  }

  // Strings are keys by their text.
  const std::unordered_map<NSRef<NSString>, Command> _commands = {
      {u"open"_ns, &Editor::open},        {u"find"_ns, &Editor::find},
      {u"whole"_ns, &Editor::findWhole},  {u"pattern"_ns, &Editor::findPattern},
      {u"next"_ns, &Editor::next},        {u"replace"_ns, &Editor::replace},
      {u"every"_ns, &Editor::replaceAll}, {u"lines"_ns, &Editor::selectLines},
      {u"all"_ns, &Editor::selectAll},    {u"upper"_ns, &Editor::upper},
      {u"sort"_ns, &Editor::sort},        {u"undo"_ns, &Editor::undo},
      {u"pending"_ns, &Editor::pending},  {u"wait"_ns, &Editor::wait},
      {u"copy"_ns, &Editor::copy},        {u"sum"_ns, &Editor::sum},
      {u"close"_ns, &Editor::close},
  };
  NSRef<Document> _document;
  NSRef<ZKTextFinder> _finder = NSMake<ZKTextFinder>(nullptr);
  NSRef<NSManualClock> _clock;
  NSObservation _observation{DocumentDidChange(), nullptr, [this] { showStatus(); }};
};

int main() {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en_GB"_ns));
  const auto clock = NSMake<NSManualClock>();
  const auto loop = NSRunLoop::currentRunLoop();
  loop->setClock(clock);
  const auto editor = NSMake<Editor>(clock);
  // A line a pass: what it asked for comes before the next one.
  const auto input = NSDescriptorSource::sourceWithDescriptor_events_block(
      STDIN_FILENO, NSDescriptorReadable, [&](NSDescriptorSource& self) {
        std::string line;
        char sign = 0;
        while (::read(self.descriptor(), &sign, 1) == 1 && sign != '\n') line += sign;
        if (line.empty()) return loop->stop();
        editor->perform(NSMake<NSString>(line));
      });
  loop->addSource_forMode(input, NSDefaultRunLoopMode());
  loop->run();
}
