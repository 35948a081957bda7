#include "examples/workbench/TextReport.h"

#include "examples/workbench/Table.h"

#include <algorithm>

using namespace ZKFoundationExtensions;

namespace {

NSRef<NSString> textOf(NSUInteger number) { return NSMake<NSNumber>(number)->stringValue(); }

const NSRef<NSCharacterSet>& newlines() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(NSMake<NSCharacterSet>(u"\n"_ns));
  return *set;
}

struct Words {
  NSUInteger count = 0;
  NSRange longest;
};

// Walks from word to word; what lies between them comes as a run of its own.
Words wordsOf(const NSRef<NSString>& text) {
  const auto& boundaries = wordBoundariesCharacterSet();
  Words words;
  for (NSUInteger at = 0; at < text->length();) {
    const NSRange run = rangeOfWordContainingCharacter(text, at);
    if (!boundaries->characterIsMember(text->characterAtIndex(at))) {
      ++words.count;
      if (run.length > words.longest.length) words.longest = run;
    }
    // A letter outside of the basic plane counts as a run of no length.
    at = std::max(NSMaxRange(run), at + 1);
  }
  return words;
}

// The number of a heading of this level and its text, for "## The text".
void printHeading(std::ostream& out, const NSRef<NSString>& line, NSUInteger& section,
                  NSUInteger& part) {
  const auto title = stringByRemovingPrefix(line, u"## "_ns);
  if (title != line) {
    part = 0;
    out << "  " << ZKBinToStr(++section, ZKNumberUpperCaseRoman) << ". " << title << '\n';
    return;
  }
  const auto subtitle = stringByRemovingPrefix(line, u"### "_ns);
  if (subtitle != line) {
    out << "    " << ZKBinToStr(++part, ZKNumberLowerCaseLetters) << ") " << subtitle << '\n';
  }
}

void printHit(std::ostream& out, const NSRef<NSString>& text, NSRange word, bool isColoured) {
  const NSRange line = rangeOfCharactersAtIndex_delimitedBy(text, word.location, newlines());
  const NSRange trimmed =
      trimRange_prefixRange_postfixRange_trimOptions(text, line, nullptr, nullptr, ZKTrimStart);
  const NSUInteger lineNumber =
      text->substringToIndex(line.location)->componentsSeparatedByString(u"\n"_ns)->count();
  const auto part = [&](NSUInteger start, NSUInteger end) {
    return text->substringWithRange({start, end - start});
  };
  out << "    line " << lineNumber << ": " << part(trimmed.location, word.location)
      << (isColoured ? "\033[1;33m" : "[") << part(word.location, NSMaxRange(word))
      << (isColoured ? "\033[0m" : "]") << part(NSMaxRange(word), NSMaxRange(line)) << '\n';
}

}  // namespace

void printTextStatistics(std::ostream& out, const std::vector<NSRef<Document>>& documents,
                         bool isColoured) {
  Table table({{"file", 60, "36"},
               {"lines", 8, "0"},
               {"words", 8, "0"},
               {"longest word", 40, "33"},
               {"headline", 60, "0"}});
  for (const auto& document : documents) {
    const auto& name = document->name();
    const auto& text = document->text();
    const Words words = wordsOf(text);
    const NSUInteger lines =
        text->componentsSeparatedByString(u"\n"_ns)->count() - (text->hasSuffix(u"\n"_ns) ? 1 : 0);
    const auto headline = stringByRemovingSurroundingWhitespace(titlecaseString(document->title()));
    table.addRow({name, textOf(lines), textOf(words.count), text->substringWithRange(words.longest),
                  headline});
  }
  table.print(out, isColoured);
}

void printOutlines(std::ostream& out, const std::vector<NSRef<Document>>& documents) {
  for (const auto& document : documents) {
    const auto& name = document->name();
    if (!name->hasSuffix(u".md"_ns)) continue;
    out << name << '\n';
    NSUInteger section = 0;
    NSUInteger part = 0;
    const auto lines =
        componentsSeparatedByCharactersInSet_trimWhitespace(document->text(), newlines(), false);
    for (const auto& line : *lines) printHeading(out, line.as<NSString>(), section, part);
  }
}

void printHits(std::ostream& out, const std::vector<NSRef<Document>>& documents,
               const NSRef<NSString>& term, bool isColoured) {
  constexpr NSUInteger shownDocuments = 3;
  constexpr NSUInteger shownHits = 3;
  NSUInteger documentsWithHits = 0;
  const auto finder = NSMake<ZKTextFinder>(term, NSCaseInsensitiveSearch);
  for (const auto& document : documents) {
    const auto& name = document->name();
    const auto& text = document->text();
    const auto first = finder->nextMatchInString_selectedRange(text, {text->length() / 2, 0});
    if (!first) continue;
    out << "  " << name << " (" << finder->matchesInString(text).size() << "), lines "
        << stringValueWithSeparator(document->linesWith(term), u", "_ns) << '\n';
    auto hit = first;
    for (NSUInteger k = 0; k < shownHits && hit; ++k) {
      printHit(out, text, hit->words, isColoured);
      hit = finder->nextMatchInString_selectedRange(text, hit->match);
      if (hit == first) break;
    }
    if (++documentsWithHits == shownDocuments) return;
  }
}
