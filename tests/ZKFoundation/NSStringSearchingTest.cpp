#include "tests/TextModels.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

// Whether ICU, asked for the two texts alone, takes them for the same.
bool isSame(std::u16string_view a, std::u16string_view b, NSUInteger options) {
  const bool folds = (options & NSCaseInsensitiveSearch) != 0;
  if ((options & NSLiteralSearch) != 0 && !folds) return a == b;
  const auto compare = (options & NSLiteralSearch) != 0 ? u_strCaseCompare : unorm_compare;
  UErrorCode status = U_ZERO_ERROR;
  return compare(a.data(), static_cast<int32_t>(a.size()), b.data(), static_cast<int32_t>(b.size()),
                 folds ? U_COMPARE_IGNORE_CASE : 0, &status) == 0;
}

bool cutsCharacter(std::u16string_view text, std::size_t at, NSUInteger options) {
  if (at == 0 || at == text.size()) return false;
  if (NSIsHighSurrogate(text[at - 1]) && NSIsLowSurrogate(text[at])) {
    return (options & (NSLiteralSearch | NSCaseInsensitiveSearch)) != NSLiteralSearch;
  }
  if ((options & NSLiteralSearch) != 0) return false;
  return (U_GET_GC_MASK(text[at]) & U_GC_M_MASK) != 0;
}

// Every slice of the range, one by one.
NSRange searchModel(std::u16string_view text, std::u16string_view needle, NSUInteger options,
                    NSRange range) {
  const NSUInteger end = NSMaxRange(range);
  NSRange best = NSNotFoundRange;
  if (needle.empty()) return best;
  for (NSUInteger start = range.location; start < end; ++start) {
    for (NSUInteger stop = start + 1; stop <= end; ++stop) {
      const bool isBackwards = (options & NSBackwardsSearch) != 0;
      const bool isAtEnd = isBackwards ? stop == end : start == range.location;
      if ((options & NSAnchoredSearch) != 0 && !isAtEnd) continue;
      if (cutsCharacter(text, start, options) || cutsCharacter(text, stop, options)) continue;
      if (!isSame(text.substr(start, stop - start), needle, options)) continue;
      best = {start, stop - start};
      if (!isBackwards) return best;
    }
  }
  return best;
}

TEST(NSStringSearch, FindsWhatTryingEverySliceFinds) {
  using Pieces = std::vector<std::u16string>;
  // Pieces that fold and decompose into each other, marks in either order, a pair, and halves.
  std::istringstream list(
      "a A e\u0301 \u00E9 E\u0301 \u00C9 \u00C5 A\u030A \u212B \u00E5\u0323 a\u0323\u030A "
      "a\u030A\u0323 \u00DF s SS \u017F \u212A k \u0130 i\u0307 \U0001F600");
  Pieces tricky = {std::u16string(1, 0xD83D)};
  for (std::string piece; list >> piece;) tricky.emplace_back(NSMake<NSString>(piece)->view());
  const Pieces plain = {u"a", u"A", u"b", u"B", u"\u00C4", u"\u00E4"};
  const Pieces marked = {u"\u03B1", u"\u0391", u"\u1FB3", u"\u0345", u"\u0301",
                         u"\u0419", u"\u0438", u"\u0306", u"\u0915", u"\u0958",
                         u"\u093C", u"\u093E", u"\u094D"};
  const auto anyText = [](const Pieces& pieces, int most) {
    std::u16string text;
    for (int k = *rc::gen::inRange(0, most + 1); k > 0; --k) text += *rc::gen::elementOf(pieces);
    return text;
  };
  expectProperty("the same range", [&] {
    const Pieces pieces = *rc::gen::elementOf(std::vector<Pieces>{tricky, plain, marked});
    const auto text = anyText(pieces, 16);
    const auto needle = *rc::gen::elementOf(pieces) + anyText(pieces, 1);
    const auto options = *rc::gen::weightedOneOf<NSUInteger>(
        {{3, rc::gen::inRange<NSUInteger>(0, NSAnchoredSearch)},
         {1, rc::gen::inRange<NSUInteger>(NSAnchoredSearch, 16)}});
    const NSRange range =
        *rc::gen::arbitrary<bool>() ? NSRange{0, text.size()} : anyRange(text.size());
    const auto found = NSMake<NSString>(text)->rangeOfString_options_range(NSMake<NSString>(needle),
                                                                           options, range);
    RC_ASSERT(found == searchModel(text, needle, options, range));
  });
}

