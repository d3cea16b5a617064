// program_floors read|parse THREADS < FILES
//
// What no index can do without: reading the files, or reading and parsing them. FILES are paths,
// each ended by a NUL. `parse` uses the parser library as it comes, with a grammar by the file's
// name, and does nothing with the trees.

#include <tree_sitter/api.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "kestrix/languages/language.h"

namespace kestrix::index {
namespace {

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  std::string content(static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0)), '\0');
  file.seekg(0);
  file.read(content.data(), static_cast<std::streamsize>(content.size()));
  return content;
}

void read_only(const std::string& path, TSParser* /*parser*/) { content_of(path); }

void parse(const std::string& path, TSParser* parser) {
  const Language* language = language_of(path);
  if (language == nullptr) return;
  const std::string content = content_of(path);
  ts_parser_set_language(parser, language->grammar());
  ts_tree_delete(ts_parser_parse_string(parser, nullptr, content.data(),
                                        static_cast<std::uint32_t>(content.size())));
}

std::vector<std::string> paths_of(std::istream& input) {
  std::vector<std::string> paths;
  for (std::string path; std::getline(input, path, '\0');) paths.push_back(path);
  return paths;
}

void run(std::string_view mode, unsigned threads) {
  const auto work = mode == "parse" ? parse : read_only;
  const std::vector<std::string> paths = paths_of(std::cin);
  std::atomic<std::size_t> next = 0;
  std::vector<std::jthread> crew;
  for (unsigned i = 0; i < threads; ++i) {
    crew.emplace_back([&] {
      const std::unique_ptr<TSParser, decltype(&ts_parser_delete)> parser(ts_parser_new(),
                                                                          ts_parser_delete);
      for (auto at = next++; at < paths.size(); at = next++) work(paths[at], parser.get());
    });
  }
}

}  // namespace
}  // namespace kestrix::index

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const bool known = arguments.size() == 2 && (arguments[0] == "read" || arguments[0] == "parse");
  const int threads = known ? std::atoi(argv[2]) : 0;
  if (threads < 1) {
    std::cerr << "usage: program_floors read|parse THREADS < FILES\n";
    return EXIT_FAILURE;
  }
  kestrix::index::run(arguments[0], static_cast<unsigned>(threads));
  return EXIT_SUCCESS;
}
