#include "tests/Support.h"

#include <array>
#include <string>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

namespace {

std::u16string marksFor(const NSRef<NSString>& identifier) {
  return {openingDoubleQuotationForLocaleIdentifier(identifier),
          closingDoubleQuotationForLocaleIdentifier(identifier),
          openingSingleQuotationForLocaleIdentifier(identifier),
          closingSingleQuotationForLocaleIdentifier(identifier),
          openingDoubleGuillemetForLocaleIdentifier(identifier),
          closingDoubleGuillemetForLocaleIdentifier(identifier),
          openingSingleGuillemetForLocaleIdentifier(identifier),
          closingSingleGuillemetForLocaleIdentifier(identifier)};
}

TEST(NSLocaleExtensions, KnowTheQuotationMarks) {
  struct Row {
    const char* identifier;
    const char16_t* marks;
  };
  const char16_t* const standard = u"\"\"''»«›‹";
  for (const auto& [identifier, marks] : std::to_array<Row>({
           {"de_DE", u"„“‚‘»«›‹"},
           {"ar", u"«»‹›“”‘’"},
           {"uk", u"«»„“„“›‹"},
           {"da", u"»«›‹„“‚‘"},
           {"hr", u"»«›‹»«›‹"},
           {"fi-FI", u"””’’»»››"},
           {"sv", u"””’’»»››"},
           {"ru", u"«»„“„“›‹"},
           {"be", u"«»„“„“›‹"},
           {"pl", u"„”«»»«›‹"},
           {"en", u"“”‘’‘’“”"},
           {"el", u"«»‹›“„‘‚"},
           {"sq", u"«»‹›“„‘‚"},
           {"nl", u"„”‚’“”’’"},
           {"no", u"«»''„”›‹"},
           {"it", u"«»''“”‘’"},
           {"eo", u"“”''»«›‹"},
           {"hu_HU", u"„“''»«›‹"},
           {"zh_Hant_TW", standard},
           {"", standard},
           {"xx", standard},
           {"DE", standard},
           {"deu", standard},
           {"d", standard},
           {"de_CH", u"«»‹›»«›‹"},
           {"en_CH", u"«»‹›‘’“”"},
           {"xx_CH", u"«»‹›»«›‹"},
           {"_CH", u"«»‹›»«›‹"},
           {"rm-Latn-CH", u"«»‹›»«›‹"},
           {"de_ch", u"„“‚‘»«›‹"},
           {"de_CH@x=y", u"«»‹›»«›‹"},
           {"de@x=_CH", u"„“‚‘»«›‹"},
           {"de.UTF-8", standard},
       })) {
    EXPECT_EQ(marksFor(NSMake<NSString>(identifier)), marks) << identifier;
  }
  EXPECT_EQ(marksFor(nullptr), standard);
}

struct LanguageItem : ZKLocaleEntity {
  using ZKLocaleEntity::ZKLocaleEntity;
  NSRef<NSLocale> locale() const override { return nullptr; }
};

TEST(ZKLocaleEntity, ListsLanguages) {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en"_ns));
  const auto list = ZKLocaleEntity::entitiesForLocaleIdentifiers(
      NSMake<NSArray>({u"fr_CA"_ns, u""_ns, u"de_CH"_ns, u"no locale"_ns, u"zh_TW"_ns,
                       NSMake<NSNumber>(1), u"en"_ns}));
  std::string text;
  for (const auto& item : list) {
    const auto entity = item.as<ZKLocaleEntity>();
    for (const auto& part : {entity->localeIdentifier(), entity->languageIdentifier(),
                             entity->displayName(), entity->languageDisplayName()}) {
      text += part->utf8() + ", ";
    }
  }
  EXPECT_EQ(text,
            "fr_CA, fr, French (Canada), French, de_CH, de, German (Switzerland), German, "
            "zh_TW, zh-Hant, Chinese (Taiwan), Chinese (Traditional), en, en, English, English, ");
  EXPECT_EQ(ZKLocaleEntity::entitiesForLocaleIdentifiers(nullptr)->count(), 0U);

  const auto entity = list->firstObject().as<ZKLocaleEntity>();
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"de"_ns));
  EXPECT_TRUE(entity->displayName() == u"Französisch (Kanada)");
  entity->setLocale(NSLocale::localeWithLocaleIdentifier(u"pt_BR"_ns));
  EXPECT_TRUE(entity->valueForKey(u"languageDisplayName"_ns).as<NSString>() == u"Portugiesisch");
  entity->setLocale(nullptr);
  EXPECT_FALSE(entity->locale() || entity->localeIdentifier() || entity->languageIdentifier() ||
               entity->displayName() || entity->languageDisplayName());
  NSLocale::setCurrentLocale(nullptr);

  const auto locale = NSLocale::localeWithLocaleIdentifier(u"it"_ns);
  const auto item = ZKLocaleEntity::entityForLocale<LanguageItem>(locale);
  EXPECT_TRUE(item->isMemberOfClass(NSClass::of<LanguageItem>()));
  EXPECT_TRUE(item->localeIdentifier() == u"it");  // What is stored counts.
  const auto items =
      ZKLocaleEntity::entitiesForLocaleIdentifiers<LanguageItem>(NSMake<NSArray>({u"it"_ns}));
  EXPECT_TRUE(items->firstObject()->isMemberOfClass(NSClass::of<LanguageItem>()));
  EXPECT_FALSE(ZKLocaleEntity::initWithLocaleIdentifier(u""_ns));
}

struct GrowingItem : ZKLocaleEntity {
  explicit GrowingItem(const NSRef<NSLocale>& locale) : ZKLocaleEntity(locale) {
    identifiers()->addObject(u"de"_ns);
  }
  static const NSRef<NSMutableArray>& identifiers() {
    static const auto array = NSMake<NSMutableArray>({u"en"_ns, u"fr"_ns});
    return array;
  }
};

TEST(ZKLocaleEntity, NoticesAListThatChanges) {
  try {
    ZKLocaleEntity::entitiesForLocaleIdentifiers<GrowingItem>(GrowingItem::identifiers());
    ADD_FAILURE() << "nothing raised";
  } catch (const NSException& exception) {
    EXPECT_TRUE(exception.name() == NSGenericException);
  }
}

TEST(ZKLocaleEntity, ChangesItsLocaleOnAnyThread) {
  const auto entity = NSMake<ZKLocaleEntity>();
  onThreads(4, [&] {
    for (int k = 0; k < 1000; ++k) {
      entity->setLocale(NSLocale::localeWithLocaleIdentifier(k % 2 == 0 ? u"de"_ns : u"en_US"_ns));
      const auto identifier = entity->localeIdentifier();
      EXPECT_TRUE(identifier == u"de" || identifier == u"en_US");
    }
  });
}

}  // namespace
