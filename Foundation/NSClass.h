#pragma once

#include <functional>
#include <optional>
#include <typeinfo>

#include <Foundation/NSExport.h>
#include <Foundation/NSRef.h>

class NSString;

/// The class of an object, as C++ knows it at run time. A small value: copy it freely.
class NS_EXPORT NSClass {
 public:
  explicit NSClass(const std::type_info& type) noexcept : _type(&type) {}

  template <class T>
  [[nodiscard]] static NSClass of() noexcept {
    return NSClass(typeid(T));
  }

  /// Gives the qualified C++ name, such as "Chapter" or "editor::Chapter".
  [[nodiscard]] NSRef<NSString> name() const;

  /// Gives the first base that derives from `NSObject`; none for `NSObject` itself.
  [[nodiscard]] std::optional<NSClass> superclass() const;

  /// Whether this class is the other one or derives from it, at any depth and by any base.
  [[nodiscard]] bool isSubclassOfClass(NSClass other) const;

  [[nodiscard]] const std::type_info& typeInfo() const noexcept { return *_type; }

  friend bool operator==(NSClass a, NSClass b) noexcept { return *a._type == *b._type; }

 private:
  const std::type_info* _type;
};

/// Gives the class's `name`.
[[nodiscard]] NS_EXPORT NSRef<NSString> NSStringFromClass(NSClass aClass);

template <>
struct std::hash<NSClass> {
  std::size_t operator()(NSClass aClass) const noexcept { return aClass.typeInfo().hash_code(); }
};
