#include "tests/Support.h"

#include <set>

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
  const char16_t* const standard = u"\"\"''»«›‹";
  for (const auto& [identifiers, marks] : Rows<const char*, const char16_t*>{
           {"ar es fr pt tr", u"«»‹›“”‘’"},
           {"be ru uk", u"«»„“„“›‹"},
           {"bg cs de_DE is sk sl sr de_ch de@x=_CH", u"„“‚‘»«›‹"},
           {"da", u"»«›‹„“‚‘"},
           {"el sq", u"«»‹›“„‘‚"},
           {"en", u"“”‘’‘’“”"},
           {"eo", u"“”''»«›‹"},
           {"et lv", u"«»‹›„“‚‘"},
           {"fi-FI sv", u"””’’»»››"},
           {"ga", u"“”‘’»«›‹"},
           {"hr", u"»«›‹»«›‹"},
           {"hu_HU", u"„“''»«›‹"},
           {"it", u"«»''“”‘’"},
           {"lt ro", u"„“‚‘«»‹›"},
           {"nl", u"„”‚’“”’’"},
           {"no", u"«»''„”›‹"},
           {"pl", u"„”«»»«›‹"},
           {"zh_Hant_TW xx DE deu d de.UTF-8", standard},
           {"de_CH xx_CH _CH rm-Latn-CH de_CH@x=y", u"«»‹›»«›‹"},
           {"en_CH", u"«»‹›‘’“”"},
       }) {
    std::istringstream list(identifiers);
    for (std::string identifier; list >> identifier;) {
      EXPECT_EQ(marksFor(NSMake<NSString>(identifier)), marks) << identifier;
    }
  }
  EXPECT_EQ(marksFor(u""_ns), standard);
  EXPECT_EQ(marksFor(nullptr), standard);
}

TEST(NSStringExtensions, QuoteAtEveryLevel) {
  for (const auto& [identifiers, quoted] : Rows<const char*, const char*>{
           {"en", "“‘“a”’”"},
           {"de_DE", "„‚„a“‘“"},
           {"de_CH fr_CH", "«‹«a»›»"},
           {"fr fr_CA", "«\u202F‹\u202F«\u202Fa\u202F»\u202F›\u202F»"},
           {"br", "«\u202F“«\u202Fa\u202F»”\u202F»"},
           {"es pt_BR", "«‹«a»›»"},
           {"hy hy@x=y", "«««a»»»"},
           {"ja ja_JP", "「『「a」』」"},
           {"xx zz_ZZ zh", "“‘“a”’”"},
           {"d|e", R"("'"a"'")"},
       }) {
    std::istringstream list(identifiers);
    for (std::string identifier; list >> identifier;) {
      NSRef<NSString> text = u"a"_ns;
      for (const NSUInteger level : {2U, 1U, 0U}) {
        text =
            stringByQuotingAtLevel_forLocaleIdentifier(text, level, NSMake<NSString>(identifier));
      }
      EXPECT_EQ(text->utf8(), quoted) << identifier;
    }
  }
  EXPECT_EQ(stringByQuotingAtLevel_forLocaleIdentifier(u""_ns, 7, nullptr), u"\'\'");
  refusesNil("string", "stringByQuotingAtLevel:forLocaleIdentifier:", [] {
    (void)stringByQuotingAtLevel_forLocaleIdentifier(nullptr, 0, u"en"_ns);
  });
}

// "code name", joined.
std::string shown(const std::vector<ZKNamedCode>& list) {
  std::string text;
  for (const auto& [code, name] : list) text += code->utf8() + ' ' + name->utf8() + ", ";
  return text;
}

TEST(ZKNamedCodes, AreSortedByName) {
  const auto countries = NSMake<NSArray>(
      {u"AT"_ns, u"PL"_ns, u"OM"_ns, u"NO"_ns, u"ZW"_ns, u"OM"_ns, u"no region"_ns, number(1)});
  EXPECT_EQ(shown(ZKRegionsSortedByName(countries, locale("de"))),
            "NO Norwegen, OM Oman, AT Österreich, PL Polen, ZW Simbabwe, ");
  EXPECT_EQ(shown(ZKRegionsSortedByName(countries, locale("sv"))),
            "NO Norge, OM Oman, PL Polen, ZW Zimbabwe, AT Österrike, ");
  const auto languages =
      NSMake<NSArray>({u"iw"_ns, u"de_CH"_ns, u"he"_ns, u"xx"_ns, u"de"_ns, u"en"_ns});
  EXPECT_EQ(shown(ZKLanguagesSortedByName(languages, locale("en"))),
            "en English, de German, de_CH German (Switzerland), he Hebrew (he), iw Hebrew (iw), "
            "xx xx, ");
  NSLocale::setCurrentLocale(locale("fr"));
  const auto all = ZKLanguagesSortedByName(nullptr, nullptr);
  NSLocale::setCurrentLocale(nullptr);
  EXPECT_GT(all.size(), 500U);
  std::set<std::string> names;
  for (const auto& [code, name] : all) names.insert(name->utf8());
  EXPECT_EQ(names.size(), all.size());
  EXPECT_TRUE(names.contains("éwé"));
  EXPECT_GT(ZKRegionsSortedByName(nullptr, locale("ja")).size(), 200U);
}

