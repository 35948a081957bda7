#include "Foundation/detail/ObjectSet.h"

#include <typeinfo>
#include <utility>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

void NSObjectSet::requireUnchanged(NSUInteger mutations) const {
  if (_mutations.value() != mutations) {
    NSException::raise(NSGenericException, "a collection was mutated while being searched");
  }
}

std::size_t NSObjectSet::find(const NSRef<NSObject>& object, NSUInteger hash) const {
  return _index.find(hash, [&, before = _mutations.value()](std::size_t position) {
    const NSObject* const element = _elements[position].get();
    if (element == object.get()) return true;
    // Texts, which most are, ask nobody else; others are held, as they may remove themselves.
    if (typeid(*element) == typeid(NSString)) return element->isEqual(object);
    const auto held = element->self();
    const bool isSame = held->isEqual(object);
    requireUnchanged(before);
    return isSame;
  });
}

NSUInteger NSObjectSet::hashOf(const NSRef<NSObject>& object) const {
  const NSUInteger before = _mutations.value();
  const NSUInteger hash = object->hash();
  requireUnchanged(before);
  return hash;
}

void NSObjectSet::reserve(std::size_t count) {
  _elements.reserve(count);
  _index.reserve(count);
}

void NSObjectSet::insert(std::size_t position, const NSRef<NSObject>& object) {
  const NSUInteger hash = hashOf(object);
  if (find(object, hash) == notFound) insertNew(position, object, hash);
}

void NSObjectSet::insertNew(std::size_t position, NSRef<NSObject> object, NSUInteger hash) {
  _index.reserve(size() + 1);
  if (position == size()) {
    _elements.append(std::move(object));
  } else {
    _elements.insert(position, std::move(object));
  }
  _index.insert(position, hash);
  ++_mutations;
}

NSRef<NSObject> NSObjectSet::remove(std::size_t position) {
  auto removed = _elements.remove(position);
  _index.remove(position);
  ++_mutations;
  return removed;
}

NSRef<NSObject> NSObjectSet::replaceByLast(std::size_t position) {
  auto removed = _elements.remove(size() - 1);
  if (position != size()) removed = _elements.replace(position, std::move(removed));
  _index.replaceByLast(position);
  ++_mutations;
  return removed;
}

NSObjectVector NSObjectSet::removeAll() noexcept {
  if (size() != 0) ++_mutations;
  _index = {};
  return std::exchange(_elements, {});
}
