// The rules against slow, obvious versions of themselves. The input's first line holds paths, the
// bytes after it pairs of indices into them: edges, then roots.

#include <cstdint>
#include <string_view>

#include "fuzz/require.h"
#include "tests/component/fake_host.h"
#include "tests/component/slow_rules.h"

namespace kestrix::test {
namespace {

constexpr std::size_t kMostPaths = 40;

Paths paths_of(std::string_view line) {
  Paths paths{"h/a", "h/b", "c", "test/d"};
  while (!line.empty() && paths.size() < kMostPaths) {
    const auto end = std::min(line.find(' '), line.size());
    paths.emplace_back(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return paths;
}

void compare(std::string_view input) {
  const auto newline = std::min(input.find('\n'), input.size());
  const Paths paths = paths_of(input.substr(0, newline));
  const auto any = [&](char c) -> const std::string& {
    return paths[static_cast<unsigned char>(c) % paths.size()];
  };
  Edges edges;
  Paths some;
  for (std::size_t i = newline + 1; i + 2 < input.size(); i += 3) {
    edges.push_back(edge(any(input[i]), any(input[i + 1]), input[i + 2] % 4));
    if (some.size() < 12) some.push_back(any(input[i + 2]));
  }
  require(dispatch_files(some, edges) == slow_dispatch(some, edges, 3),
          "dispatch_files equals its slow version");
  require(example_sources(some, edges) == slow_examples(some, edges, 4),
          "example_sources equals its slow version");
  require(flat(dependents_of(edges)) == slow_dependents(edges),
          "dependents_of equals its slow version");
  for (const auto& path : paths) {
    require(!is_fixture_path(path) || path.find('/') != std::string::npos,
            "fixtures lie in a folder");
  }
}

}  // namespace
}  // namespace kestrix::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const kestrix::test::World world;
  kestrix::test::compare({reinterpret_cast<const char*>(data), std::min<std::size_t>(size, 512)});
  return 0;
}