TEST(NSStringSearch, KnowsComposedCharacters) {
  const auto find = [](const NSRef<NSString>& text, const NSRef<NSString>& needle,
                       NSUInteger options) { return text->rangeOfString_options(needle, options); };
  EXPECT_EQ(find(u"cafe\u0301s"_ns, u"é"_ns, 0), (NSRange{3, 2}));
  EXPECT_EQ(find(u"cafe\u0301s"_ns, u"\u0301"_ns, 0), NSNotFoundRange);
  EXPECT_EQ(find(u"CAFÉ"_ns, u"cafe\u0301"_ns, NSCaseInsensitiveSearch), (NSRange{0, 4}));
  EXPECT_EQ(find(u"\u1112\u1161\u11ABab"_ns, u"\uD55C"_ns, 0), (NSRange{0, 3}));
  EXPECT_EQ(find(u"\u1112\u1161\u11ABab"_ns, u"\u1112\u1161"_ns, 0), NSNotFoundRange);
  EXPECT_EQ(find(u"a"_ns, nullptr, 0), NSNotFoundRange);
  EXPECT_EQ(find(u"\u0915\u093E\u0915"_ns, u"\u0915"_ns, 0), (NSRange{2, 1}));
  // What overlaps a place that cuts a character may be a match: behind "aa" with a mark, "aa".
  EXPECT_EQ(find(u"\u0915\u0915\u0915\u093E\u0915\u0915"_ns, u"\u0915\u0915"_ns, 0),
            (NSRange{0, 2}));
  EXPECT_EQ(stringByRemovingString(u"aa\u0334aa"_ns, u"aa"_ns), u"aa\u0334");
  EXPECT_EQ(stringByRemovingString(u"a\u0334a\u0334a"_ns, u"a\u0334a"_ns), u"a\u0334");
  EXPECT_EQ(stringByRemovingString(u"aaAe\u0301a"_ns, u"a"_ns), u"Ae\u0301");
}

TEST(NSStringSearch, FindsBehindLongTextsOfOtherKinds) {
  // The match stands at every place around the ends of the parts that are searched one by one.
  const std::u16string composed = u"\u00E9";
  for (const std::u16string filling : {u"a", u"\u0416", u"e\u0323"}) {
    for (NSUInteger count = 60; count < 140; ++count) {
      std::u16string text;
      for (NSUInteger k = 0; k < count; ++k) text += filling;
      const NSUInteger place = text.size();
      text += u"e\u0301 and more";
      const auto string = NSMake<NSString>(text);
      const auto needle = NSMake<NSString>(composed);
      ASSERT_EQ(string->rangeOfString(needle), (NSRange{place, 2})) << count;
      ASSERT_EQ(string->rangeOfString_options(needle, NSBackwardsSearch), (NSRange{place, 2}));
      ASSERT_EQ(string->rangeOfString_options(u"E\u0301 AND"_ns, NSCaseInsensitiveSearch),
                (NSRange{place, 6}));
    }
  }
  const std::u16string others(300, u'\u0434');
  EXPECT_EQ(NSMake<NSString>(others + u"\u0416")
                ->rangeOfString_options(u"\u0436"_ns, NSCaseInsensitiveSearch),
            (NSRange{300, 1}));
}

TEST(NSStringSearch, OrdersLongRunsOfMarks) {
  constexpr NSUInteger count = 200'000;
  std::u16string alternating = u"e";
  std::u16string marked;
  for (NSUInteger k = 0; k < count; ++k) alternating += k % 2 == 0 ? u'\u0301' : u'\u0323';
  for (NSUInteger k = 0; k < count; ++k) marked += u"a\u0334";
  const auto ordered = NSMake<NSString>(
      std::u16string(u"e").append(count / 2, u'\u0323').append(count / 2, u'\u0301'));
  const auto text = NSMake<NSString>(alternating + u"b" + alternating);
  for (const NSUInteger options : {0U, 1U}) {
    EXPECT_EQ(ordered->compare_options(NSMake<NSString>(alternating), options), NSOrderedSame);
    EXPECT_EQ(text->rangeOfString_options(ordered, options), (NSRange{0, count + 1}));
    EXPECT_EQ(text->rangeOfString_options(ordered, options | NSBackwardsSearch),
              (NSRange{count + 2, count + 1}));
  }
  // Only the last of what overlaps is not followed by a mark.
  const auto half = NSMake<NSString>(marked.substr(count) + u"a");
  const auto whole = NSMake<NSString>(marked + u"a");
  EXPECT_EQ(whole->rangeOfString(half), (NSRange{count, count + 1}));
  EXPECT_EQ(stringByRemovingString(whole, half)->length(), count);
}

