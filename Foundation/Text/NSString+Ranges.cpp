#include <unicode/ubrk.h>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ICU.h>

namespace {

constexpr bool endsLine(char16_t unit) {
  return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' ||
         unit == u'\u2029';
}

constexpr bool endsParagraph(char16_t unit) {
  return unit == u'\n' || unit == u'\r' || unit == u'\u2029';
}

// Whether a place is between the two units of one line end.
bool splitsLineEnd(std::u16string_view text, NSUInteger at) {
  return at > 0 && at < text.size() && text[at - 1] == u'\r' && text[at] == u'\n';
}

template <class IsEnd>
NSRange wholeLines(std::u16string_view text, NSRange range, IsEnd isEnd) {
  NSUInteger start = range.location - (splitsLineEnd(text, range.location) ? 1 : 0);
  while (start > 0 && !isEnd(text[start - 1])) --start;
  NSUInteger end = range.length == 0 ? range.location : NSMaxRange(range) - 1;
  while (end < text.size() && !isEnd(text[end])) ++end;
  if (end < text.size()) ++end;
  return {start, end + (splitsLineEnd(text, end) ? 1 : 0) - start};
}

// The pieces of a text between the boundaries of one kind. A breaker is costly to make and may be
// used by one thread at a time, so every thread keeps its own.
template <UBreakIteratorType type>
class Pieces {
 public:
  explicit Pieces(std::u16string_view text) : _breaker(breaker()) {
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(_breaker, NSICUText(text), NSICULength(text), &status);
    NSCheckICU(status);
  }
  ~Pieces() {
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(_breaker, u"", 0, &status);
  }
  Pieces(const Pieces&) = delete;

  // The start of the piece that a character is in, and the end of it.
  [[nodiscard]] NSUInteger startOf(NSUInteger index) {
    const auto at = static_cast<std::int32_t>(index);
    return static_cast<NSUInteger>(
        ubrk_isBoundary(_breaker, at) != 0 ? at : ubrk_preceding(_breaker, at));
  }
  [[nodiscard]] NSUInteger endOf(NSUInteger index) {
    return static_cast<NSUInteger>(ubrk_following(_breaker, static_cast<std::int32_t>(index)));
  }

 private:
  static UBreakIterator* breaker() {
    thread_local const auto kept = [] {
      UErrorCode status = U_ZERO_ERROR;
      NSICUHandle<UBreakIterator, ubrk_close> made(ubrk_open(type, "", nullptr, 0, &status));
      NSCheckICU(status);
      return made;
    }();
    return kept.get();
  }

  UBreakIterator* _breaker;
};

template <UBreakIteratorType type>
NSRange wholePieces(std::u16string_view text, NSRange range) {
  if (range.location == text.size()) return range;
  Pieces<type> pieces(text);
  const bool isDivided = NSSplitsPair(text, range.location);
  const NSUInteger start = pieces.startOf(range.location - (isDivided ? 1 : 0));
  if (range.length == 0) return {start, 0};
  return {start, pieces.endOf(NSMaxRange(range) - 1) - start};
}

}  // namespace

NSRange NSString::lineRangeForRange(NSRange range) const {
  NSCheckRange("lineRangeForRange:", range, length());
  return wholeLines(view(), range, endsLine);
}

NSRange NSString::paragraphRangeForRange(NSRange range) const {
  NSCheckRange("paragraphRangeForRange:", range, length());
  return wholeLines(view(), range, endsParagraph);
}

NSRange NSString::sentenceRangeForRange(NSRange range) const {
  NSCheckRange("sentenceRangeForRange:", range, length());
  if (range.location == length()) return range;
  return wholePieces<UBRK_SENTENCE>(view(),
                                    {range.location, std::max<NSUInteger>(range.length, 1)});
}

NSRange NSString::rangeOfComposedCharacterSequencesForRange(NSRange range) const {
  NSCheckRange("rangeOfComposedCharacterSequencesForRange:", range, length());
  return wholePieces<UBRK_CHARACTER>(view(), range);
}

NSRange NSString::rangeOfComposedCharacterSequenceAtIndex(NSUInteger index) const {
  NSCheckIndex("rangeOfComposedCharacterSequenceAtIndex:", index, length());
  return wholePieces<UBRK_CHARACTER>(view(), {index, 1});
}
