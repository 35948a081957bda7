#pragma once

#include <concepts>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <vector>

#include <Foundation/NSExport.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <Foundation/NSValue.h>

/// Makes an object of a value: gives references as they are, numbers and enumerators as `NSNumber`,
/// ranges, points, sizes and rectangles as `NSValue`, standard strings as `NSString`.
template <class T>
[[nodiscard]] NSRef<NSObject> NSBox(const T& value) {
  if constexpr (std::convertible_to<T, NSRef<NSObject>>) {
    return value;
  } else if constexpr (std::is_enum_v<T>) {
    return NSMake<NSNumber>(static_cast<std::underlying_type_t<T>>(value));
  } else if constexpr (std::is_arithmetic_v<T>) {
    return NSMake<NSNumber>(value);
  } else if constexpr (std::constructible_from<NSValue, T>) {
    return NSMake<NSValue>(value);
  } else {
    return NSMake<NSString>(value);
  }
}

/// A name under which a class publishes a value: of a data member, a const member function without
/// arguments, or a function of the object. The name must outlive the table, as a literal does.
class NSProperty {
 public:
  template <class Member, class Class>
  NSProperty(std::u16string_view name, Member Class::*member)
      : _name(name), _read([member](const NSObject& object) {
          return NSBox(std::invoke(member, static_cast<const Class&>(object)));
        }) {}

  /// Reads through a function of the object.
  template <class Class, class Value>
  NSProperty(std::u16string_view name, Value (*function)(const Class&))
      : _name(name), _read([function](const NSObject& object) {
          return NSBox(function(static_cast<const Class&>(object)));
        }) {}

  [[nodiscard]] std::u16string_view name() const noexcept { return _name; }
  [[nodiscard]] NSRef<NSObject> read(const NSObject& object) const { return _read(object); }

 private:
  std::u16string_view _name;
  std::function<NSRef<NSObject>(const NSObject&)> _read;
};

/// The properties of a class, for the process's lifetime: a table is never destroyed. A class
/// publishes its own by overriding one function:
///
///     const NSPropertyTable& propertyTable() const override {
///       static const NSPropertyTable table(
///           {{u"heading", &Chapter::heading}, {u"pages", &Chapter::pages}},
///           NSObject::propertyTable());
///       return table;
///     }
class NS_EXPORT NSPropertyTable {
 public:
  explicit NSPropertyTable(std::initializer_list<NSProperty> properties)
      : _properties(properties) {}
  /// Looks in `inherited`, the base class's table, which must live as long, for what is not listed.
  NSPropertyTable(std::initializer_list<NSProperty> properties, const NSPropertyTable& inherited)
      : _properties(properties), _inherited(&inherited) {}

  /// Gives the property of that name, or null.
  [[nodiscard]] const NSProperty* find(std::u16string_view name) const noexcept;

 private:
  NSNeverDestroyed<std::vector<NSProperty>> _properties;
  const NSPropertyTable* _inherited = nullptr;
};
