#include "Foundation/NSPointerArray.h"

#include <sstream>

#include <Foundation/NSException.h>
#include <Foundation/NSString.h>

NSRef<NSPointerArray> NSPointerArray::pointerArrayWithOptions(NSPointerFunctionsOptions options) {
  if (options != NSPointerFunctionsOpaqueMemory) {
    NSException::raise(NSInvalidArgumentException,
                       "options " + std::to_string(options) +
                           " are not supported (in 'pointerArrayWithOptions:')");
  }
  return NSMake<NSPointerArray>();
}

void* NSPointerArray::pointerAtIndex(NSUInteger index) const {
  NSCheckIndex("pointerAtIndex:", index, count());
  return _pointers[index];
}

void NSPointerArray::addPointer(void* pointer) {
  _pointers.push_back(pointer);
  ++_mutations;
}

void NSPointerArray::insertPointer_atIndex(void* pointer, NSUInteger index) {
  if (index > count()) NSRaiseIndexOutOfBounds("insertPointer:atIndex:", index, count());
  _pointers.insert(_pointers.begin() + static_cast<std::ptrdiff_t>(index), pointer);
  ++_mutations;
}

void NSPointerArray::replacePointerAtIndex_withPointer(NSUInteger index, void* pointer) {
  NSCheckIndex("replacePointerAtIndex:withPointer:", index, count());
  _pointers[index] = pointer;
  ++_mutations;
}

void NSPointerArray::removePointerAtIndex(NSUInteger index) {
  NSCheckIndex("removePointerAtIndex:", index, count());
  _pointers.erase(_pointers.begin() + static_cast<std::ptrdiff_t>(index));
  ++_mutations;
}

bool NSPointerArray::isEqual(const NSRef<NSObject>& other) const {
  const auto* const array = other.cast<NSPointerArray>();
  return array != nullptr && _pointers == array->_pointers;
}

NSUInteger NSPointerArray::hash() const {
  return _pointers.empty() ? 0 : count() + 31 * std::hash<void*>{}(_pointers.front());
}

NSRef<NSString> NSPointerArray::description() const {
  std::ostringstream text;
  for (void* const pointer : _pointers) {
    text << (text.view().empty() ? "(" : ", ");
    if (pointer == nullptr) {
      text << "(null)";
    } else {
      text << pointer;
    }
  }
  return NSMake<NSString>(count() == 0 ? "()" : std::move(text).str() + ")");
}

NSRef<NSObject> NSPointerArray::copyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSPointerArray>(*this);
}
