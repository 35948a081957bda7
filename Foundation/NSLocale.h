#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Passkey.h>

class NSArray;
class NSCollation;
class NSData;
class NSDecimalSymbols;
class NSDictionary;
class NSDisplayNames;
class NSString;

// Keys of the components of a locale identifier, and of what has a name for people.

/// Key of a whole identifier, such as "de_CH".
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSLocaleIdentifier();
/// Key of a language, such as "de".
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSLocaleLanguageCode();
/// Key of a script, such as "Latn".
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSLocaleScriptCode();
/// Key of a region, such as "CH", or its number, such as "419".
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSLocaleCountryCode();
/// Key of a variant, such as "POSIX".
[[nodiscard]] NS_EXPORT const NSRef<NSString>& NSLocaleVariantCode();

/// A language with the habits of a region, named such as "de_CH" or "zh-Hant-TW". Immutable.
///
/// The current locale and the user's languages come from the environment, read on first use:
/// LC_ALL, LC_MESSAGES and LANG, of which the first that is not empty counts, and for the languages
/// LANGUAGE before them ("de_CH:de:fr"; as in gettext not when the others say "C"). A program may
/// set both itself. The functions on them may be called from any thread.
class NS_EXPORT NSLocale : public NSObject {
 public:
  NSLocale(NSPasskey<NSLocale> key, const NSRef<NSString>& identifier);
  NSLocale(const NSLocale&) = delete;
  ~NSLocale() override;

  /// Makes a locale. Nil for text that is no locale identifier: nil, empty, longer than 150 units,
  /// or with other characters than ASCII letters and digits and any of "_-@=;+.". A language or
  /// region that nobody knows is none of these; it has the habits of the nearest that is known.
  [[nodiscard]] static NSRef<NSLocale> localeWithLocaleIdentifier(
      const NSRef<NSString>& identifier);

  /// Gives the parts of an identifier under the keys of language, script, country and variant; what
  /// does not occur has no entry. It is cut at "@" and split at "_" and "-": the language, which
  /// may be empty, a script of four letters, a region of two letters or three digits, and the rest.
  /// Letter case stays. Nil for nil.
  [[nodiscard]] static NSRef<NSDictionary> componentsFromLocaleIdentifier(
      const NSRef<NSString>& identifier);

  /// Gives the language of an identifier without the region: "de" for "de_CH". The script is there
  /// where it tells languages apart: one that is written, if it is not the only one of the language
  /// ("zh-Hans" for "zh_Hans_CN", "de" for "de_Latn_DE"), and one that the region implies, if it is
  /// not the language's usual one ("zh-Hant" for "zh_TW"). "und" without a language that ICU can
  /// read; nil for what is no identifier.
  [[nodiscard]] static NSRef<NSString> canonicalLanguageIdentifierFromString(
      const NSRef<NSString>& identifier);

  /// Gives the name of what the value stands for, in the locale's language: under
  /// `NSLocaleIdentifier` "de_CH" is "German (Switzerland)", under `NSLocaleCountryCode` "CH" is
  /// "Switzerland". What nobody knows has its code as its name. Nil for a value that is no
  /// identifier and for other keys. May be called from any thread.
  [[nodiscard]] NSRef<NSString> displayNameForKey_value(const NSRef<NSString>& key,
                                                        const NSRef<NSString>& value) const;

  /// Gives the codes of all languages that ISO 639 names, such as "de", in no particular order.
  [[nodiscard]] static NSRef<NSArray> ISOLanguageCodes();
  /// Gives the codes of all regions that ISO 3166 names, such as "CH", in no particular order.
  [[nodiscard]] static NSRef<NSArray> ISOCountryCodes();

  // Marks around quotations by CLDR, which has them for every language; none has a space.

  /// Gives the mark that opens a quotation: „ for "de".
  [[nodiscard]] NSRef<NSString> quotationBeginDelimiter() const;
  /// Gives the mark that closes a quotation: “ for "de".
  [[nodiscard]] NSRef<NSString> quotationEndDelimiter() const;
  /// Gives the mark that opens a quotation within one: ‚ for "de".
  [[nodiscard]] NSRef<NSString> alternateQuotationBeginDelimiter() const;
  /// Gives the mark that closes a quotation within one: ‘ for "de".
  [[nodiscard]] NSRef<NSString> alternateQuotationEndDelimiter() const;

  /// Gives bytes that, compared as such, order texts as a list in the locale's language does: "Ö"
  /// stands beside "O" for "de" and after "Z" for "sv". Nil is the empty text. May be called from
  /// any thread.
  [[nodiscard]] NSRef<NSData> collationKeyForString(const NSRef<NSString>& string) const;

  /// Gives the user's locale.
  [[nodiscard]] static NSRef<NSLocale> currentLocale();
  /// Sets the user's locale. Nil returns to the environment, which is read anew.
  static void setCurrentLocale(const NSRef<NSLocale>& locale);

  /// Gives the user's languages, the best one first, as strings like "de-CH" and "de". Never empty.
  [[nodiscard]] static NSRef<NSArray> preferredLanguages();
  /// Sets the user's languages. Nil and an empty array return to the environment, read anew.
  static void setPreferredLanguages(const NSRef<NSArray>& languages);

  /// Gives a number that changes when `preferredLanguages` may have, for what depends on them.
  [[nodiscard]] static std::uint64_t languagesGeneration() noexcept;

  /// Gives the identifier as it was given.
  [[nodiscard]] NSRef<NSString> localeIdentifier() const noexcept;

  /// Whether the other is a locale with the same identifier.
  [[nodiscard]] bool isEqual(const NSRef<NSObject>& other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// "NSLocale de_CH"
  [[nodiscard]] NSRef<NSString> description() const override;
  /// "localeIdentifier" besides what every object publishes.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;
  [[nodiscard]] NSRef<NSObject> copyWithZone(NSZone* /*zone*/) const override { return self(); }

 private:
  friend struct NSAccess;

  [[nodiscard]] const NSDecimalSymbols& decimalSymbols() const;

  NSRef<NSString> _identifier;
  mutable std::once_flag _symbolsOnce;
  mutable std::unique_ptr<const NSDecimalSymbols> _symbols;
  mutable std::once_flag _namesOnce;
  mutable std::unique_ptr<const NSDisplayNames> _names;
  mutable std::once_flag _collationOnce;
  mutable std::unique_ptr<const NSCollation> _collation;
};
