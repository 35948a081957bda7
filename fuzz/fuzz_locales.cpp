#include "fuzz/Support.h"

#include <filesystem>
#include <fstream>

#include <unistd.h>

#include <ZKFoundation/ZKFoundation.h>

namespace fs = std::filesystem;
using namespace ZKFoundationExtensions;

namespace {

// Any text as a locale identifier.
void readIdentifier(const NSRef<NSString>& text) {
  static const auto user = NSLocale::localeWithLocaleIdentifier(u"en"_ns);
  const auto locale = NSLocale::localeWithLocaleIdentifier(text);
  const auto language = NSLocale::canonicalLanguageIdentifierFromString(text);
  const auto name = user->displayNameForKey_value(NSLocaleIdentifier(), text);
  require((locale != nullptr) == (language != nullptr));
  require((locale != nullptr) == (name != nullptr));
  if (locale) {
    require(NSLocale::canonicalLanguageIdentifierFromString(language)->isEqual(language));
    require(locale->displayNameForKey_value(NSLocaleLanguageCode(), u"de"_ns) != nullptr);
    require(locale->collationKeyForString(u"a"_ns)->length() != 0);
  }
  const auto quoted = stringByQuotingAtLevel_forLocaleIdentifier(u"a"_ns, 0, text);
  require(quoted->length() == 3 || quoted->length() == 5);
  const auto components = NSLocale::componentsFromLocaleIdentifier(text);
  const auto country = components->objectForKey(NSLocaleCountryCode()).as<NSString>();
  require((country == u"CH") <= (openingDoubleQuotationForLocaleIdentifier(text) == u'«'));
}

// Any text as the list of the user's directories.
void readList(std::string_view bytes) {
  struct Folder {
    Folder() {
      fs::create_directory(path);
      setenv("XDG_CONFIG_HOME", path.c_str(), 1);
    }
    ~Folder() { fs::remove_all(path); }
    fs::path path = fs::temp_directory_path() / ("fuzz locales " + std::to_string(getpid()));
  };
  static const Folder folder;
  std::ofstream(folder.path / "user-dirs.dirs", std::ios::binary) << bytes;
  for (const auto directory : {NSDocumentDirectory, NSMusicDirectory}) {
    const auto url =
        NSFileManager::defaultManager()->URLForDirectory_inDomain_appropriateForURL_create_error(
            directory, NSUserDomainMask, nullptr, false, nullptr);
    require(url->fileSystemPath().is_absolute());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = bytesOf(data, size);
  readIdentifier(NSMake<NSString>(bytes));
  // By the disk, so only now and then.
  if (size % 8 == 0) readList(bytes);
  return 0;
}
