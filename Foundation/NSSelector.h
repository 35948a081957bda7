#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// The name of an operation, and how to perform it on a receiver. A small value; two are equal when
/// their names are. `NSMakeSelector` makes them.
class NS_EXPORT NSSelector {
 public:
  using Operation = void (*)(const NSRef<NSObject>& receiver, const NSRef<NSObject>& argument);

  /// The name and the operation to which selectors refer; must live as long as the program.
  struct Definition {
    std::string_view name;
    Operation perform;
    NSUInteger hash = hashOf(name);
  };

  constexpr NSSelector(const Definition& definition) noexcept : _definition(&definition) {}

  [[nodiscard]] constexpr std::string_view name() const noexcept { return _definition->name; }
  /// Hashes the name.
  [[nodiscard]] constexpr NSUInteger hash() const noexcept { return _definition->hash; }
  /// Performs the operation, and throws what it throws.
  void perform(const NSRef<NSObject>& receiver, const NSRef<NSObject>& argument) const {
    _definition->perform(receiver, argument);
  }

  friend constexpr bool operator==(NSSelector a, NSSelector b) noexcept {
    return a._definition == b._definition || a.name() == b.name();
  }

 private:
  // FNV-1a, which needs no time when the program runs.
  static constexpr NSUInteger hashOf(std::string_view name) noexcept {
    NSUInteger hash = 0xcbf29ce484222325;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
  }

  const Definition* _definition;
};

/// Gives the selector's name.
[[nodiscard]] NS_EXPORT NSRef<NSString> NSStringFromSelector(NSSelector aSelector);

/// Raises `NSInvalidArgumentException`: "Chapter does not respond to 'save:'".
[[noreturn]] NS_EXPORT void NSRaiseUnknownSelector(const char* selector,
                                                   const NSRef<NSObject>& receiver);
/// Raises `NSInvalidArgumentException`: "'save:' does not take a Chapter".
[[noreturn]] NS_EXPORT void NSRaiseWrongArgument(const char* selector,
                                                 const NSRef<NSObject>& argument);

/// The name of a selector as a template argument.
template <std::size_t size>
struct NSSelectorName {
  // NOLINTNEXTLINE(modernize-avoid-c-arrays): a literal is one.
  constexpr NSSelectorName(const char (&name)[size]) { std::copy_n(name, size, text.begin()); }
  std::array<char, size> text{};
};

/// Performs an operation with objects whose classes are found at run time.
template <NSSelectorName name, auto operation>
struct NSSelectorTrampoline {
  static void perform(const NSRef<NSObject>& receiver, const NSRef<NSObject>& argument) {
    call(operation, receiver, argument);
  }
  static constexpr NSSelector::Definition definition{name.text.data(), perform};

 private:
  using Object = const NSRef<NSObject>&;

  template <class T>
  [[nodiscard]] static T& receiverAs(Object receiver) {
    T* const target = receiver.template cast<T>();
    if (target == nullptr) NSRaiseUnknownSelector(name.text.data(), receiver);
    return *target;
  }
  template <class T>
  [[nodiscard]] static NSRef<T> argumentAs(Object argument) {
    auto typed = argument.template as<T>();
    if (argument && !typed) NSRaiseWrongArgument(name.text.data(), argument);
    return typed;
  }

  template <class T>
  static void call(void (T::*method)(), Object receiver, Object /*argument*/) {
    (receiverAs<T>(receiver).*method)();
  }
  template <class T>
  static void call(void (T::*method)() const, Object receiver, Object /*argument*/) {
    (receiverAs<const T>(receiver).*method)();
  }
  template <class T, class A>
  static void call(void (T::*method)(const NSRef<A>&), Object receiver, Object argument) {
    (receiverAs<T>(receiver).*method)(argumentAs<A>(argument));
  }
  template <class T, class A>
  static void call(void (T::*method)(const NSRef<A>&) const, Object receiver, Object argument) {
    (receiverAs<const T>(receiver).*method)(argumentAs<A>(argument));
  }
  template <class A>
  static void call(void (*function)(const NSRef<A>&), Object /*receiver*/, Object argument) {
    function(argumentAs<A>(argument));
  }
  template <class T, class A>
  static void call(void (*function)(const NSRef<T>&, const NSRef<A>&), Object receiver,
                   Object argument) {
    function(NSRef<T>::share(&receiverAs<T>(receiver)), argumentAs<A>(argument));
  }
};

/// Makes the selector of a method without arguments or with one object, or of a function that takes
/// the receiver and one object, or the object alone; they return nothing:
///
///     editor->performSelector_withObject_afterDelay(NSMakeSelector<"save:", &Editor::save>(),
///                                                   folder, 0.5);
///
/// A receiver or an argument of another class raises `NSInvalidArgumentException` when the selector
/// is performed; nil is an argument of any class.
template <NSSelectorName name, auto operation>
[[nodiscard]] constexpr NSSelector NSMakeSelector() noexcept {
  return NSSelectorTrampoline<name, operation>::definition;
}
