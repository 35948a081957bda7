#include "Foundation/Locales/Capitalization.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <unicode/ubrk.h>
#include <unicode/ucasemap.h>
#include <unicode/uloc.h>

#include <Foundation/Locales/SimpleWords.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ICU.h>

namespace {

// What a locale's capitalisation needs. Its word breaker is costly to make and may be used by one
// thread at a time, so every thread keeps its own.
class Capitalizer {
 public:
  explicit Capitalizer(const NSRef<NSLocale>& locale) : _locale(locale) {
    // An identifier that ICU cannot make anything of has the habits of no language.
    if (U_FAILURE(open(locale->localeIdentifier()->utf8()))) NSCheckICU(open(""));
  }

  [[nodiscard]] const NSRef<NSLocale>& locale() const { return _locale; }

  void append(std::u16string_view text, NSUnitBuffer& result) {
    // Where much is not in the tables, ICU, to which a call costs as much as a line, gets more at
    // once.
    constexpr std::size_t shortest = 32;
    constexpr std::size_t longest = 4096;
    for (std::size_t stretch = shortest; !text.empty();) {
      const std::size_t start = result.size();
      const std::size_t simple =
          _isSimple ? NSCapitalizeSimpleWords(text, result.extend(text.size())) : 0;
      result.truncate(start + simple);
      text.remove_prefix(simple);
      stretch = simple > 4 * stretch ? shortest : std::min(2 * stretch, longest);
      const std::size_t rest = _isSimple ? NSLengthOfWords(text, stretch) : text.size();
      if (rest > 0) appendByICU(text.substr(0, rest), result);
      text.remove_prefix(rest);
    }
  }

 private:
  void appendByICU(std::u16string_view text, NSUnitBuffer& result) {
    const std::size_t start = result.size();
    UErrorCode status = U_ZERO_ERROR;
    // Few letters become two.
    std::int32_t length = map(text, result, text.size() + 16, status);
    if (status == U_BUFFER_OVERFLOW_ERROR) {
      status = U_ZERO_ERROR;
      result.truncate(start);
      length = map(text, result, static_cast<std::size_t>(length), status);
    }
    NSCheckICU(status);
    result.truncate(start + static_cast<std::size_t>(length));
  }

  UErrorCode open(const std::string& identifier) {
    UErrorCode status = U_ZERO_ERROR;
    _map.reset(ucasemap_open(identifier.c_str(), U_FOLD_CASE_DEFAULT, &status));
    UBreakIterator* const words = ubrk_open(UBRK_WORD, identifier.c_str(), nullptr, 0, &status);
    if (U_SUCCESS(status)) ucasemap_setBreakIterator(_map.get(), words, &status);
    // Languages in which the case of a letter depends on those around it.
    constexpr std::array<std::string_view, 4> withHabits = {"az", "lt", "nl", "tr"};
    std::array<char, ULOC_LANG_CAPACITY> language{};
    UErrorCode ignored = U_ZERO_ERROR;
    uloc_getLanguage(identifier.c_str(), language.data(), ULOC_LANG_CAPACITY, &ignored);
    _isSimple = std::ranges::find(withHabits, language.data()) == withHabits.end();
    return status;
  }
  std::int32_t map(std::u16string_view text, NSUnitBuffer& result, std::size_t room,
                   UErrorCode& status) {
    char16_t* const out = result.extend(room);
    return ucasemap_toTitle(_map.get(), out, static_cast<std::int32_t>(room), NSICUText(text),
                            NSICULength(text), &status);
  }

  NSRef<NSLocale> _locale;
  NSICUHandle<UCaseMap, ucasemap_close> _map;
  // Whether the tables of simple words hold.
  bool _isSimple = false;
};

}  // namespace

void NSAppendCapitalized(std::u16string_view text, NSUnitBuffer& result) {
  thread_local std::unique_ptr<Capitalizer> capitalizer;
  const auto locale = NSLocale::currentLocale();
  if (!capitalizer || !capitalizer->locale().is(locale)) {
    capitalizer = std::make_unique<Capitalizer>(locale);
  }
  capitalizer->append(text, result);
}

NSRef<NSString> NSString::localizedCapitalizedString() const {
  NSUnitBuffer result;
  NSAppendCapitalized(view(), result);
  result.shrink();
  return NSMake<NSString>(std::move(result));
}
