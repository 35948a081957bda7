#pragma once

#include <functional>
#include <type_traits>
#include <utility>

#include <Foundation/NSBlock.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSExport.h>
#include <Foundation/NSObject.h>

/// A condition on objects. Immutable; its block may be called from any thread that asks it.
class NS_EXPORT NSPredicate : public NSObject {
 public:
  using Block = std::function<bool(const NSRef<NSObject>& evaluatedObject,
                                   const NSRef<NSDictionary>& bindings)>;

  /// Makes a predicate that holds where the block answers true; a block may take the object alone.
  /// A nil block raises `NSInvalidArgumentException`.
  template <class F>
  [[nodiscard]] static NSRef<NSPredicate> predicateWithBlock(F block) {
    if constexpr (std::is_invocable_r_v<bool, F&, const NSRef<NSObject>&>) {
      if (NSIsNilCallable(block)) return NSMake<NSPredicate>(Block());
      return NSMake<NSPredicate>([block = std::move(block)](const NSRef<NSObject>& object,
                                                            const NSRef<NSDictionary>&) mutable {
        return std::invoke(block, object);
      });
    } else {
      return NSMake<NSPredicate>(Block(std::move(block)));
    }
  }
  explicit NSPredicate(Block block);
  ~NSPredicate() override;

  /// Whether the predicate holds for the object, which may be nil.
  [[nodiscard]] bool evaluateWithObject(const NSRef<NSObject>& object) const {
    return _block(object, nullptr);
  }
  /// Whether the predicate holds for the object with these values for the block's variables.
  [[nodiscard]] bool evaluateWithObject_substitutionVariables(
      const NSRef<NSObject>& object, const NSRef<NSDictionary>& bindings) const {
    return _block(object, bindings);
  }

 private:
  Block _block;
};
