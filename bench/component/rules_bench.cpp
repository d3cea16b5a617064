// The rules on graphs of 1,000 to 1,000,000 edges, beside the floor of the same graph: a loop that
// hashes the source and the target of every edge once.

#include <benchmark/benchmark.h>

#include <map>

#include "bench/component/world.h"
#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix::bench {
namespace {

const World& world_of(const benchmark::State& state) {
  static std::map<std::int64_t, World> worlds;
  const auto found = worlds.find(state.range(0));
  if (found != worlds.end()) return found->second;
  return worlds.emplace(state.range(0), make_world(static_cast<std::size_t>(state.range(0))))
      .first->second;
}

template <class Run>
void measure(benchmark::State& state, Run run) {
  for (auto _ : state) benchmark::DoNotOptimize(run());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void floor(benchmark::State& state) {
  const World& world = world_of(state);
  measure(state, [&] {
    std::size_t sum = 0;
    for (const FileEdge& edge : world.edges) {
      sum += StringHash{}(edge.source) ^ StringHash {}(edge.target);
    }
    return sum;
  });
}

void dispatch_files_of(benchmark::State& state, std::size_t roots) {
  const World& world = world_of(state);
  const auto entries = entry_points(world, roots);
  measure(state, [&] { return dispatch_files(entries, world.edges); });
}
void dispatch_files_10(benchmark::State& state) { dispatch_files_of(state, 10); }
void dispatch_files_1000(benchmark::State& state) { dispatch_files_of(state, 1000); }

void example_sources(benchmark::State& state) {
  const World& world = world_of(state);
  measure(state, [&] { return kestrix::example_sources(world.tests, world.edges); });
}

void dependents_of(benchmark::State& state) {
  const World& world = world_of(state);
  measure(state, [&] { return kestrix::dependents_of(world.edges); });
}

BENCHMARK(floor)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(dispatch_files_10)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(dispatch_files_1000)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(example_sources)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(dependents_of)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMicrosecond);

// Contracts and registries by the thousand, each with dependents.
void extension_sources(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const World world = make_world(size * 8);
  PathCounts interfaces;
  PathCounts registries;
  for (std::size_t i = 0; i < size; ++i) {
    interfaces.add(world.files[i], 1);
    registries.add(world.files[i + size], 1);
  }
  const auto dependents = kestrix::dependents_of(world.edges);
  measure(state, [&] { return kestrix::extension_sources(interfaces, registries, dependents); });
}
BENCHMARK(extension_sources)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrix::bench
