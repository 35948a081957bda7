#pragma once

#include "tests/Support.h"

#include <Foundation/Text/VectorTargets.h>

/// Runs the action with the vector code of every instruction set that this machine has.
template <class Action>
void forEachVectorTarget(Action action) {
  const auto targets = NSVectorTargets();
  for (auto rest = targets; rest != 0; rest &= rest - 1) {
    const auto target = rest & -rest;
    SCOPED_TRACE(hwy::TargetName(target));
    NSChosenVectorTarget().Update(target);
    action();
  }
  NSChosenVectorTarget().Update(targets);
}
