#include "Foundation/NSLocale.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

#include <unicode/uldnames.h>
#include <unicode/uloc.h>

#include <Foundation/Locales/DisplayNames.h>
#include <Foundation/Locales/LocaleComponents.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>
#include <Foundation/Text/ASCII.h>

namespace {

using Function = std::int32_t (*)(const char*, char*, std::int32_t, UErrorCode*);

// What ICU says of an identifier; nothing when it fails.
std::string ask(Function write, const std::string& identifier) {
  std::array<char, 512> room{};  // Identifiers are shorter by far, and grow little.
  UErrorCode status = U_ZERO_ERROR;
  write(identifier.c_str(), room.data(), room.size() - 1, &status);
  return U_SUCCESS(status) ? room.data() : "";
}

// The script in which a language is usually written; in a region, if one is given.
std::string usualScript(const std::string& language, const std::string& region = {}) {
  const std::string identifier = region.empty() ? language : language + '_' + region;
  return ask(uloc_getScript, ask(uloc_addLikelySubtags, identifier));
}

// Whether there are locales that name a script of the language.
bool hasSeveralScripts(const std::string& language) {
  static const NSNeverDestroyed<std::set<std::string>> languages([] {
    std::set<std::string> result;
    for (std::int32_t k = 0; k < uloc_countAvailable(); ++k) {
      const std::string locale = uloc_getAvailable(k);
      if (!ask(uloc_getScript, locale).empty()) result.insert(ask(uloc_getLanguage, locale));
    }
    return result;
  }());
  return (*languages).contains(language);
}

struct NamedKind {
  const NSRef<NSString>& (*key)();
  NSDisplayNames::Function name;
};
constexpr std::array<NamedKind, 5> namedKinds = {{
    {NSLocaleIdentifier, uldn_localeDisplayName},
    {NSLocaleLanguageCode, uldn_languageDisplayName},
    {NSLocaleScriptCode, uldn_scriptDisplayName},
    {NSLocaleCountryCode, uldn_regionDisplayName},
    {NSLocaleVariantCode, uldn_variantDisplayName},
}};

// Two to eight letters, as BCP 47 has them, but not ICU's word for no language at all.
bool isLanguage(const std::string& code) {
  return code.size() >= 2 && code.size() <= 8 && code != "root" &&
         std::ranges::all_of(code, [](char unit) { return unit >= 'a' && unit <= 'z'; });
}

NSRef<NSArray> arrayOf(const char* const* codes) {
  auto array = NSMake<NSMutableArray>();
  for (; *codes != nullptr; ++codes) array->addObject(NSMake<NSString>(std::string_view(*codes)));
  return array;
}

}  // namespace

NSRef<NSArray> NSLocale::ISOLanguageCodes() { return arrayOf(uloc_getISOLanguages()); }

NSRef<NSArray> NSLocale::ISOCountryCodes() { return arrayOf(uloc_getISOCountries()); }

const NSRef<NSString>& NSLocaleIdentifier() { return NSConstantString<u"NSLocaleIdentifier">(); }

const NSRef<NSString>& NSLocaleLanguageCode() {
  return NSConstantString<u"NSLocaleLanguageCode">();
}

const NSRef<NSString>& NSLocaleScriptCode() { return NSConstantString<u"NSLocaleScriptCode">(); }

const NSRef<NSString>& NSLocaleCountryCode() { return NSConstantString<u"NSLocaleCountryCode">(); }

const NSRef<NSString>& NSLocaleVariantCode() { return NSConstantString<u"NSLocaleVariantCode">(); }

NSRef<NSDictionary> NSLocale::componentsFromLocaleIdentifier(const NSRef<NSString>& identifier) {
  if (!identifier) return nullptr;
  const NSLocaleComponents parts(identifier->view());
  const auto components = NSMake<NSMutableDictionary>();
  const auto enter = [&](const NSRef<NSString>& key, std::u16string_view part) {
    if (!part.empty()) components->setObject_forKey(NSMake<NSString>(part), key);
  };
  enter(NSLocaleLanguageCode(), parts.language);
  enter(NSLocaleScriptCode(), parts.script);
  enter(NSLocaleCountryCode(), parts.country);
  enter(NSLocaleVariantCode(), parts.variant);
  return components->copy().as<NSDictionary>();
}

NSRef<NSString> NSLocale::canonicalLanguageIdentifierFromString(const NSRef<NSString>& identifier) {
  if (!NSIsLocaleIdentifier(NSViewOf(identifier))) return nullptr;
  const std::string canonical =
      ask(uloc_canonicalize, NSASCIIOf(NSWithoutKeywords(identifier->view())));
  const std::string language = ask(uloc_getLanguage, canonical);
  if (!isLanguage(language)) return u"und"_ns;
  const std::string written = ask(uloc_getScript, canonical);
  const std::string region = ask(uloc_getCountry, canonical);
  const std::string usual = usualScript(language);
  // The present code of a language that had another one once: "he" for "iw".
  std::string result = NSLanguageTag(language);
  if (result.empty()) result = language;
  if (!written.empty()) {
    if (written != usual || hasSeveralScripts(language)) result.append("-").append(written);
  } else if (!region.empty()) {
    const std::string implied = usualScript(language, region);
    if (!implied.empty() && implied != usual) result.append("-").append(implied);
  }
  return NSMake<NSString>(result);
}

NSRef<NSString> NSLocale::displayNameForKey_value(const NSRef<NSString>& key,
                                                  const NSRef<NSString>& value) const {
  if (!NSIsLocaleIdentifier(NSViewOf(value))) return nullptr;
  for (const auto& [knownKey, name] : namedKinds) {
    if (!knownKey()->isEqualToString(key)) continue;
    std::call_once(_namesOnce, [this] {
      _names = std::make_unique<const NSDisplayNames>(_identifier->utf8());
    });
    auto result = _names->nameOf(name, value->view());
    // There are keywords that ICU cannot read, or takes all else for.
    const auto plain = NSWithoutKeywords(value->view());
    if (!result && !plain.empty()) result = _names->nameOf(name, plain);
    return result ? result : value->copy();
  }
  return nullptr;
}
