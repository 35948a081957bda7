#include "fuzz/Support.h"

#include <algorithm>

#include <ZKFoundation/ZKFoundation.h>

using namespace ZKFoundationExtensions;

// The first units are the set, up to the first NUL; the rest is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string units = unitsOf(data, size);
  const std::size_t end = std::min(units.find(u'\0'), units.size());
  const std::u16string_view text =
      std::u16string_view(units).substr(std::min(end + 1, units.size()));
  const auto set = NSMake<NSCharacterSet>(NSMake<NSString>(units.substr(0, end)));
  const auto string = NSMake<NSString>(text);

  const auto removed = string->mutableCopy();
  ZKRemoveCharactersInCharacterSet(removed, set);
  NSUInteger members = 0;
  for (const char16_t unit : text) members += set->characterIsMember(unit) ? 1 : 0;
  require(removed->length() == text.size() - members);
  for (const char16_t unit : removed->view()) require(!set->characterIsMember(unit));

  const auto replaced = string->mutableCopy();
  ZKReplaceCharactersInCharacterSet(replaced, set, u"<>"_ns);
  require(replaced->length() == text.size() + members);

  // Components hold all that is left, in its order.
  const auto components = componentsSeparatedByCharactersInSet_trimWhitespace(string, set, false);
  require(components->componentsJoinedByString(nullptr)->isEqualToString(removed));
  for (const auto& component : *components) require(component.as<NSString>()->length() != 0);
  require(componentsSeparatedByCharactersInSet_trimWhitespace(string, set, true)->count() ==
          components->count());

  // Of characters, the search for them tells which.
  std::u16string kept;
  NSUInteger at = 0;
  for (NSRange found;
       (found = string->rangeOfCharacterFromSet_options_range(set, 0, {at, text.size() - at}))
           .length != 0;
       at = NSMaxRange(found)) {
    kept += text.substr(at, found.location - at);
  }
  kept += text.substr(at);
  require(stringByRemovingCharactersInSet(string, set) == kept);
  return 0;
}
