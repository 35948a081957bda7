#include "Foundation/NSLocale.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <Foundation/Locales/Collation.h>
#include <Foundation/Locales/DecimalSymbols.h>
#include <Foundation/Locales/DisplayNames.h>
#include <Foundation/Locales/LocaleComponents.h>
#include <Foundation/NSArray.h>
#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

namespace {

constexpr std::string_view posixIdentifier = "en_US_POSIX";

std::string environmentValue(std::initializer_list<const char*> names) {
  for (const char* const name : names) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): only read here.
    if (value != nullptr && *value != '\0') return value;
  }
  return {};
}

// The identifier for a name of the C library's: "sr_RS.UTF-8@latin" is "sr_Latn_RS". Empty for "C".
std::string identifierOfPosixName(std::string_view name) {
  const std::string_view modifier = name.substr(std::min(name.find('@'), name.size()));
  std::string base(name.substr(0, name.find_first_of(".@")));
  if (base == "C" || base == "POSIX") base.clear();
  if (base.empty()) return base;
  const std::string_view script = modifier == "@latin"        ? "_Latn"
                                  : modifier == "@cyrillic"   ? "_Cyrl"
                                  : modifier == "@devanagari" ? "_Deva"
                                                              : "";
  base.insert(std::min(base.find('_'), base.size()), script);
  return base;
}

std::string environmentIdentifier() {
  const std::string name = environmentValue({"LC_ALL", "LC_MESSAGES", "LANG"});
  const std::string identifier = identifierOfPosixName(name);
  return identifier.empty() ? std::string(posixIdentifier) : identifier;
}

NSRef<NSLocale> localeOfEnvironment() {
  const auto locale =
      NSLocale::localeWithLocaleIdentifier(NSMake<NSString>(environmentIdentifier()));
  return locale ? locale : NSLocale::localeWithLocaleIdentifier(NSMake<NSString>(posixIdentifier));
}

NSRef<NSArray> languagesOfEnvironment() {
  const std::string main = environmentIdentifier();
  // Without the POSIX variant, which is no language of people.
  if (main == posixIdentifier) return NSMake<NSArray>({u"en"_ns});
  std::vector<NSRef<NSObject>> languages;
  const std::string list = environmentValue({"LANGUAGE"}) + ":" + main;
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t end = std::min(list.find(':', start), list.size());
    const std::string_view name = std::string_view(list).substr(start, end - start);
    const std::string tag = NSLanguageTag(identifierOfPosixName(name));
    if (!tag.empty()) languages.emplace_back(NSMake<NSString>(tag));
    start = end + 1;
  }
  if (languages.empty()) languages.emplace_back(u"en"_ns);
  return NSMake<NSArray>(std::move(languages));
}

// A setting of the process that comes from the environment until the program sets it.
template <class Object>
class Setting {
 public:
  explicit Setting(NSRef<Object> (*read)()) : _read(read) {}

  NSRef<Object> get() {
    const std::lock_guard lock(_mutex);
    if (!_value) _value = _read();
    return _value;
  }
  void set(NSRef<Object> value) {
    const std::lock_guard lock(_mutex);
    std::swap(_value, value);
  }

 private:
  std::mutex _mutex;
  NSRef<Object> (*_read)();
  NSRef<Object> _value;
};

Setting<NSLocale>& currentLocaleSetting() {
  static NSNeverDestroyed<Setting<NSLocale>> setting(&localeOfEnvironment);
  return *setting;
}

Setting<NSArray>& languagesSetting() {
  static NSNeverDestroyed<Setting<NSArray>> setting(&languagesOfEnvironment);
  return *setting;
}

std::atomic<std::uint64_t> generationOfLanguages = 0;

}  // namespace

NSLocale::NSLocale(NSPasskey<NSLocale> /*key*/, const NSRef<NSString>& identifier)
    : _identifier(identifier->copy()) {}

NSLocale::~NSLocale() = default;

NSRef<NSLocale> NSLocale::localeWithLocaleIdentifier(const NSRef<NSString>& identifier) {
  if (!NSIsLocaleIdentifier(NSViewOf(identifier))) return nullptr;
  return NSMake<NSLocale>(NSPasskey<NSLocale>(), identifier);
}

NSRef<NSLocale> NSLocale::currentLocale() { return currentLocaleSetting().get(); }

void NSLocale::setCurrentLocale(const NSRef<NSLocale>& locale) {
  currentLocaleSetting().set(locale);
}

NSRef<NSArray> NSLocale::preferredLanguages() { return languagesSetting().get(); }

void NSLocale::setPreferredLanguages(const NSRef<NSArray>& languages) {
  languagesSetting().set(languages && languages->count() != 0 ? languages->copy() : nullptr);
  // After the change: who sees the new generation sees the new languages.
  generationOfLanguages.fetch_add(1, std::memory_order_release);
}

std::uint64_t NSLocale::languagesGeneration() noexcept {
  return generationOfLanguages.load(std::memory_order_acquire);
}

NSRef<NSString> NSLocale::localeIdentifier() const noexcept { return _identifier; }

const NSDecimalSymbols& NSLocale::decimalSymbols() const {
  std::call_once(_symbolsOnce, [this] {
    _symbols = std::make_unique<const NSDecimalSymbols>(_identifier->utf8());
  });
  return *_symbols;
}

bool NSLocale::isEqual(const NSRef<NSObject>& other) const {
  const auto* const locale = other.cast<NSLocale>();
  return locale != nullptr && _identifier->isEqualToString(locale->_identifier);
}

NSUInteger NSLocale::hash() const { return _identifier->hash(); }

NSRef<NSString> NSLocale::description() const {
  return u"NSLocale "_ns->stringByAppendingString(_identifier);
}

const NSPropertyTable& NSLocale::propertyTable() const {
  static const NSPropertyTable table({{u"localeIdentifier", &NSLocale::localeIdentifier}},
                                     NSObject::propertyTable());
  return table;
}
