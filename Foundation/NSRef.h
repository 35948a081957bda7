#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <typeinfo>
#include <utility>

#include <Foundation/NSExport.h>
#include <Foundation/detail/LiveObjects.h>

class NSObject;

/// Raises `NSInvalidArgumentException` for a nil reference where an object of `type` is needed.
[[noreturn]] NS_EXPORT void NSRaiseNilDereference(const std::type_info& type);

/// The strong reference to an object; null is nil.
///
/// Dereferencing nil raises `NSInvalidArgumentException`. `==` asks `isEqual`, whatever the types
/// of the references, and nil equals nil alone; `is` asks for the same object. `<=>` orders objects
/// of a class with `compare`. A reference belongs to one thread at a time, its object to any
/// number.
template <class T>
class NSRef {
 public:
  using element_type = T;

  constexpr NSRef() noexcept = default;
  constexpr NSRef(std::nullptr_t) noexcept {}
  NSRef(const NSRef& other) noexcept : _object(other._object) { retain(); }
  NSRef(NSRef&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}

  template <class U>
  requires std::convertible_to<U*, T*> NSRef(const NSRef<U>& other)
  noexcept : _object(other.get()) { retain(); }
  template <class U>
  requires std::convertible_to<U*, T*> NSRef(NSRef<U>&& other)
  noexcept : _object(other.leak()) {}

  /// Refers to another object. What an element is read into is no place to assign to: `array[0] =
  /// x` does not compile.
  NSRef& operator=(NSRef other) & noexcept {
    std::swap(_object, other._object);
    return *this;
  }

  ~NSRef() {
    if (_object != nullptr) _object->release();
  }

  /// Takes over a count that the caller owns.
  [[nodiscard]] static NSRef adopt(T* object) noexcept {
    NSRef result;
    result._object = object;
    return result;
  }
  /// Counts a reference of its own.
  [[nodiscard]] static NSRef share(T* object) noexcept {
    NSRef result = adopt(object);
    result.retain();
    return result;
  }
  /// Hands the count over to the caller and becomes nil; the opposite of `adopt`.
  [[nodiscard]] T* leak() noexcept { return std::exchange(_object, nullptr); }

  [[nodiscard]] T* get() const noexcept { return _object; }
  explicit operator bool() const noexcept { return _object != nullptr; }
  T& operator*() const { return *checked(); }
  T* operator->() const { return checked(); }

  /// Asks the object at an index: `array[0]` is `(*array)[0]`.
  template <class Object = T>
  requires requires(Object& object) { object[0]; }
  [[nodiscard]] decltype(auto) operator[](std::size_t index) const { return (*checked())[index]; }

  /// Gives the object as a `U` without counting a reference, or null when it is none.
  template <class U>
  [[nodiscard]] U* cast() const noexcept {
    // Mostly it is exactly a U, which needs no search through its bases.
    if constexpr (requires { static_cast<U*>(_object); }) {
      if (_object != nullptr && typeid(*_object) == typeid(U)) return static_cast<U*>(_object);
    }
    return dynamic_cast<U*>(_object);
  }
  /// Gives a reference to the object as a `U`, or nil when it is none.
  template <class U>
  [[nodiscard]] NSRef<U> as() const& noexcept {
    return NSRef<U>::share(cast<U>());
  }
  template <class U>
  [[nodiscard]] NSRef<U> as() && noexcept {
    U* const object = cast<U>();
    if (object == nullptr) return nullptr;
    (void)leak();
    return NSRef<U>::adopt(object);
  }

  /// Whether both refer to the same object, or both are nil.
  template <class U>
  [[nodiscard]] bool is(const NSRef<U>& other) const noexcept {
    if constexpr (requires { _object == other.get(); }) {
      return _object == other.get();
    } else {
      return static_cast<const NSObject*>(_object) == static_cast<const NSObject*>(other.get());
    }
  }

  /// Whether both are nil, or the first object says by `isEqual` that it equals the second.
  template <class U>
  friend bool operator==(const NSRef& a, const NSRef<U>& b) {
    return a.is(b) || (a && b && a.get()->isEqual(b));
  }
  friend bool operator==(const NSRef& a, std::nullptr_t) noexcept { return a.get() == nullptr; }

  /// Orders the objects as `compare` of their class does, nil before all of them. Objects that
  /// compare as the same need not be equal: "é" and "e" followed by U+0301 are not.
  template <class Object = T>
  requires requires(const NSRef<Object>& object) { object->compare(object); }
  friend std::weak_ordering operator<=>(const NSRef& a, const NSRef& b) {
    if (!a || !b) return static_cast<bool>(a) <=> static_cast<bool>(b);
    return a.get()->compare(b) <=> 0;
  }

 private:
  void retain() const noexcept {
    if (_object != nullptr) _object->retain();
  }
  [[nodiscard]] T* checked() const {
    if (_object == nullptr) [[unlikely]] {
      NSRaiseNilDereference(typeid(T));
    }
    return _object;
  }

  T* _object = nullptr;
};

/// Walks over the collection of a reference, also one that a call has just returned: `for (const
/// auto& object : set->allObjects())`. Nil raises `NSInvalidArgumentException`.
template <class T>
[[nodiscard]] auto begin(const NSRef<T>& collection) -> decltype(collection->begin()) {
  return collection->begin();
}
template <class T>
[[nodiscard]] auto end(const NSRef<T>& collection) -> decltype(collection->end()) {
  return collection->end();
}

/// Makes an object with the arguments of one of its constructors, or of one of its `makeCompact`,
/// by which a class puts an object and its contents into one block of memory.
template <class T, class... Arguments>
[[nodiscard]] NSRef<T> NSMake(Arguments&&... arguments) {
  static_assert(std::derived_from<T, NSObject>,
                "NSMake makes objects: classes that derive publicly from NSObject");
  if constexpr (requires {
                  {
                    T::makeCompact(std::forward<Arguments>(arguments)...)
                    } -> std::same_as<NSRef<T>>;
                }) {
    auto object = T::makeCompact(std::forward<Arguments>(arguments)...);
    NSLiveObjects::note(*object);
    return object;
  } else {
    auto object = NSRef<T>::adopt(new T(std::forward<Arguments>(arguments)...));
    NSLiveObjects::note(*object);
    return object;
  }
}

/// Makes a collection from a list: `NSMake<NSArray>({a, b})`, `NSMake<NSDictionary>({{k, v}})`.
template <class T>
[[nodiscard]] NSRef<T> NSMake(typename T::Elements elements) {
  auto object = NSRef<T>::adopt(new T(elements));
  NSLiveObjects::note(*object);
  return object;
}

/// Prints the object's description as UTF-8, "(null)" for nil.
NS_EXPORT std::ostream& operator<<(std::ostream& out, const NSRef<NSObject>& object);

/// Asks the object for its `hash`, as `==` asks `isEqual`; nil has 0.
template <class T>
struct std::hash<NSRef<T>> {
  std::size_t operator()(const NSRef<T>& ref) const { return ref ? ref.get()->hash() : 0; }
};
