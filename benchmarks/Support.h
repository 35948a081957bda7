#pragma once

#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

// Rows are named Subject/Case/Who; `scripts/bench` compares the rows that differ in Who alone.

/// What is told of a row beside its time.
struct RowDetails {
  /// How many calls one run of the work makes; the time is that of one.
  benchmark::IterationCount calls = 1;
  /// The largest error of its answers, where it has any.
  double error = -1;
  /// How large what it makes is, where that matters.
  double bytes = -1;
  /// Whether other threads do the work; the time is then what passes, not what the caller computes.
  bool isElsewhere = false;
};

/// Registers a row that runs `work` again and again. The first answer is checked before any time is
/// taken: a fast wrong answer is no result.
template <class Work, class Check>
void addRow(const std::string& name, Work work, Check isRight, RowDetails details = {}) {
  auto* const row = benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    if (!isRight(work())) {
      state.SkipWithError("wrong answer");
      return;
    }
    if (details.error >= 0) state.counters["error"] = details.error;
    if (details.bytes >= 0) state.counters["size"] = details.bytes;
    while (state.KeepRunningBatch(details.calls)) benchmark::DoNotOptimize(work());
  });
  if (details.isElsewhere) row->UseRealTime();
}
