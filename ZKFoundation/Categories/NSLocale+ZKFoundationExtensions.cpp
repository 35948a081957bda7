#include "ZKFoundation/Categories/NSLocale+ZKFoundationExtensions.h"

#include <array>
#include <string_view>

#include <Foundation/Locales/LocaleComponents.h>

namespace {

// The marks of a language: opening and closing double, opening and closing single quotation marks,
// then the guillemets in the same order.
struct Row {
  std::u16string_view language;
  std::u16string_view marks;
};

constexpr std::array<Row, 33> rows = {{
    {u"ar", u"«»‹›“”‘’"}, {u"be", u"«»„“„“›‹"}, {u"bg", u"„“‚‘»«›‹"}, {u"cs", u"„“‚‘»«›‹"},
    {u"da", u"»«›‹„“‚‘"}, {u"de", u"„“‚‘»«›‹"}, {u"el", u"«»‹›“„‘‚"}, {u"en", u"“”‘’‘’“”"},
    {u"eo", u"“”''»«›‹"}, {u"es", u"«»‹›“”‘’"}, {u"et", u"«»‹›„“‚‘"}, {u"fi", u"””’’»»››"},
    {u"fr", u"«»‹›“”‘’"}, {u"ga", u"“”‘’»«›‹"}, {u"hr", u"»«›‹»«›‹"}, {u"hu", u"„“''»«›‹"},
    {u"is", u"„“‚‘»«›‹"}, {u"it", u"«»''“”‘’"}, {u"lt", u"„“‚‘«»‹›"}, {u"lv", u"«»‹›„“‚‘"},
    {u"nl", u"„”‚’“”’’"}, {u"no", u"«»''„”›‹"}, {u"pl", u"„”«»»«›‹"}, {u"pt", u"«»‹›“”‘’"},
    {u"ro", u"„“‚‘«»‹›"}, {u"ru", u"«»„“„“›‹"}, {u"sk", u"„“‚‘»«›‹"}, {u"sl", u"„“‚‘»«›‹"},
    {u"sq", u"«»‹›“„‘‚"}, {u"sr", u"„“‚‘»«›‹"}, {u"sv", u"””’’»»››"}, {u"tr", u"«»‹›“”‘’"},
    {u"uk", u"«»„“„“›‹"},
}};
constexpr std::u16string_view defaultMarks = u"\"\"''»«›‹";
constexpr std::u16string_view swissMarks = u"«»‹›";

// Where the marks of "aa" to "zz" are, by both letters.
constexpr std::size_t letters = 26;
constexpr auto marksByCode = [] {
  std::array<const char16_t*, letters * letters> table{};
  table.fill(defaultMarks.data());
  for (const auto& [language, marks] : rows) {
    table[(language[0] - u'a') * letters + (language[1] - u'a')] = marks.data();
  }
  return table;
}();

// The language is what stands before the first separator.
unichar markOfLanguage(std::u16string_view identifier, std::size_t column) {
  const auto ends = [](char16_t unit) { return unit == u'_' || unit == u'-' || unit == u'@'; };
  if (identifier.size() < 2) return defaultMarks[column];
  if (identifier.size() > 2 && !ends(identifier[2])) return defaultMarks[column];
  const auto first = static_cast<std::size_t>(identifier[0]) - u'a';
  const auto second = static_cast<std::size_t>(identifier[1]) - u'a';
  return first < letters && second < letters ? marksByCode[first * letters + second][column]
                                             : defaultMarks[column];
}

// Few identifiers have these letters at all; the others need not be split.
bool isSwiss(std::u16string_view identifier) {
  for (std::size_t k = 1; k < identifier.size(); ++k) {
    if (identifier[k] == u'H' && identifier[k - 1] == u'C') {
      return NSLocaleComponents(identifier).country == u"CH";
    }
  }
  return false;
}

unichar quotationMark(const NSRef<NSString>& identifier, std::size_t column) {
  const std::u16string_view text = NSViewOf(identifier);
  return isSwiss(text) ? swissMarks[column] : markOfLanguage(text, column);
}

unichar guillemet(const NSRef<NSString>& identifier, std::size_t column) {
  return markOfLanguage(NSViewOf(identifier), column);
}

}  // namespace

namespace ZKFoundationExtensions {

unichar openingDoubleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return quotationMark(identifier, 0);
}

unichar closingDoubleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return quotationMark(identifier, 1);
}

unichar openingSingleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return quotationMark(identifier, 2);
}

unichar closingSingleQuotationForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return quotationMark(identifier, 3);
}

unichar openingDoubleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return guillemet(identifier, 4);
}

unichar closingDoubleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return guillemet(identifier, 5);
}

unichar openingSingleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return guillemet(identifier, 6);
}

unichar closingSingleGuillemetForLocaleIdentifier(const NSRef<NSString>& identifier) noexcept {
  return guillemet(identifier, 7);
}

}  // namespace ZKFoundationExtensions
