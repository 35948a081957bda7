#pragma once

#include <concepts>
#include <mutex>

#include <Foundation/NSArray.h>
#include <Foundation/NSLocale.h>
#include <Foundation/NSString.h>
#include <ZKFoundation/ZKExport.h>

/// A locale as an item in a list of languages, with names for people in the user's current locale.
/// Everything but the locale itself is asked anew on each call. Usable from any thread.
///
/// The functions that make entities make instances of the class that is asked for:
/// `ZKLocaleEntity::entityForLocale<LanguageItem>(locale)`. Without that they make plain ones, also
/// when they are called by a subclass's name: C++ does not tell them by which.
class ZK_EXPORT ZKLocaleEntity : public NSObject {
 public:
  /// Makes an entity of the locale, which may be nil.
  template <std::derived_from<ZKLocaleEntity> Entity = ZKLocaleEntity>
  [[nodiscard]] static NSRef<Entity> entityForLocale(const NSRef<NSLocale>& locale) {
    return NSMake<Entity>(locale);
  }
  /// Makes entities for the identifiers, strings, in their order; omits what gives no locale. A nil
  /// array gives an empty one; one that changes meanwhile raises `NSGenericException`.
  template <std::derived_from<ZKLocaleEntity> Entity = ZKLocaleEntity>
  [[nodiscard]] static NSRef<NSMutableArray> entitiesForLocaleIdentifiers(
      const NSRef<NSArray>& identifiers) {
    auto entities = NSMake<NSMutableArray>();
    if (!identifiers) return entities;
    entities->reserve(identifiers->count());
    for (const auto& identifier : identifiers) {
      const auto entity = initWithLocaleIdentifier<Entity>(identifier.template as<NSString>());
      if (entity) entities->addObject(entity);
    }
    return entities;
  }
  /// Makes an entity of the locale with the identifier; nil for what
  /// `NSLocale::localeWithLocaleIdentifier` does not take.
  template <std::derived_from<ZKLocaleEntity> Entity = ZKLocaleEntity>
  [[nodiscard]] static NSRef<Entity> initWithLocaleIdentifier(const NSRef<NSString>& identifier) {
    const auto locale = NSLocale::localeWithLocaleIdentifier(identifier);
    return locale ? NSMake<Entity>(locale) : nullptr;
  }

  ZKLocaleEntity() = default;
  /// Takes the locale, which may be nil.
  explicit ZKLocaleEntity(const NSRef<NSLocale>& locale);

  /// Gives the locale; nil without one.
  [[nodiscard]] virtual NSRef<NSLocale> locale() const;
  /// Takes another locale, or none.
  virtual void setLocale(const NSRef<NSLocale>& locale);

  /// Gives the identifier of the locale, such as "de_CH"; nil without a locale, as are all names.
  [[nodiscard]] virtual NSRef<NSString> localeIdentifier() const;
  /// Gives the identifier of the language alone: "de".
  [[nodiscard]] virtual NSRef<NSString> languageIdentifier() const;
  /// Names the locale: "German (Switzerland)" for a user who reads English.
  [[nodiscard]] virtual NSRef<NSString> displayName() const;
  /// Names the language alone: "German".
  [[nodiscard]] virtual NSRef<NSString> languageDisplayName() const;

  /// Gives "<ZKLocaleEntity de_CH>".
  [[nodiscard]] NSRef<NSString> description() const override;
  /// Publishes "locale", "localeIdentifier", "languageIdentifier", "displayName" and
  /// "languageDisplayName" besides what every object does.
  [[nodiscard]] const NSPropertyTable& propertyTable() const override;

 private:
  mutable std::mutex _mutex;
  NSRef<NSLocale> _locale;
};
