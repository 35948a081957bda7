#include "tests/Support.h"

namespace {

TEST(NSLocaleNames, SplitsIdentifiers) {
  // Language, script, country, variant.
  for (const auto& [identifier, parts] : Rows<const char*, std::array<const char*, 4>>{
           {"de_CH", {"de", "nil", "CH", "nil"}},
           {"zh-Hant-TW", {"zh", "Hant", "TW", "nil"}},
           {"es_419", {"es", "nil", "419", "nil"}},
           {"_CH", {"nil", "nil", "CH", "nil"}},
           {"DE_ch", {"DE", "nil", "ch", "nil"}},
           {"de_CH@currency=EUR;x=a_US", {"de", "nil", "CH", "nil"}},
           {"@x=_CH", {"nil", "nil", "nil", "nil"}},
           {"de.x_CH", {"de.x", "nil", "CH", "nil"}},
           {"de_DE_1996", {"de", "nil", "DE", "1996"}},
           {"de__CH", {"de", "nil", "nil", "_CH"}},
           {"sl_rozaj_IT", {"sl", "nil", "nil", "rozaj_IT"}},
           {"de_Latn", {"de", "Latn", "nil", "nil"}},
           {"de_C1", {"de", "nil", "nil", "C1"}},
           {"de_CHE", {"de", "nil", "nil", "CHE"}},
           {"ü_CH", {"ü", "nil", "CH", "nil"}},
           {"-", {"nil", "nil", "nil", "nil"}},
           {"", {"nil", "nil", "nil", "nil"}},
       }) {
    const auto components = NSLocale::componentsFromLocaleIdentifier(string(identifier));
    const std::array<NSRef<NSString>, 4> keys = {NSLocaleLanguageCode(), NSLocaleScriptCode(),
                                                 NSLocaleCountryCode(), NSLocaleVariantCode()};
    for (std::size_t k = 0; k < keys.size(); ++k) {
      EXPECT_EQ(shown(components->objectForKey(keys[k])), parts[k]) << identifier;
    }
  }
  EXPECT_FALSE(NSLocale::componentsFromLocaleIdentifier(nullptr));
}

TEST(NSLocaleNames, NamesTheLanguageAlone) {
  const auto languageOf = [](const NSRef<NSString>& identifier) {
    return shown(NSLocale::canonicalLanguageIdentifierFromString(identifier));
  };
  for (const auto& [language, identifiers] : Rows<const char*, const char*>{
           {"de", "de_CH de_Latn_DE DE-ch deu_DE de_CH@x= de@x=_CH"},
           {"pt", "pt_BR"},
           {"de-Cyrl", "de_Cyrl"},
           {"zh-Hant", "zh_TW zh_Hant_HK"},
           {"zh", "zh_CN"},
           {"zh-Hans", "zh_Hans_CN"},
           {"sr", "sr_RS"},
           {"sr-Latn", "sr_ME sr_Latn_RS"},
           {"he", "iw_IL"},
           {"en", "en_US_POSIX"},
           {"und", "_CH x_zb---e root_cren_US root_US abcdefghijkl"},
       }) {
    std::istringstream list(identifiers);
    for (std::string identifier; list >> identifier;) {
      EXPECT_EQ(languageOf(NSMake<NSString>(identifier)), language) << identifier;
    }
  }
  for (const auto& none : {u""_ns, u"a b"_ns, NSRef<NSString>()}) {
    EXPECT_EQ(languageOf(none), "nil");
  }
}

TEST(NSLocaleNames, NamesForPeople) {
  for (const auto& [user, key, value, name] :
       Rows<const char*, NSRef<NSString>, const char*, const char*>{
           {"en", NSLocaleIdentifier(), "de_CH", "German (Switzerland)"},
           {"en_US_POSIX", NSLocaleIdentifier(), "pt-BR", "Portuguese (Brazil)"},
           {"de", NSLocaleIdentifier(), "de_CH", "Deutsch (Schweiz)"},
           {"fr_CA", NSLocaleIdentifier(), "de_CH", "allemand (Suisse)"},
           {"xx@numbers=none", NSLocaleIdentifier(), "zz_QQ", "zz (QQ)"},
           {"1-uH@=d=s", NSLocaleIdentifier(), "de_CH", "de (CH)"},
           {"en", NSLocaleIdentifier(), "de_DE@euro", "German (Germany)"},
           {"en", NSLocaleIdentifier(), "sr_RS@latin", "Serbian (Serbia)"},
           {"en", NSLocaleIdentifier(), "de@=", "German"},
           {"en", NSLocaleIdentifier(), "@=", "@="},
           {"en", NSLocaleIdentifier(), "abcdefghijkl", "abcdefghijkl"},
           {"de", NSLocaleLanguageCode(), "de", "Deutsch"},
           {"de", NSLocaleScriptCode(), "Cyrl", "Kyrillisch"},
           {"ar", NSLocaleCountryCode(), "CH", "سويسرا"},
           {"en", NSLocaleVariantCode(), "1996", "German orthography of 1996"},
           {"en", string("no key"), "de", "nil"},
           {"en", NSLocaleIdentifier(), "", "nil"},
           {"en", NSLocaleIdentifier(), "a b", "nil"},
           {"en", NSLocaleIdentifier(),
            "zh_Hant_TW@calendar=buddhist;colalternate=shifted;colcasefirst=upper;collation=pinyin;"
            "currency=EUR;numbers=latn",
            "Chinese (Traditional, Taiwan, Buddhist Calendar, colalternate=shifted, "
            "colcasefirst=upper, Pinyin Sort Order, Euro, Western Digits)"},
       }) {
    EXPECT_EQ(shown(locale(user)->displayNameForKey_value(key, string(value))), name);
  }
  EXPECT_FALSE(locale("en")->displayNameForKey_value(NSLocaleIdentifier(), nullptr));
  const std::string longest = "en_US@" + std::string(144, 'x');
  EXPECT_GT(locale("en")
                ->displayNameForKey_value(NSLocaleIdentifier(), string(longest.c_str()))
                ->length(),
            6U);

  const auto shared = locale("it");
  onThreads(8, [&] {
    EXPECT_EQ(shown(shared->displayNameForKey_value(NSLocaleLanguageCode(), u"de"_ns)), "tedesco");
  });
}

}  // namespace
