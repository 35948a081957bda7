#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>
#include <Foundation/detail/Passkey.h>

class NSArray;
class NSDecimalSymbols;
class NSDictionary;
class NSDisplayNames;
class NSString;

// Keys of the components of a locale identifier, and of what has a name for people.

/// A whole identifier, such as "de_CH".
NS_EXPORT const NSRef<NSString>& NSLocaleIdentifier();
/// "de"
NS_EXPORT const NSRef<NSString>& NSLocaleLanguageCode();
/// "Latn"
NS_EXPORT const NSRef<NSString>& NSLocaleScriptCode();
/// "CH", or the number of a region such as "419"
NS_EXPORT const NSRef<NSString>& NSLocaleCountryCode();
/// "POSIX"
NS_EXPORT const NSRef<NSString>& NSLocaleVariantCode();

/// A language with the habits of a region, named by an identifier such as "de_CH" or "zh-Hant-TW".
/// Immutable.
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

  /// Nil for text that is no locale identifier: nil, empty, longer than 150 units, or with other
  /// characters than ASCII letters and digits and any of "_-@=;+.". A language or region that
  /// nobody knows is none of these; it has the habits of the nearest that is known.
  static NSRef<NSLocale> localeWithLocaleIdentifier(const NSRef<NSString>& identifier);

  /// The parts of an identifier under the keys of language, script, country and variant; what does
  /// not occur has no entry. It is cut at "@" and split at "_" and "-": the language, which
  /// may be empty, a script of four letters, a region of two letters or three digits, and the rest.
  /// Letter case stays. Nil for nil.
  static NSRef<NSDictionary> componentsFromLocaleIdentifier(const NSRef<NSString>& identifier);

  /// The language of an identifier without the region: "de" for "de_CH". Its script is there where
  /// that tells languages apart: one that is written, if it is not the only one that the language
  /// has ("zh-Hans" for "zh_Hans_CN", "de" for "de_Latn_DE"), and one that the region implies, if
  /// it is not the language's usual one ("zh-Hant" for "zh_TW"). "und" without a language that ICU
  /// can read; nil for what is no identifier.
  static NSRef<NSString> canonicalLanguageIdentifierFromString(const NSRef<NSString>& identifier);

  /// What people who speak the locale's language call what the value stands for: under
  /// `NSLocaleIdentifier` "de_CH" is "German (Switzerland)", under `NSLocaleCountryCode` "CH" is
  /// "Switzerland". What nobody knows is called by its code. Nil for a value that is no identifier
  /// and for other keys. May be called from any thread.
  NSRef<NSString> displayNameForKey_value(const NSRef<NSString>& key,
                                          const NSRef<NSString>& value) const;

  static NSRef<NSLocale> currentLocale();
  /// Nil returns to the environment, which is read anew.
  static void setCurrentLocale(const NSRef<NSLocale>& locale);

  /// The user's languages, the best one first, as strings like "de-CH" and "de". Never empty.
  static NSRef<NSArray> preferredLanguages();
  /// Nil or an empty array return to the environment, which is read anew.
  static void setPreferredLanguages(const NSRef<NSArray>& languages);

  /// Changes whenever `preferredLanguages` may have; for those who keep what depends on it.
  static std::uint64_t languagesGeneration() noexcept;

  /// As it was given.
  NSRef<NSString> localeIdentifier() const noexcept;

  /// How the locale writes decimal numbers; for the platform's own use.
  const NSDecimalSymbols& decimalSymbols() const;

  /// Whether the identifiers are the same.
  bool isEqual(const NSRef<NSObject>& other) const override;
  NSUInteger hash() const override;
  /// "NSLocale de_CH"
  NSRef<NSString> description() const override;
  /// "localeIdentifier" besides what every object publishes.
  const NSPropertyTable& propertyTable() const override;
  /// The locale itself.
  NSRef<NSObject> copyWithZone(NSZone* zone) const override;

 private:
  NSRef<NSString> _identifier;
  mutable std::once_flag _symbolsOnce;
  mutable std::unique_ptr<const NSDecimalSymbols> _symbols;
  mutable std::once_flag _namesOnce;
  mutable std::unique_ptr<const NSDisplayNames> _names;
};
