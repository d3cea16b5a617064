// The import resolvers of all languages on a small repository. A line "== PATH" begins a file, the
// lines after it are its text.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "kestrix/workers/wiki/repo_facts.h"
#include "tests/languages/world.h"

namespace kestrix::index {
namespace {

using test::require;

constexpr std::string_view kFile = "== ";
constexpr std::size_t kMostFiles = 40;

std::string_view take_line(std::string_view& text) {
  const auto end = std::min(text.find('\n'), text.size());
  const auto line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

bool climbs(const std::string& path) { return ("/" + path + "/").find("/../") != path.npos; }

// Only paths that a walk can give.
World world_of(std::string_view input) {
  World world;
  std::string* text = nullptr;
  while (!input.empty()) {
    const std::string_view line = take_line(input);
    if (line.starts_with(kFile)) {
      const std::string path = _norm(line.substr(kFile.size()));
      const bool possible = !path.empty() && !climbs(path) && world.size() < kMostFiles;
      text = possible ? &world[path] : nullptr;
    } else if (text != nullptr) {
      *text += line;
      *text += '\n';
    }
  }
  return world;
}

}  // namespace
}  // namespace kestrix::index

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix::index;  // NOLINT(google-build-using-namespace)
  const World world = world_of({reinterpret_cast<const char*>(data), size});
  const auto edges = weighted_edges_of(world);  // throws when one leads out of the table
  require(edges == weighted_edges_of(world), "the same files give the same edges");
  return 0;
}
