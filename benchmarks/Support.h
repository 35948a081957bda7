#pragma once

#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

// Rows are named Subject/Case/Who; `scripts/bench` compares the rows that differ in Who alone.

/// Registers a row that runs `work` again and again. The first answer is checked before any time is
/// taken: a fast wrong answer is no result.
template <class Work, class Check>
void addRow(const std::string& name, Work work, Check isRight) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    if (!isRight(work())) {
      state.SkipWithError("wrong answer");
      return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(work());
  });
}