TEST(NSStringSearching, FindsOutsideOfTheSelection) {
  const NSUInteger backwards = NSBackwardsSearch;
  const Rows<const char16_t*, NSRange, NSUInteger, bool, NSRange> rows = {
      {u"ab ab", {0, 2}, 0, true, {3, 2}},
      {u"ab ab", {3, 2}, 0, true, {0, 2}},
      {u"ab ab", {3, 2}, 0, false, NSNotFoundRange},
      {u"ab", {0, 2}, 0, true, NSNotFoundRange},
      {u"ab ab", {1, 3}, 0, true, NSNotFoundRange},
      {u"ab ab ab", {3, 2}, backwards, true, {0, 2}},
      {u"ab ab ab", {0, 2}, backwards, true, {6, 2}},
      {u"ab ab ab", {0, 2}, backwards, false, NSNotFoundRange},
      {u"AB x", {2, 1}, NSCaseInsensitiveSearch, true, {0, 2}},
  };
  for (const auto& [text, selection, options, wraps, expected] : rows) {
    EXPECT_EQ(findString_selectedRange_options_wrap(NSMake<NSString>(text), u"ab"_ns, selection,
                                                    options, wraps),
              expected)
        << NSMake<NSString>(text) << ' ' << selection;
  }
  EXPECT_EQ(findString_selectedRange_options_wrap(u"ab"_ns, nullptr, {0, 0}, 0, true),
            NSNotFoundRange);
}

