#pragma once

#include "tests/Support.h"

#include <hwy/targets.h>

/// Runs the action with the vector code of every instruction set that this machine has.
template <class Action>
void forEachVectorTarget(Action action) {
  const auto targets = hwy::SupportedTargets();
  for (auto rest = targets; rest != 0; rest &= rest - 1) {
    const auto target = rest & -rest;
    SCOPED_TRACE(hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
    action();
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().Update(targets);
}
