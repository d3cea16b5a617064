// The detectors over an index in memory of 10,000 and 100,000 files: what the component itself
// costs, apart from any index.

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "bench/component/memory_host.h"

namespace kestrix::bench {
namespace {

const MemoryHost& host_of(const benchmark::State& state) {
  static std::map<std::int64_t, std::unique_ptr<MemoryHost>> hosts;
  auto& host = hosts[state.range(0)];
  if (!host)
    host = std::make_unique<MemoryHost>(make_world(static_cast<std::size_t>(state.range(0)) * 4));
  return *host;
}

template <class Detector>
void run(benchmark::State& state, Detector detector) {
  const MemoryHost& host = host_of(state);
  for (auto _ : state) benchmark::DoNotOptimize(detector(host));
}

const std::vector<std::string>& roots_of(const MemoryHost& host) {
  static std::vector<std::string> roots;
  const auto files = host._planner_paths();
  roots.assign(files.begin(), files.begin() + 20);
  return roots;
}

#define KESTRIX_DETECTOR_BENCH(name, call)                        \
  void name(benchmark::State& state) {                            \
    run(state, [](const MemoryHost& host) { return host.call; }); \
  }                                                               \
  BENCHMARK(name)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)

KESTRIX_DETECTOR_BENCH(config_files, _config_files());
KESTRIX_DETECTOR_BENCH(has_exceptions, _has_exceptions());
KESTRIX_DETECTOR_BENCH(exception_files, _exception_files());
KESTRIX_DETECTOR_BENCH(data_model_files, _data_model_files());
KESTRIX_DETECTOR_BENCH(decision_files, _decision_files());
KESTRIX_DETECTOR_BENCH(extension_files, _extension_files());
KESTRIX_DETECTOR_BENCH(test_files, _test_files());
KESTRIX_DETECTOR_BENCH(example_files, _example_files());
KESTRIX_DETECTOR_BENCH(flow_dispatch, _flow_dispatch(roots_of(host)));

}  // namespace
}  // namespace kestrix::bench
