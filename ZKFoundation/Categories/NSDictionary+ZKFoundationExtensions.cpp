#include "ZKFoundation/Categories/NSDictionary+ZKFoundationExtensions.h"

#include <Foundation/NSException.h>

namespace ZKFoundationExtensions {

void addEntriesFromDictionaryIfAbsent(const NSRef<NSMutableDictionary>& dictionary,
                                      const NSRef<NSDictionary>& other) {
  NSCheckArgument("addEntriesFromDictionaryIfAbsent:", "dictionary", dictionary);
  if (!other) return;
  for (const auto& [key, object] : *other) {
    if (!dictionary->objectForKey(key)) dictionary->setObject_forKey(object, key);
  }
}

}  // namespace ZKFoundationExtensions
