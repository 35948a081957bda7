#include "../Support.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

using Finder = NSRef<ZKTextFinder>;

// Every place where the needle's units stand and the word condition holds.
std::vector<ZKTextMatch> allMatches(const NSRef<NSString>& text, const NSRef<NSString>& needle,
                                    ZKWordCompareOption condition) {
  std::vector<ZKTextMatch> matches;
  for (NSUInteger k = 0; k + needle->length() <= text->length(); ++k) {
    const NSRange match = {k, needle->length()};
    if (text->substringWithRange(match) != needle) continue;
    const NSRange words = rangeOfWordsIntersectingRange(text, match);
    const bool starts = words.location == match.location;
    const bool ends = NSMaxRange(words) == NSMaxRange(match);
    if (condition == ZKWordCompareWhole && !(starts && ends)) continue;
    if (condition == ZKWordCompareStart && !starts) continue;
    if (condition == ZKWordCompareEnd && !ends) continue;
    matches.push_back({match, words});
  }
  return matches;
}

std::optional<ZKTextMatch> firstFrom(const std::vector<ZKTextMatch>& all, NSUInteger start) {
  const auto found = std::ranges::find_if(
      all, [&](const ZKTextMatch& each) { return each.match.location >= start; });
  return found == all.end() ? std::nullopt : std::optional(*found);
}

std::optional<ZKTextMatch> lastUpTo(const std::vector<ZKTextMatch>& all, NSUInteger end) {
  const auto isBefore = [&](const ZKTextMatch& each) { return NSMaxRange(each.match) <= end; };
  const auto found = std::find_if(all.rbegin(), all.rend(), isBefore);
  return found == all.rend() ? std::nullopt : std::optional(*found);
}

// The text after replacing all, with the selection in brackets, or the error.
std::string replaced(const char* needle, const char* replacement, const char* marked,
                     NSUInteger options = ZKRegularExpressionSearch) {
  auto text = NSMake<NSMutableString>(marked);
  NSRange selection = {text->rangeOfString(u"["_ns).location, 0};
  text->deleteCharactersInRange({selection.location, 1});
  selection.length = text->rangeOfString(u"]"_ns).location - selection.location;
  text->deleteCharactersInRange({NSMaxRange(selection), 1});
  auto error =
      NSError::errorWithDomain_code_description(ZKTextFinderErrorDomain(), 0, u"an older error"_ns);
  const auto finder = NSMake<ZKTextFinder>(string(needle), options);
  (void)finder->replaceAllInString_withString_selectedRange(text, string(replacement), &selection,
                                                            &error);
  if (error) return error->localizedDescription()->utf8();
  text->insertString_atIndex(u"]"_ns, NSMaxRange(selection));
  text->insertString_atIndex(u"["_ns, selection.location);
  return text->utf8();
}

}  // namespace

TEST(ZKTextFinder, FindsCountsAndReplacesWhatAOneLoopSearchFinds) {
  const auto some = [](const std::u16string& units, int longest) {
    return rc::gen::apply(
        [](const std::u16string& text) { return NSMake<NSMutableString>(text); },
        rc::gen::resize(longest, rc::gen::container<std::u16string>(rc::gen::elementOf(units))));
  };
  expectProperty("a list of all matches", [&] {
    const auto units = *rc::gen::element<std::u16string>(u"aab -.", u"\u1EC7\u1EC7b -.");
    const auto text = *some(units, 40);
    const NSRef<NSString> needle = *some(units, 4);
    RC_PRE(needle->length() > 0);
    const auto condition = *rc::gen::element(ZKWordCompareNone, ZKWordCompareWhole,
                                             ZKWordCompareStart, ZKWordCompareEnd);
    const NSUInteger start = *rc::gen::inRange<NSUInteger>(0, text->length() + 1);
    NSRange selection = {start, *rc::gen::inRange<NSUInteger>(0, text->length() - start + 1)};
    const bool wraps = *rc::gen::arbitrary<bool>();
    const auto all = allMatches(text, needle, condition);

    for (const NSUInteger options : {0U, 1U, 2U, 3U}) {
      const auto finder = NSMake<ZKTextFinder>(needle, options, condition);
      finder->setWraps(wraps);
      auto next = firstFrom(all, NSMaxRange(selection));
      if (!next && wraps) next = firstFrom(all, 0);
      RC_ASSERT(finder->nextMatchInString_selectedRange(text, selection) == next);
      finder->setOptions(options | NSBackwardsSearch);
      auto previous = lastUpTo(all, selection.location);
      if (!previous && wraps) previous = lastUpTo(all, text->length());
      RC_ASSERT(finder->nextMatchInString_selectedRange(text, selection) == previous);
    }

    std::vector<NSRange> apart;
    std::u16string result(*text);
    for (auto next = firstFrom(all, 0); next; next = firstFrom(all, NSMaxRange(next->match))) {
      apart.push_back(next->match);
    }
    auto fromEnd = apart;
    std::ranges::reverse(fromEnd);
    for (const NSRange each : fromEnd) result.replace(each.location, each.length, u"xyz");
    const auto finder = NSMake<ZKTextFinder>(needle, 0, condition);
    RC_ASSERT(finder->matchesInString(text) == apart);
    const auto before = text->substringWithRange(selection);
    const bool isApart = std::ranges::none_of(
        apart, [&](NSRange each) { return NSIntersectionRange(each, selection).length != 0; });
    RC_ASSERT(finder->replaceAllInString_withString_selectedRange(text, u"xyz"_ns, &selection) ==
              apart.size());
    RC_ASSERT(text->view() == result);
    RC_ASSERT(NSRangeFits(selection, text->length()));
    RC_ASSERT(!isApart || text->substringWithRange(selection) == before);
  });
}

