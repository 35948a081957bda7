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

  /// Holds where the block answers true; a block may take the object alone. Without a block it
  /// raises `NSInvalidArgumentException`.
  template <class F>
  static NSRef<NSPredicate> predicateWithBlock(F block) {
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

  /// Whether it holds for the object, which may be nil.
  bool evaluateWithObject(const NSRef<NSObject>& object) const { return _block(object, nullptr); }
  /// The same with values for the block's variables.
  bool evaluateWithObject_substitutionVariables(const NSRef<NSObject>& object,
                                                const NSRef<NSDictionary>& bindings) const {
    return _block(object, bindings);
  }

 private:
  Block _block;
};
