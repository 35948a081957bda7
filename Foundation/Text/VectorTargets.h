#pragma once

#include <cstdint>

#include <hwy/targets.h>

#include <Foundation/NSExport.h>

/// Gives the instruction sets that vector code can use on this machine, as bits of Highway's.
[[nodiscard]] NS_EXPORT std::int64_t NSVectorTargets() noexcept;

/// Gives the one that it uses, for tests to change.
[[nodiscard]] NS_EXPORT hwy::ChosenTarget& NSChosenVectorTarget() noexcept;