TEST(NSStringSearching, JudgesMatchesByTheirWords) {
  const Rows<const char16_t*, NSUInteger, NSUInteger, NSRange> rows = {
      {u"snapp apple app", ZKWordCompareStart, 0, {6, 5}},
      {u"snapp apple", ZKWordCompareWhole, 0, NSNotFoundRange},
      {u"apple snap.app", ZKWordCompareEnd, 0, {11, 3}},
      // Only the last occurrence is examined backwards: what is rejected is followed forwards.
      {u"app apple", ZKWordCompareWhole, NSBackwardsSearch, NSNotFoundRange},
      {u"apple app", ZKWordCompareWhole, NSBackwardsSearch, {6, 3}},
  };
  for (const auto& [text, condition, options, expected] : rows) {
    const auto string = NSMake<NSString>(text);
    EXPECT_EQ(findString_searchRange_options_wordCompareOption(
                  string, u"app"_ns, {0, string->length()}, options, condition),
              expected)
        << string << ' ' << condition;
  }
  const auto find = [](const NSRef<NSString>& text, const NSRef<NSString>& needle) {
    return findString_searchRange_options_wordCompareOption(
        text, needle, {0, text->length()}, NSCaseInsensitiveSearch, ZKWordCompareWhole);
  };
  for (const char16_t unit : std::u16string_view(u"-aж")) {
    const auto run = NSMake<NSString>(std::u16string(200'000, unit));
    EXPECT_EQ(find(run, run->substringToIndex(1)), NSNotFoundRange);
  }
  // The half behind the sign belongs to a letter.
  EXPECT_EQ(find(u"-\U0001D49C"_ns, u"-"_ns), (NSRange{0, 1}));
}

TEST(NSStringSearching, RejectsMatchesOneByOne) {
  expectProperty("the steps one by one", [] {
    const auto units =
        *rc::gen::element<std::u16string>(u"aaa-", u"ééé\u0301-", u"aʼn -\U0001D49C");
    const std::u16string filling(*rc::gen::element<std::size_t>(0, 200), units[0]);
    const auto string = NSMake<NSString>(filling + *textOver(units));
    const auto needle = NSMake<NSString>(*rc::gen::scale(0.04, textOver(units)));
    const auto options = *rc::gen::inRange<NSUInteger>(0, 16);
    const auto condition = *rc::gen::inRange<NSUInteger>(0, 6);
    const NSRange range = anyRange(string->length());
    NSRange expected = NSNotFoundRange;
    NSRange match = string->rangeOfString_options_range(needle, options, range);
    while (match.length != 0) {
      const NSRange word = rangeOfWordContainingCharacter(string, match.location);
      if (condition == 1   ? word == match
          : condition == 2 ? word.location == match.location
                           : condition != 3 || NSMaxRange(word) == NSMaxRange(match)) {
        expected = condition % 4 == 0 ? match : word;
        break;
      }
      const NSUInteger next = NSMaxRange(match);
      match =
          string->rangeOfString_options_range(needle, options, {next, NSMaxRange(range) - next});
    }
    RC_ASSERT(findString_searchRange_options_wordCompareOption(string, needle, range, options,
                                                               condition) == expected);
  });
}

TEST(NSStringSearching, FindsWords) {
  expectProperty("runs of one kind", [] {
    const auto text = *textOver(u"ab1\u0301é ,-'\n\U0001D49C\U0001F600");
    RC_PRE(!text.empty());
    const auto string = NSMake<NSString>(text);
    const auto index = *rc::gen::inRange<NSUInteger>(0, text.size());
    std::vector<bool> isWord;
    for (const NSRange character : charactersOf(text)) {
      const bool isMember = ::isMember(NSCharacterSet::alphanumericCharacterSet(), text, character);
      isWord.insert(isWord.end(), character.length, isMember);
    }
    NSUInteger start = index;
    NSUInteger end = index;
    while (start > 0 && isWord[start - 1] == isWord[index]) --start;
    while (end < text.size() && isWord[end] == isWord[index]) ++end;
    RC_ASSERT(rangeOfWordContainingCharacter(string, index) == (NSRange{start, end - start}));
    const auto& ends =
        isWord[index] ? wordBoundariesCharacterSet() : NSCharacterSet::alphanumericCharacterSet();
    RC_ASSERT(rangeOfCharactersAtIndex_delimitedBy(string, index, ends) ==
              rangeOfWordContainingCharacter(string, index));

    const NSRange range = anyRange(text.size());
    const NSRange words = rangeOfWordsIntersectingRange(string, range);
    if (range.length == 0) {
      RC_ASSERT(words == NSRange());
    } else {
      const NSRange first = rangeOfWordContainingCharacter(string, range.location);
      const NSRange last = rangeOfWordContainingCharacter(string, NSMaxRange(range) - 1);
      RC_ASSERT(words.location == first.location && NSMaxRange(words) == NSMaxRange(last));
    }
  });
  EXPECT_EQ(rangeOfWordsIntersectingRange(u"ab"_ns, {NSNotFound, 0}), (NSRange{0, 0}));
  const auto comma = NSMake<NSCharacterSet>(u","_ns);
  EXPECT_EQ(rangeOfCharactersAtIndex_delimitedBy(u"a,bc,d"_ns, 3, comma), (NSRange{2, 2}));
  EXPECT_EQ(rangeOfCharactersAtIndex_delimitedBy(u"a,bc,d"_ns, 4, comma), (NSRange{2, 2}));
  EXPECT_EQ(rangeOfCharactersAtIndex_delimitedBy(u"a,bc,d"_ns, 6, nullptr), (NSRange{0, 6}));
}

// Swapping the options of two operations does not compile.
static_assert(!std::convertible_to<ZKTrimOptions, NSOptions<NSStringCompareOptions>>);
static_assert(!std::convertible_to<NSStringCompareOptions, NSOptions<ZKWordCompareOption>>);
static_assert(!std::convertible_to<ZKWordCompareOption, NSOptions<ZKNumberStyle>>);
template <class A, class B>
constexpr bool areJoined = requires(A a, B b) {
  a | b;
};
static_assert(!areJoined<NSStringCompareOptions, ZKTrimOptions>);
static_assert(areJoined<NSStringCompareOptions, NSUInteger>);

TEST(NSStringSearching, TakesJoinedOptionsAndNumbers) {
  NSStringCompareOptions options = NSBackwardsSearch | NSLiteralSearch;
  EXPECT_EQ(u"aba"_ns->rangeOfString_options(u"a"_ns, options), (NSRange{2, 1}));
  options |= NSCaseInsensitiveSearch;
  options &= ~NSBackwardsSearch;
  EXPECT_EQ(options, 3U);
  EXPECT_EQ(u"aba"_ns->rangeOfString_options(u"B"_ns, options), (NSRange{1, 1}));
  EXPECT_EQ(u"aba"_ns->rangeOfString_options(u"a"_ns, 4), (NSRange{2, 1}));
  EXPECT_EQ(trimRange_prefixRange_postfixRange_trimOptions(u" a "_ns, {0, 3}, nullptr, nullptr,
                                                           ZKTrimStart | ZKTrimEnd),
            (NSRange{1, 1}));
}

TEST(NSStringSearching, TrimsRanges) {
  const Rows<const char16_t*, NSRange, NSUInteger, NSRange, NSRange, NSRange> rows = {
      {u"  ab  ", {0, 6}, 3, {2, 2}, {0, 2}, {4, 2}},
      {u"  ab  ", {0, 6}, 0, {0, 6}, {0, 0}, {6, 0}},
      {u"  ab  ", {0, 6}, 8, {0, 6}, {0, 0}, {6, 0}},
      {u"  ab  ", {0, 6}, 1, {2, 4}, {0, 2}, {6, 0}},
      {u"  ab  ", {0, 6}, 2, {0, 4}, {0, 0}, {4, 2}},
      {u"  ab  ", {1, 4}, 3, {2, 2}, {0, 2}, {4, 2}},  // The runs reach outside.
      {u"\n \t", {0, 3}, 3, {3, 0}, {0, 3}, {0, 3}},
      {u"a   b", {2, 1}, 3, {4, 0}, {1, 3}, {1, 3}},
      {u"a   b", {1, 2}, 2, {1, 2}, {1, 0}, {1, 3}},  // It begins where the run does.
      {u"a   b", {2, 1}, 2, {2, 0}, {2, 0}, {1, 3}},  // It begins inside.
      {u"ab", {1, 0}, 3, {1, 0}, {1, 0}, {1, 0}},
  };
  for (const auto& [text, range, options, expected, prefix, postfix] : rows) {
    NSRange before;
    NSRange after;
    const auto string = NSMake<NSString>(text);
    const auto trim = [&, range = range, options = options](NSRange* start, NSRange* end) {
      return trimRange_prefixRange_postfixRange_trimOptions(string, range, start, end, options);
    };
    SCOPED_TRACE(string->utf8() + "| by " + std::to_string(options));
    EXPECT_EQ(trim(&before, &after), expected);
    EXPECT_EQ(before, prefix);
    EXPECT_EQ(after, postfix);
    EXPECT_EQ(trim(nullptr, nullptr), expected);
  }
}

TEST(NSStringSearching, RaisesForWhatDoesNotFit) {
  const auto string = u"ab"_ns;
  const NSRange beyond = {1, 2};
  NSRange selection = {1, 1};
  const auto range = "range {1, 2} beyond bounds [0, 2) (in '";
  const auto index = "index 3 beyond bounds [0, 2) (in '";
  const Rows<const char*, std::string, std::function<void()>> rows = {
      {range, "trimRange:prefixRange:postfixRange:trimOptions:",
       [&] {
         (void)trimRange_prefixRange_postfixRange_trimOptions(string, beyond, &selection, {}, 3);
       }},
      {range, "rangeOfWordsIntersectingRange:",
       [&] { (void)rangeOfWordsIntersectingRange(string, beyond); }},
      {range, "findString:searchRange:options:wordCompareOption:",
       [&] {
         (void)findString_searchRange_options_wordCompareOption(string, string, beyond, 0, 1);
       }},
      {range, "findString:selectedRange:options:wrap:",
       [&] { (void)findString_selectedRange_options_wrap(string, string, beyond, 0, true); }},
      {range, "normalizedSubStringWithRange:selectedRange:",
       [&] { (void)normalizedSubStringWithRange_selectedRange(string, beyond, &selection); }},
      {range, "rangeOfCharacterFromSet:options:range:",
       [&] { (void)string->rangeOfCharacterFromSet_options_range(nullptr, 0, beyond); }},
      {range, "rangeOfString:options:range:",
       [&] { (void)string->rangeOfString_options_range(string, 0, beyond); }},
      {index, "rangeOfCharactersAtIndex:delimitedBy:",
       [&] { (void)rangeOfCharactersAtIndex_delimitedBy(string, 3, nullptr); }},
      {index, "rangeWithoutCharactersFromSet:atIndex:",
       [&] { (void)rangeWithoutCharactersFromSet_atIndex(string, nullptr, 3); }},
      {"index 2 beyond bounds [0, 2) (in '",
       "rangeOfWordContainingCharacter:", [&] { (void)rangeOfWordContainingCharacter(string, 2); }},
  };
  for (const auto& [reason, operation, action] : rows) {
    expectRaises(NSRangeException, reason + operation + "')", action);
  }
  EXPECT_EQ(selection, (NSRange{1, 1}));
}

TEST(NSStringSearching, NormalizesAndKeepsTheSelection) {
  expectProperty("removing one by one from the end", [] {
    const auto text = *textOver(u"ab\u0001\uFFFC\u200B");
    const NSRange range = anyRange(text.size());
    const NSRange inside = anyRange(range.length);
    std::u16string expected = text.substr(range.location, range.length);
    NSRange model = inside;
    for (NSUInteger k = expected.size(); k-- > 0;) {
      if (expected[k] == u'a' || expected[k] == u'b') continue;
      expected.erase(k, 1);
      if (k < model.location) {
        --model.location;
      } else if (k < NSMaxRange(model)) {
        --model.length;
      }
    }
    NSRange selection = {range.location + inside.location, inside.length};
    const auto result =
        normalizedSubStringWithRange_selectedRange(NSMake<NSString>(text), range, &selection);
    RC_ASSERT(result->view() == expected);
    RC_ASSERT(selection == model);
  });

  // A pair that the selection ends inside of empties it.
  const auto tagged = u"a\U000E0001b"_ns;
  NSRange selection = {1, 1};
  EXPECT_EQ(normalizedSubStringWithRange_selectedRange(tagged, {0, 4}, &selection), u"ab");
  EXPECT_EQ(selection, (NSRange{1, 0}));
  selection = {1, 1};
  EXPECT_EQ(normalizedSubStringWithRange_selectedRange(u"\U000E0001b"_ns, {0, 3}, &selection),
            u"b");
  EXPECT_EQ(selection, (NSRange{0, 1}));
  const auto refused = [&](std::u16string_view name, const std::string& reason, NSRange* selected) {
    expectRaises(name, reason + " (in 'normalizedSubStringWithRange:selectedRange:')", [&] {
      (void)normalizedSubStringWithRange_selectedRange(tagged, NSMakeRange(1, 2), selected);
    });
  };
  selection = {0, 2};
  refused(NSRangeException, "range {0, 2} beyond bounds [0, 4)", &selection);
  selection = {1, NSUIntegerMax};
  refused(NSRangeException, "range {1, 18446744073709551615} beyond bounds [0, 4)", &selection);
  EXPECT_EQ(selection, (NSRange{1, NSUIntegerMax}));
  refused(NSInvalidArgumentException, "selectedRange is nil", nullptr);
}

TEST(NSStringSearching, WritesTitles) {
  const Rows<const char16_t*, const char16_t*> rows = {
      {u"lord of the rings", u"Lord of the Rings"},
      {u"the lord of the rings", u"The Lord of The Rings"},
      {u"a tale  of two cities", u"A Tale of Two Cities"},
      {u"a dog and a cat", u"A Dog and A Cat"},
      {u"NASA and the moon", u"Nasa and the Moon"},
      {u" \tone an\u00A0apple ", u"One an Apple"},
      {u"one\nthe other", u"One\nThe Other"},
      {u"they're jean-luc's ǆ 2nd", u"They're Jean-Luc's ǅ 2nd"},
      {u"ʻokina ʻOHANA hawaiʻi", u"ʻOkina ʻOhana Hawaiʻi"},
      {u"", u""},
      {u" \t", u""},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(titlecaseString(NSMake<NSString>(text)), expected);
  }
}

TEST(NSStringSearching, CapitalizesAsICUDoes) {
  // Letters of many kinds, and what joins or divides words, with marks and halves of pairs.
  const std::u16string units =
      u"aAbzZ1 2 "
      u"'’‘._:;,-–\"(!+\t\n\u00A0\u00AD\u0301\u200DßſŉıİijIJǆΣσςάΐᾳЖжй\u02C2·ªʰʻ@"
      u"\u109E\u1AA0©漢ひカ한א😀🇩ﬁ";
  const std::array<const char*, 12> languages = {"en", "de", "fr", "el", "ru", "fi",
                                                 "sv", "nl", "tr", "lt", "ja", "en_US_POSIX"};
  expectProperty("the same capitals", [&] {
    const char* const language = *rc::gen::elementOf(languages);
    const auto some = *rc::gen::scale(0.2, textOver(units));
    const auto text = some + *textOver(*rc::gen::element<std::u16string>(u"aB'. ", units));
    icu::UnicodeString expected(text.data(), static_cast<int32_t>(text.size()));
    expected.toTitle(nullptr, icu::Locale(language));
    NSLocale::setCurrentLocale(locale(language));
    const auto capitalized = NSMake<NSString>(text)->localizedCapitalizedString();
    NSLocale::setCurrentLocale(nullptr);
    RC_ASSERT(capitalized->view() ==
              std::u16string_view(expected.getBuffer(), std::size_t(expected.length())));
  });
}

}  // namespace
