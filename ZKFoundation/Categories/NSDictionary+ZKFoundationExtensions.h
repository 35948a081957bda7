#pragma once

#include <Foundation/NSDictionary.h>
#include <ZKFoundation/ZKExport.h>

namespace ZKFoundationExtensions {

/// Sets what the other dictionary has for the keys, whether or not there is an object for a key
/// already. Ignores keys that it has no object for; nil is an empty dictionary. The keys
/// are a collection of any kind, taken in its order; nil has none.
template <class Keys>
void addEntriesFromDictionary_withKeys(const NSRef<NSMutableDictionary>& dictionary,
                                       const NSRef<NSDictionary>& other, const NSRef<Keys>& keys) {
  if (!other || !keys) return;
  for (const auto& key : *keys) {
    if (const auto object = other->objectForKey(key)) dictionary->setObject_forKey(object, key);
  }
}

/// Sets what the other dictionary has for keys that have no object yet; nil is an empty dictionary.
ZK_EXPORT void addEntriesFromDictionaryIfAbsent(const NSRef<NSMutableDictionary>& dictionary,
                                                const NSRef<NSDictionary>& other);

}  // namespace ZKFoundationExtensions