TEST(ZKTextFinder, FindsWordsInTextsThatAlmostMatchEverywhere) {
  // Where each place in the long word were compared with the whole needle, this would take hours.
  constexpr NSUInteger count = 500'000;
  const NSUInteger folds = NSCaseInsensitiveSearch;
  for (const auto& [unit, options, condition] :
       Rows<char16_t, NSUInteger, ZKWordCompareOption>{{u'a', 0, ZKWordCompareWhole},
                                                       {u'a', folds, ZKWordCompareStart},
                                                       {u'a', folds, ZKWordCompareEnd},
                                                       {u'é', 0, ZKWordCompareEnd},
                                                       {u'é', folds, ZKWordCompareWhole},
                                                       {u'é', folds, ZKWordCompareEnd}}) {
    const auto needle = NSMake<NSString>(std::u16string(count, unit));
    const auto inside = NSMake<NSString>(std::u16string(2 * count, unit));
    const auto text = needle + u" x" + inside + u"x " + needle;
    const NSRange last = {text->length() - count, count};
    const auto finder = NSMake<ZKTextFinder>(needle, options, condition);
    EXPECT_EQ(finder->nextMatchInString_selectedRange(text, {count, 0})->match, last);
    finder->setOptions(options | NSBackwardsSearch);
    const NSRange beforeLast = {last.location, 0};
    EXPECT_EQ(finder->nextMatchInString_selectedRange(text, beforeLast)->match,
              (NSRange{0, count}));
  }
}

TEST(ZKTextFinder, ReplacesByPatternsAndCarriesTheSelection) {
  for (const auto& [needle, replacement, marked, result] :
       Rows<const char*, const char*, const char*, const char*>{
           {"(\\w+)@(\\w+)", "$2 at ${1}\\$", "[ann@home]", "There is no group \"1\""},
           {"(\\w+)@(\\w+)", "$2 at $10\\$", "a [ann@home], b@c", "a [home at ann0$], c at b0$"},
           {"(?<word>s)", "<${word}>", "mis[s]ing", "mi<s>[<s>]ing"},
           {"^", "> ", "one\ntw[o]", "> one\n> tw[o]"},
           {"o*", "-", "[]foob", "[]-f--b-"},
           {"(a)|b", "!$1!", "a[b]", "!a![!!]"},
           {"😀", "x", "😀[😀 ]", "x[x ]"},
           {"b", "-", "[a]", "[a]"},
           {"", "-", "[a]", "[a]"},
           {"(a", "", "[a]", "a parenthesis has no partner (before unit 2)"},
           {R"(x\uDB72.*q)", "", "[xx]",
            "half of a surrogate pair cannot be searched for (before unit 1)"},
           {R"(\x{df00}|a)", "", "[a]",
            "half of a surrogate pair cannot be searched for (before unit 0)"},
           {R"(\ud83d\ude00\U0001f600\dd800)", "x", "[😀😀1d800]", "[x]"},
           {"a", "$1", "[a]", "There is no group \"1\""},
           {"(a)", "${b", "[a]", "There is no group \"{b\""},
           {"(x+x+)+y", "", "[xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx]",
            "The search takes too long"},
       }) {
    EXPECT_EQ(replaced(needle, replacement, marked), result) << needle;
  }
  EXPECT_EQ(replaced("$1", "\\$2", "[]$1 and [$1", 0), "[]\\$2 and [\\$2");
  EXPECT_EQ(replaced("ABC", "12", "xa[b]c", NSCaseInsensitiveSearch), "x[12]");
  EXPECT_EQ(replaced("abc", "12", "xab[]cd", 0), "x12[]d");
}

