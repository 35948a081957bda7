#include "Foundation/NSClass.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>

#include <cxxabi.h>

#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

namespace {

// The direct bases of a class, in the order of their declaration, from the run-time type
// information of the Itanium C++ ABI (2.9.5): one kind for a single public base, one for all else.
template <class Predicate>
const std::type_info* findBase(const std::type_info& type, Predicate predicate) {
  if (const auto* const single = dynamic_cast<const abi::__si_class_type_info*>(&type)) {
    return predicate(*single->__base_type) ? single->__base_type : nullptr;
  }
  if (const auto* const several = dynamic_cast<const abi::__vmi_class_type_info*>(&type)) {
    const std::span bases(several->__base_info, several->__base_count);
    const auto found =
        std::ranges::find_if(bases, [&](const auto& base) { return predicate(*base.__base_type); });
    if (found != bases.end()) return found->__base_type;
  }
  return nullptr;
}

bool isOrDerivesFrom(const std::type_info& type, const std::type_info& wanted) {
  if (type == wanted) return true;
  const auto derives = [&](const std::type_info& base) { return isOrDerivesFrom(base, wanted); };
  return findBase(type, derives) != nullptr;
}

}  // namespace

NSRef<NSString> NSClass::name() const {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> text(
      abi::__cxa_demangle(_type->name(), nullptr, nullptr, &status), &std::free);
  return NSMake<NSString>(std::string_view(text ? text.get() : _type->name()));
}

std::optional<NSClass> NSClass::superclass() const {
  const std::type_info* const base = findBase(
      *_type, [](const std::type_info& type) { return isOrDerivesFrom(type, typeid(NSObject)); });
  return base == nullptr ? std::nullopt : std::optional(NSClass(*base));
}

bool NSClass::isSubclassOfClass(NSClass other) const {
  return isOrDerivesFrom(*_type, *other._type);
}

NSRef<NSString> NSStringFromClass(NSClass aClass) { return aClass.name(); }
