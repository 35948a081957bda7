#include <iostream>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

template <class Result>
void show(const char* what, const Result& result) {
  std::cout << what << ": " << result << '\n';
}

void ranges() {
  const auto text = u"Bring a ring"_ns;
  const NSRange ring = text->rangeOfString(u"ring"_ns);
  show("first", ring);
  show("ends before", NSMaxRange(ring));
  show("last, in any case",
       text->rangeOfString_options(u"RING"_ns, NSCaseInsensitiveSearch | NSBackwardsSearch));
  show("no bell", text->rangeOfString(u"bell"_ns) == NSNotFoundRange);
  show("from the one to the other", NSUnionRange(ring, {8, 4}));
  try {
    (void)text->substringWithRange({8, 5});
  } catch (const NSException& exception) {
    show("too long", exception.reason());
  }
}

// One character for people may be many units.
void characters() {
  const auto text = u"e\u0301 \U0001F469\u200D\U0001F467"_ns;
  show("units", text->length());
  for (NSUInteger at = 0; at < text->length();) {
    const NSRange range = text->rangeOfComposedCharacterSequenceAtIndex(at);
    std::cout << '"' << text->substringWithRange(range) << "\" at " << range << '\n';
    at = NSMaxRange(range);
  }
  show("the same letter", text->rangeOfString(u"é"_ns));
}

void pieces() {
  const auto file = u"# lord of the rings.txt"_ns;
  const auto title = stringByRemovingSuffix(stringByRemovingPrefix(file, u"# "_ns), u".txt"_ns);
  show("title", titlecaseString(title));
  show("without a part", stringByRemovingString(u"a-b-c"_ns, u"-"_ns));

  const auto signs = NSCharacterSet::characterSetWithCharactersInString(u",;"_ns);
  const auto list = u" a , b;;c "_ns;
  const auto split = componentsSeparatedByCharactersInSet_trimWhitespace(list, signs, true);
  show("split", split->componentsJoinedByString(u"|"_ns));
  show("replaced", stringByReplacingCharactersInSet_withString(list, signs, endashString()));
  show("removed", stringByRemovingCharactersInSet(list, signs));
  show("joined", stringWithStrings({u"copy"_ns, horizontalEllipsisString(), u" "_ns,
                                    commandKeyIndicatorString(), u"C"_ns}));
}

// What an editor asks about the places in a text.
void places() {
  const auto text = u"One two, three"_ns;
  show("word", text->substringWithRange(rangeOfWordContainingCharacter(text, 5)));
  show("words", text->substringWithRange(rangeOfWordsIntersectingRange(text, {2, 4})));
  const auto commas = NSCharacterSet::characterSetWithCharactersInString(u","_ns);
  show("between commas", rangeWithoutCharactersFromSet_atIndex(text, commas, 10));

  show("next t", findString_selectedRange_options_wrap(text, u"t"_ns, {4, 1}, 0, true));
  show("and around the end", findString_selectedRange_options_wrap(text, u"t"_ns, {9, 1}, 0, true));

  NSRange before;
  NSRange after;
  show("trimmed", trimRange_prefixRange_postfixRange_trimOptions(u"  two  "_ns, {0, 7}, &before,
                                                                 &after, ZKTrimStart | ZKTrimEnd));
  std::cout << "off " << before << " and " << after << '\n';

  // The selection follows what is removed from a pasted text.
  NSRange selection = {3, 2};
  const auto pasted =
      normalizedSubStringWithRange_selectedRange(u"a\u0001b\u0002cd"_ns, {0, 6}, &selection);
  std::cout << "pasted: " << pasted << " with " << selection << '\n';
}

}  // namespace

int main() {
  std::cout << std::boolalpha;
  for (const auto part : {ranges, characters, pieces, places}) part();
}