TEST(ZKTextFinder, ReplacesWhatAPatternMatchesBackwards) {
  for (const auto& [needle, units, caret, match, result] :
       Rows<const char*, const char*, NSUInteger, NSRange, const char*>{
           {"[0-9]+", "page 12345", 8, {5, 5}, "page X"},
           {"[0-9]+", "7 page 12345", 10, {0, 1}, "X page 12345"},
           {"\\w+", "hello world", 9, {0, 5}, "X world"},
           {"\\w+", "hello world", 11, {6, 5}, "hello X"},
           {"o*", "foob", 2, {0, 0}, "Xfoob"},
           {"\\w(?=d)", "add", 2, {1, 1}, "aXd"},
       }) {
    const auto text = NSMake<NSMutableString>(units);
    const auto finder =
        NSMake<ZKTextFinder>(string(needle), ZKRegularExpressionSearch | NSBackwardsSearch);
    NSRange selection = {caret, 0};
    EXPECT_EQ(finder->nextMatchInString_selectedRange(text, selection)->match, match) << units;
    EXPECT_TRUE(finder->replaceNextInString_withString_selectedRange(text, u"X"_ns, &selection));
    EXPECT_EQ(text->utf8(), result);
  }
}

TEST(ZKTextFinder, ReplacesOneByOneWhatItReplacesAtOnce) {
  const NSUInteger pattern = ZKRegularExpressionSearch;
  for (const auto& [needle, options, replacement, units] :
       Rows<const char*, NSUInteger, const char*, const char*>{
           {"ring", NSCaseInsensitiveSearch, "RING", "ring, rings"},
           {"e\u0301", 0, "é", "éé"},
           {"a+", pattern, "a$0", "aba"},
           {"$", pattern, ";", "a\nb"},
           {"x*", pattern, "-", "abc"},
           {"(?=b)", pattern, "-", "abab"},
           {"^", pattern, "", "a\nb"}}) {
    const auto finder = NSMake<ZKTextFinder>(string(needle), options);
    finder->setWraps(false);
    const auto text = NSMake<NSMutableString>(units);
    const auto other = text->mutableCopy();
    NSRange place;
    NSUInteger count = 0;
    while (count < 9 && finder->replaceNextInString_withString_selectedRange(
                            text, string(replacement), &place)) {
      ++count;
    }
    EXPECT_EQ(finder->replaceAllInString_withString_selectedRange(other, string(replacement)),
              count);
    EXPECT_EQ(text, other) << needle;
  }
}

TEST(ZKTextFinder, ReplacesOneByOne) {
  const auto text = NSMake<NSMutableString>(u"ring, rings, Ring");
  const auto finder = NSMake<ZKTextFinder>(
      u"(r)ing"_ns, NSCaseInsensitiveSearch | ZKRegularExpressionSearch, ZKWordCompareWhole);
  NSRange selection = {5, 0};
  const auto replace = [&] {
    return finder->replaceNextInString_withString_selectedRange(text, u"b$1"_ns, &selection);
  };
  EXPECT_TRUE(replace());
  EXPECT_EQ(text, u"ring, rings, bR");
  EXPECT_EQ(selection, (NSRange{13, 2}));
  finder->setWraps(false);
  EXPECT_FALSE(replace());
  finder->setOptions(finder->options() | NSBackwardsSearch);
  selection = {0, 4};
  EXPECT_TRUE(replace());
  EXPECT_EQ(text, u"br, rings, bR");
  EXPECT_EQ(selection, (NSRange{0, 2}));

  finder->setNeedle(u"$"_ns);
  finder->setWordCompareOption(ZKWordCompareNone);
  finder->setOptions(ZKRegularExpressionSearch);
  EXPECT_EQ(finder->nextMatchInString_selectedRange(text, {0, 0})->match, (NSRange{13, 0}));
  EXPECT_FALSE(finder->nextMatchInString_selectedRange(text, {13, 0}));
  // Between the halves of a pair.
  finder->setNeedle(u"."_ns);
  EXPECT_EQ(finder->nextMatchInString_selectedRange(u"a😀b"_ns, {2, 0})->match, (NSRange{3, 1}));
  finder->setNeedle(nullptr);
  EXPECT_FALSE(finder->nextMatchInString_selectedRange(text, {0, 0}));
  EXPECT_FALSE(finder->needleError());
  // A needle of one word may be equivalent to text of more.
  const auto start = NSMake<ZKTextFinder>(u"\u2260\u2260"_ns, 0, ZKWordCompareStart);
  EXPECT_EQ(start->matchesInString(u"+=\u0338=\u0338=\u0338"_ns), (std::vector<NSRange>{{3, 4}}));
  finder->setNeedle(u"[a"_ns);
  EXPECT_EQ(finder->needleError()->code(), ZKTextFinderInvalidNeedle);
  refusesNil("string", "matchesInString:", [&] { (void)finder->matchesInString(nullptr); });
}
