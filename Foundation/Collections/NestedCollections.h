#pragma once

#include <cstddef>

#include <Foundation/NSBlock.h>
#include <Foundation/detail/ObjectMap.h>

// Hashes and comparisons of collections that may be in each other, and shared: a walk over all of
// them would visit what each of n levels holds twice 2^n times.

/// How many objects a hash asks for theirs at most, in collections in each other altogether.
inline constexpr std::size_t NSMostHashedObjects = 64;

// The elements are to be a copy of their collection's, which an element may change.

/// The hash of elements in their order: of some of them, spread evenly.
NSUInteger NSHashSequence(const NSObjectVector& elements, std::size_t most = NSMostHashedObjects);
/// The hash of elements in any order: of all of them, or of their number alone.
NSUInteger NSHashSet(const NSObjectVector& elements, std::size_t most = NSMostHashedObjects);
NSUInteger NSHashEntries(const NSEntryList& entries, std::size_t most = NSMostHashedObjects);

/// The answer of `isEqualTo`, which compares the contents of two collections. Within one outermost
/// call each pair of collections that others may hold as well is compared once.
bool NSCompareCollections(const NSObject& a, const NSRef<NSObject>& b,
                          NSBlockRef<bool(const NSRef<NSObject>&)> isEqualTo);
