#pragma once

#include <new>
#include <utility>

#include <Foundation/NSNull.h>
#include <Foundation/detail/ObjectVector.h>
#include <ZKFoundation/Categories/NSArray+ZKFoundationExtensions.h>

/// Makes a collection of what the transformator makes of the elements. Nil without a transformator,
/// and when there is no memory for as many references. The elements are a copy of their
/// collection's, which the transformator may change.
template <class Collection>
[[nodiscard]] NSRef<Collection> ZKMappedCollection(NSObjectVector&& elements,
                                                   ZKTransformator transformator) {
  if (!transformator) return nullptr;
  NSObjectVector results;
  try {
    results.reserve(elements.size());
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  const auto objects = elements.view();
  for (std::size_t k = 0; k < objects.size(); ++k) {
    // The objects lie anywhere: several are on their way while one is transformed.
    constexpr std::size_t ahead = 8;
    if (k + ahead < objects.size()) __builtin_prefetch(objects[k + ahead].get());
    auto result = transformator(objects[k]);
    results.append(result ? std::move(result) : NSNull::null());
  }
  return NSMake<Collection>(std::move(results));
}
