#include "ZKFoundation/Categories/NSLocale+ZKFoundationExtensions.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <Foundation/NSLocaleComponents.h>

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

static_assert(std::ranges::is_sorted(rows, {}, &Row::language));

unichar markOfLanguage(std::u16string_view language, std::size_t column) {
  const auto* const row = std::ranges::lower_bound(rows, language, {}, &Row::language);
  const bool isListed = row != rows.end() && row->language == language;
  return (isListed ? row->marks : defaultMarks)[column];
}

unichar quotationMark(const NSRef<NSString>& identifier, std::size_t column) {
  const NSLocaleComponents parts(NSViewOf(identifier));
  return parts.country == u"CH" ? swissMarks[column] : markOfLanguage(parts.language, column);
}

unichar guillemet(const NSRef<NSString>& identifier, std::size_t column) {
  return markOfLanguage(NSLocaleComponents(NSViewOf(identifier)).language, column);
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
