#include <array>
#include <string>

#include <unicode/ulocdata.h>

#include <Foundation/Locales/Collation.h>
#include <Foundation/Locales/LocaleComponents.h>
#include <Foundation/NSData.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ICU.h>

namespace {

using LocaleData = NSICUHandle<ULocaleData, ulocdata_close>;

LocaleData openData(const std::string& identifier) {
  for (const std::string& name :
       {identifier, identifier.substr(0, identifier.find('@')), std::string("root")}) {
    UErrorCode status = U_ZERO_ERROR;
    LocaleData data(ulocdata_open(name.c_str(), &status));
    // A locale that ICU does not have would get the habits of the environment.
    if (U_SUCCESS(status) && (status != U_USING_DEFAULT_WARNING || name == "root")) return data;
    if (name == "root") NSCheckICU(status);
  }
  return nullptr;
}

NSRef<NSString> delimiter(const NSRef<NSString>& identifier, ULocaleDataDelimiterType which) {
  const LocaleData data = openData(identifier->utf8());
  std::array<char16_t, 16> units{};
  UErrorCode status = U_ZERO_ERROR;
  const auto length = ulocdata_getDelimiter(data.get(), which, units.data(), units.size(), &status);
  NSCheckICU(status);
  return NSMake<NSString>(std::u16string_view(units.data(), static_cast<std::size_t>(length)));
}

}  // namespace

NSRef<NSString> NSLocale::quotationBeginDelimiter() const {
  return delimiter(_identifier, ULOCDATA_QUOTATION_START);
}

NSRef<NSString> NSLocale::quotationEndDelimiter() const {
  return delimiter(_identifier, ULOCDATA_QUOTATION_END);
}

NSRef<NSString> NSLocale::alternateQuotationBeginDelimiter() const {
  return delimiter(_identifier, ULOCDATA_ALT_QUOTATION_START);
}

NSRef<NSString> NSLocale::alternateQuotationEndDelimiter() const {
  return delimiter(_identifier, ULOCDATA_ALT_QUOTATION_END);
}

NSRef<NSData> NSLocale::collationKeyForString(const NSRef<NSString>& string) const {
  std::call_once(_collationOnce,
                 [this] { _collation = std::make_unique<const NSCollation>(_identifier->utf8()); });
  return NSMake<NSData>(_collation->keyOf(NSViewOf(string)));
}
