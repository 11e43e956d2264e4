#pragma once
// BenchTimes: a console reporter that also keeps each benchmark's time per iteration, so that a
// benchmark program can print its ratios against the named peer once the run is over.
//
//   BenchTimes times(BenchTimes::Clock::CPU);
//   benchmark::RunSpecifiedBenchmarks(&times);
//   double ours = times("Ours_Layout"), peer = times("Peer_Memset");  // ms, or -1 if it did not run
//
// A benchmark with arguments ("Ours_Walk/iterations:2") is found under its whole name and, for the
// first such run, under its bare name ("Ours_Walk").

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

class BenchTimes : public benchmark::ConsoleReporter {
 public:
  // Wall time, or CPU time: the fairer measure on a shared machine.
  enum class Clock { Real, CPU };

  explicit BenchTimes(Clock clock = Clock::Real) : clock_(clock) {}

  // Milliseconds per iteration, or -1 when the benchmark did not run or failed.
  double operator()(const std::string& name) const {
    auto it = milliseconds_.find(name);
    return it == milliseconds_.end() ? -1.0 : it->second;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const double time = clock_ == Clock::CPU ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
      const double ms = time * benchmark::GetTimeUnitMultiplier(benchmark::kMillisecond) /
                        benchmark::GetTimeUnitMultiplier(run.time_unit);
      const std::string name = run.benchmark_name();
      milliseconds_[name] = ms;
      milliseconds_.emplace(name.substr(0, name.find('/')), ms);
    }
    ConsoleReporter::ReportRuns(runs);
  }

 private:
  Clock clock_;
  std::map<std::string, double> milliseconds_;
};
