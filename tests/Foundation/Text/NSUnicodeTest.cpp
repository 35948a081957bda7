#include "tests/Support.h"
#include "tests/VectorTargets.h"

#include <iterator>

#include <unicode/unistr.h>

namespace {

// ICU's conversions, as the models.
std::u16string decodedByICU(const std::string& utf8) {
  const auto units = icu::UnicodeString::fromUTF8(utf8);
  return {units.getBuffer(), static_cast<std::size_t>(units.length())};
}

std::string encodedByICU(const std::u16string& units) {
  std::string utf8;
  return icu::UnicodeString(units.data(), static_cast<std::int32_t>(units.size()))
      .toUTF8String(utf8);
}

// Pieces that meet at every border: of the forms, of the ranges that are left out, and of blocks.
const std::vector<std::string> utf8Pieces = [] {
  std::istringstream list(
      "a 0123456789ABCDEF \x7F \x80 \xBF \xC0\xAF \xC2 \xC2\x80 \xDF\xBF \xE0 \xE0\x9F\xBF "
      "\xE0\xA0\x80 \xE2\x82 \xED\x9F\xBF \xED\xA0\x80 \xEF\xBF\xBD \xF0\x8F "
      "\xF0\x90\x80\x80 \xC1\xBF \xED\xB0\x80 \xED\xBF\xBF \xF0\x9F\x98\x80 "
      "\xF4\x8F\xBF\xBF \xF4\x90\x80\x80 \xF0\x8F\xBF\xBF \xF0\x9F \xF1\x80\x80 "
      "\xF4\x8F\xBF \xF4\x90\x80 \xF5 \xFF");
  return std::vector<std::string>(std::istream_iterator<std::string>(list), {});
}();

// Long runs of one kind with something else inside reach every path of the vector code.
std::string anyUTF8() {
  std::string text;
  for (int runs = *rc::gen::inRange(0, 12); runs > 0; --runs) {
    const auto piece = *rc::gen::elementOf(utf8Pieces);
    const int count = *rc::gen::element(1, *rc::gen::inRange(1, 60));
    for (int k = 0; k < count; ++k) text += piece;
  }
  return text;
}

TEST(NSUnicode, DecodesAsUnicodeRecommends) {
  forEachVectorTarget([] {
    expectProperty("the same units as ICU", [] {
      const auto utf8 = anyUTF8();
      const auto units = decodedByICU(utf8);
      RC_ASSERT(std::u16string(NSUnitsFromUTF8(utf8).view()) == units);
      RC_ASSERT(NSIsWellFormedUTF8(utf8) == (encodedByICU(units) == utf8));
    });
  });
}

TEST(NSUnicode, EncodesLoneHalvesAsReplacements) {
  forEachVectorTarget([] {
    expectProperty("the same bytes as ICU", [] {
      const std::u16string halves = {0xD800, 0xD83D, 0xDBFF, 0xDC00, 0xDE00, 0xDFFF};
      const auto kinds = *rc::gen::container<std::vector<std::u16string>>(
          rc::gen::scale(2, rc::gen::oneOf(textOver(u"ab"), textOver(u"a\u007F\u0080\u07FF"),
                                           textOver(u"\u0800\uFFFFa\u07FF" + halves))));
      std::u16string units;
      for (const auto& kind : kinds) units += kind;
      const auto utf8 = encodedByICU(units);
      RC_ASSERT(NSUTF8FromUnits(units) == utf8);
      RC_ASSERT(NSIsWellFormed(units) == (decodedByICU(utf8) == units));
    });
  });
}

TEST(NSUnicode, ConvertsLongTextsThroughEveryChunk) {
  std::u16string units;
  for (char16_t k = 0; units.size() < 50'000; ++k) {
    if (!NSIsSurrogate(k)) units += std::u16string(k % 40, u'x') + k;
  }
  const std::string utf8 = NSUTF8FromUnits(units);
  EXPECT_EQ(utf8, encodedByICU(units));
  EXPECT_EQ(NSUnitsFromUTF8(utf8).view(), units);
}

}  // namespace
