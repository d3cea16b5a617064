// Writes the man pages and completions into the directory that is its only argument. Run by the
// build; never installed.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include "apps/page_sources/manual.h"

namespace {

void write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file.exceptions(std::ios::failbit | std::ios::badbit);
  file << text << std::flush;
}

void write_all(const std::filesystem::path& folder) {
  using namespace kestrix::program;
  const auto subcommands = Definitions().describe();
  write(folder / "man1/page-sources.1", man_page(subcommands));
  for (const auto& subcommand : subcommands) {
    write(folder / "man1" / ("page-sources-" + subcommand.name + ".1"), man_page(subcommand));
  }
  write(folder / "bash/page-sources", bash_completion(subcommands));
  write(folder / "zsh/_page-sources", zsh_completion(subcommands));
  write(folder / "fish/page-sources.fish", fish_completion(subcommands));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 2) return 2;
    write_all(argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "write_manual: %s\n", error.what());
    return 1;
  }
}
