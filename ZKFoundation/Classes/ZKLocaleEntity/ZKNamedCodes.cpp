#include "ZKFoundation/Classes/ZKLocaleEntity/ZKNamedCodes.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include <Foundation/NSData.h>

namespace {

struct Item {
  ZKNamedCode named;
  // Bytes that order by the name.
  NSRef<NSData> order;
};

bool looksTheSame(const Item& a, const Item& b) { return a.order->view() == b.order->view(); }

std::vector<Item> itemsOf(const NSRef<NSArray>& codes, const NSRef<NSString>& key,
                          const NSRef<NSLocale>& locale) {
  std::vector<Item> items;
  std::unordered_set<std::u16string_view> seen;
  items.reserve(codes->count());
  for (const auto& object : codes) {
    const auto code = object.as<NSString>();
    const auto name = code ? locale->displayNameForKey_value(key, code) : nullptr;
    if (!name) continue;
    auto own = code->copy();
    if (seen.contains(own->view())) continue;
    items.push_back({{own, name}, locale->collationKeyForString(name)});
    seen.insert(own->view());
  }
  return items;
}

std::vector<ZKNamedCode> sortedByName(const NSRef<NSArray>& codes, const NSRef<NSString>& key,
                                      const NSRef<NSLocale>& locale) {
  auto items = itemsOf(codes, key, locale ? locale : NSLocale::currentLocale());
  std::ranges::sort(items, [](const Item& a, const Item& b) {
    return looksTheSame(a, b) ? a.named.code->view() < b.named.code->view()
                              : a.order->view() < b.order->view();
  });
  std::vector<ZKNamedCode> result;
  result.reserve(items.size());
  for (std::size_t k = 0; k < items.size(); ++k) {
    const auto& [code, name] = items[k].named;
    const bool isAmbiguous = (k > 0 && looksTheSame(items[k - 1], items[k])) ||
                             (k + 1 < items.size() && looksTheSame(items[k], items[k + 1]));
    result.push_back(
        {code, isAmbiguous ? NSString::stringWithFormat(u"%@ (%@)"_ns, name, code) : name});
  }
  return result;
}

}  // namespace

std::vector<ZKNamedCode> ZKLanguagesSortedByName(const NSRef<NSArray>& identifiers,
                                                 const NSRef<NSLocale>& locale) {
  return sortedByName(identifiers ? identifiers : NSLocale::ISOLanguageCodes(),
                      NSLocaleIdentifier(), locale);
}

std::vector<ZKNamedCode> ZKRegionsSortedByName(const NSRef<NSArray>& codes,
                                               const NSRef<NSLocale>& locale) {
  return sortedByName(codes ? codes : NSLocale::ISOCountryCodes(), NSLocaleCountryCode(), locale);
}