struct LanguageItem : ZKLocaleEntity {
  using ZKLocaleEntity::ZKLocaleEntity;
  NSRef<NSLocale> locale() const override { return nullptr; }
};

TEST(ZKLocaleEntity, ListsLanguages) {
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"en"_ns));
  const auto list = ZKLocaleEntity::entitiesForLocaleIdentifiers(NSMake<NSArray>(
      {u"fr_CA"_ns, u""_ns, u"de_CH"_ns, u"no locale"_ns, u"zh_TW"_ns, number(1), u"en"_ns}));
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
  EXPECT_EQ(ZKLocaleEntity::entitiesForLocaleIdentifiers<LanguageItem>(nullptr)->count(), 0U);

  const auto entity = list->firstObject().as<ZKLocaleEntity>();
  NSLocale::setCurrentLocale(NSLocale::localeWithLocaleIdentifier(u"de"_ns));
  EXPECT_EQ(entity->displayName()->utf8(), "Französisch (Kanada)");
  entity->setLocale(NSLocale::localeWithLocaleIdentifier(u"pt_BR"_ns));
  EXPECT_EQ(entity->valueForKey(u"languageDisplayName"_ns)->description()->utf8(), "Portugiesisch");
  entity->setLocale(nullptr);
  EXPECT_FALSE(entity->locale() || entity->localeIdentifier() || entity->languageIdentifier() ||
               entity->displayName() || entity->languageDisplayName());
  NSLocale::setCurrentLocale(nullptr);

  const auto locale = NSLocale::localeWithLocaleIdentifier(u"it"_ns);
  const auto item = ZKLocaleEntity::entityForLocale<LanguageItem>(locale);
  EXPECT_TRUE(item->isMemberOfClass(NSClass::of<LanguageItem>()));
  EXPECT_EQ(item->localeIdentifier()->utf8(), "it");  // What is stored counts.
  const auto items =
      ZKLocaleEntity::entitiesForLocaleIdentifiers<LanguageItem>(NSMake<NSArray>({u"it"_ns}));
  EXPECT_TRUE(items->firstObject()->isMemberOfClass(NSClass::of<LanguageItem>()));
  EXPECT_FALSE(ZKLocaleEntity::initWithLocaleIdentifier<LanguageItem>(u""_ns));
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
  expectRaises(NSGenericException, "NSMutableArray was mutated while being enumerated", [] {
    return ZKLocaleEntity::entitiesForLocaleIdentifiers<GrowingItem>(GrowingItem::identifiers());
  });
}

TEST(ZKLocaleEntity, ChangesItsLocaleOnAnyThread) {
  const auto german = NSLocale::localeWithLocaleIdentifier(u"de"_ns);
  const auto english = NSLocale::localeWithLocaleIdentifier(u"en_US"_ns);
  const auto entity = NSMake<ZKLocaleEntity>(german);
  // Often enough for the threads to meet, also on one processor. Nothing here orders their changes.
  constexpr auto relaxed = std::memory_order_relaxed;
  std::atomic<int> threads = 0;
  std::atomic<int> latest = 0;
  std::atomic<int> turns = 0;
  onThreads(2, [&] {
    const int self = threads.fetch_add(1, relaxed);
    for (int k = 0; k < 100'000 || turns.load(relaxed) < 200; ++k) {
      if (latest.exchange(self, relaxed) != self) turns.fetch_add(1, relaxed);
      entity->setLocale(k % 2 == 0 ? english : german);
      if (k % 16 != 0) continue;
      const auto identifier = entity->localeIdentifier();
      EXPECT_TRUE(identifier == u"de" || identifier == u"en_US");
    }
  });
  // No locale has been let go twice or never: the entity holds one of them.
  entity->setLocale(german);
  EXPECT_EQ(german->retainCount(), 2U);
  EXPECT_EQ(english->retainCount(), 1U);
}

}  // namespace
