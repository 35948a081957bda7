#pragma once

#include <concepts>
#include <mutex>

#include <Foundation/NSArray.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

/// A locale as an item in a list of languages, with names for people in the user's current locale.
/// Everything but the locale itself is asked anew on each call. May be used from any thread.
///
/// The functions that make entities make instances of the class that is asked for:
/// `ZKLocaleEntity::entityForLocale<LanguageItem>(locale)`. Without that they make plain ones, also
/// when they are called by a subclass's name: C++ does not tell them by which.
class ZK_EXPORT ZKLocaleEntity : public NSObject {
 public:
  template <std::derived_from<ZKLocaleEntity> Entity = ZKLocaleEntity>
  static NSRef<Entity> entityForLocale(const NSRef<NSLocale>& locale) {
    return NSMake<Entity>(locale);
  }
  /// Entities for the identifiers, strings, in their order. What gives no locale is left out. A nil
  /// array gives an empty one; one that changes meanwhile raises `NSGenericException`.
  template <std::derived_from<ZKLocaleEntity> Entity = ZKLocaleEntity>
  static NSRef<NSMutableArray> entitiesForLocaleIdentifiers(const NSRef<NSArray>& identifiers) {
    auto entities = NSMake<NSMutableArray>();
    if (!identifiers) return entities;
    entities->reserve(identifiers->count());
    for (const auto& identifier : identifiers) {
      const auto entity = initWithLocaleIdentifier<Entity>(identifier.template as<NSString>());
      if (entity) entities->addObject(entity);
    }
    return entities;
  }
  /// Nil for what `NSLocale::localeWithLocaleIdentifier` does not take.
  template <std::derived_from<ZKLocaleEntity> Entity = ZKLocaleEntity>
  static NSRef<Entity> initWithLocaleIdentifier(const NSRef<NSString>& identifier) {
    const auto locale = NSLocale::localeWithLocaleIdentifier(identifier);
    return locale ? NSMake<Entity>(locale) : nullptr;
  }

  ZKLocaleEntity() = default;
  /// The locale may be nil.
  explicit ZKLocaleEntity(const NSRef<NSLocale>& locale);

  virtual NSRef<NSLocale> locale() const;
  virtual void setLocale(const NSRef<NSLocale>& locale);

  /// That of the locale, such as "de_CH"; nil without one. The names are nil then, too.
  virtual NSRef<NSString> localeIdentifier() const;
  /// The language alone: "de"
  virtual NSRef<NSString> languageIdentifier() const;
  /// "German (Switzerland)" for a user who reads English
  virtual NSRef<NSString> displayName() const;
  /// "German"
  virtual NSRef<NSString> languageDisplayName() const;

  /// "<ZKLocaleEntity de_CH>"
  NSRef<NSString> description() const override;
  /// "locale", "localeIdentifier", "languageIdentifier", "displayName" and "languageDisplayName"
  /// besides what every object publishes.
  const NSPropertyTable& propertyTable() const override;

 private:
  mutable std::mutex _mutex;
  NSRef<NSLocale> _locale;
};
