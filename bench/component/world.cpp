#include "bench/component/world.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <random>

namespace kestrix::bench {
namespace {

constexpr std::array kLayers{"services", "components", "infrastructure", "interfaces", "platform"};
constexpr std::array kWords{"account", "billing", "catalogue", "delivery", "export",
                            "gateway", "history", "inventory", "journal",  "ledger"};

std::string path_of(std::string_view root, std::size_t number) {
  const auto word = [number](std::size_t step) { return kWords[number / step % kWords.size()]; };
  return fmt::format("{}/{}/{}_{}/{}/{}_{}_{:06}.py", root, kLayers[number / 7 % kLayers.size()],
                     word(1000), number / 1000, word(100), word(10), word(1), number);
}

// A square of a uniform number makes few files popular and most of them rare.
std::size_t popular(std::size_t size, std::mt19937_64& random) {
  const double uniform = std::uniform_real_distribution<double>()(random);
  return static_cast<std::size_t>(uniform * uniform * uniform * static_cast<double>(size));
}

}  // namespace

World make_world(std::size_t edges) {
  World world;
  const std::size_t files = edges / 4 + 10;
  for (std::size_t i = 0; i < files; ++i) world.files.push_back(path_of("src/product", i));
  for (std::size_t i = 0; i < files / 10; ++i) world.tests.push_back(path_of("tests/unit", i));
  std::mt19937_64 random(edges);
  const auto any = [&random](const std::vector<std::string>& paths) -> const std::string& {
    return paths[std::uniform_int_distribution<std::size_t>(0, paths.size() - 1)(random)];
  };
  for (std::size_t i = 0; i < edges; ++i) {
    const bool from_test = i % 10 == 0 && !world.tests.empty();
    const auto& source = from_test ? any(world.tests) : any(world.files);
    const auto& target = i % 20 == 0 && from_test ? world.tests[popular(world.tests.size(), random)]
                                                  : world.files[popular(files, random)];
    world.edges.push_back({source, target, static_cast<double>(i % 9 + 1)});
  }
  std::ranges::shuffle(world.edges, random);
  return world;
}

std::vector<std::string> entry_points(const World& world, std::size_t count) {
  const auto middle = world.files.begin() + static_cast<std::ptrdiff_t>(world.files.size() / 2);
  const auto left = static_cast<std::size_t>(world.files.end() - middle);
  return {middle, middle + static_cast<std::ptrdiff_t>(std::min(count, left))};
}

}  // namespace kestrix::bench
