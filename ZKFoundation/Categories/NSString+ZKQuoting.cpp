#include "ZKFoundation/Categories/NSString+ZKQuoting.h"

#include <string>
#include <string_view>

#include <Foundation/Locales/LocaleComponents.h>
#include <Foundation/NSException.h>
#include <Foundation/NSLocale.h>
#include <ZKFoundation/Categories/NSLocale+ZKFoundationExtensions.h>

namespace {

using namespace ZKFoundationExtensions;

struct Marks {
  std::u16string opening;
  std::u16string closing;
};

Marks marksOf(const NSRef<NSString>& identifier, bool isInner) {
  // The typewriter's mark stands for every language that the table does not have.
  const bool isKnown = openingDoubleQuotationForLocaleIdentifier(identifier) != u'"';
  const auto locale = isKnown ? nullptr : NSLocale::localeWithLocaleIdentifier(identifier);
  if (locale) {
    return {std::u16string(isInner ? locale->alternateQuotationBeginDelimiter()->view()
                                   : locale->quotationBeginDelimiter()->view()),
            std::u16string(isInner ? locale->alternateQuotationEndDelimiter()->view()
                                   : locale->quotationEndDelimiter()->view())};
  }
  if (isInner) {
    return {{openingSingleQuotationForLocaleIdentifier(identifier)},
            {closingSingleQuotationForLocaleIdentifier(identifier)}};
  }
  return {{openingDoubleQuotationForLocaleIdentifier(identifier)},
          {closingDoubleQuotationForLocaleIdentifier(identifier)}};
}

bool hasSpaces(const NSRef<NSString>& identifier, const Marks& marks) {
  const NSLocaleComponents parts(NSViewOf(identifier));
  const bool isOfLanguage = parts.language == u"br" || parts.language == u"fr";
  return isOfLanguage && parts.country != u"CH" && (marks.opening == u"«" || marks.opening == u"‹");
}

}  // namespace

namespace ZKFoundationExtensions {

NSRef<NSString> stringByQuotingAtLevel_forLocaleIdentifier(const NSRef<NSString>& string,
                                                           NSUInteger level,
                                                           const NSRef<NSString>& identifier) {
  NSCheckArgument("stringByQuotingAtLevel:forLocaleIdentifier:", "string", string);
  const Marks marks = marksOf(identifier, level % 2 != 0);
  const std::u16string_view space = hasSpaces(identifier, marks) ? u"\u202F" : u"";
  const auto result = NSMake<NSMutableString>(marks.opening);
  for (const auto part : {space, string->view(), space, std::u16string_view(marks.closing)}) {
    result->appendUnits(part);
  }
  return result->copy();
}

}  // namespace ZKFoundationExtensions
