#include "kestrix/host/examples/test_scripts.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <utility>

#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::size_t kLoadsOfRunner = 2;

constexpr auto kScriptEndings =
    std::to_array<std::string_view>({".bash", ".bats", ".exp", ".pl", ".sh", ".t", ".tcl"});
constexpr auto kDefiningWords = std::to_array<std::string_view>({"function", "proc", "sub"});
constexpr auto kLoadingWords = std::to_array<std::string_view>({".", "load", "require", "source"});
// What may stand right before a command.
constexpr std::string_view kBeforeCommand = "[{;|&(`!";

bool is_one_of(std::span<const std::string_view> words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

bool is_command_part(char c) { return ascii::is_word(c) || c == ':' || c == '-' || c == '.'; }

bool is_path_part(char c) { return ascii::is_word(c) || c == '-' || c == '.'; }

std::string_view run(std::string_view text, bool (*test)(char)) {
  return text.substr(0,
                     static_cast<std::size_t>(std::ranges::find_if_not(text, test) - text.begin()));
}

std::string_view without_blanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r"), text.size()));
  return text;
}

// "helper.sh" in "\"${0%/*}/helper.sh\"".
std::string_view loaded_name(std::string_view text) {
  text = text.substr(0, text.find_first_of(" \t\r;"));
  while (!text.empty() && !is_path_part(text.back())) text.remove_suffix(1);
  const auto begin = std::ranges::find_if_not(text.rbegin(), text.rend(), is_path_part);
  return text.substr(static_cast<std::size_t>(begin.base() - text.begin()));
}

class Reader {
 public:
  void take(std::string_view line) {
    line = without_blanks(line);
    if (line.empty() || line.front() == '#') return;
    ++facts_.lines;
    const auto first = run(line, is_command_part);
    const auto rest = without_blanks(line.substr(first.size()));
    if (is_one_of(kDefiningWords, first) && !rest.empty()) {
      facts_.defines.push_back(run(rest, is_command_part));
      return;
    }
    if (!first.empty() && rest.starts_with("()")) {
      facts_.defines.push_back(first);
      return;
    }
    if (is_one_of(kLoadingWords, first) && !loaded_name(rest).empty()) {
      facts_.loads.push_back(loaded_name(rest));
    }
    take_commands(line);
  }

  ScriptFacts facts() && { return std::move(facts_); }

 private:
  void take_commands(std::string_view line) {
    bool may_begin = true;
    while (!line.empty()) {
      const auto word = run(line, is_command_part);
      if (may_begin && !word.empty()) ++facts_.commands[word];
      if (!word.empty()) {
        may_begin = false;
        line.remove_prefix(word.size());
        continue;
      }
      const char c = line.front();
      if (c != ' ' && c != '\t') may_begin = kBeforeCommand.find(c) != kBeforeCommand.npos;
      line.remove_prefix(1);
    }
  }

  ScriptFacts facts_;
};

// Where each name stands; kNone for one that several have.
using Places = std::unordered_map<std::string_view, std::size_t, SeededHash>;

void add(Places& places, std::string_view name, std::size_t at) {
  const auto [place, added] = places.try_emplace(name, at);
  if (!added && place->second != at) place->second = kNone;
}

}  // namespace

bool is_script_path(std::string_view path) {
  const auto name = index::base_name(path);
  const auto dot = name.rfind('.');
  return dot != name.npos && is_one_of(kScriptEndings, name.substr(dot));
}

ScriptFacts read_script(std::string_view text) {
  Reader reader;
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    reader.take(line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return std::move(reader).facts();
}

ScriptUses uses_among_scripts(const std::vector<std::string_view>& paths,
                              const std::vector<std::string>& texts) {
  std::vector<ScriptFacts> facts;
  Places defining;
  Places named;
  for (std::size_t at = 0; at < texts.size(); ++at) {
    facts.push_back(read_script(texts[at]));
    for (const auto name : facts[at].defines) add(defining, name, at);
    add(named, index::base_name(paths[at]), at);
  }
  // What neither is taken in nor takes others in is a test; its functions are its own.
  std::vector<bool> shared(texts.size());
  for (std::size_t at = 0; at < texts.size(); ++at) {
    if (facts[at].loads.size() >= kLoadsOfRunner) shared[at] = true;
    for (const auto name : facts[at].loads) {
      const auto place = named.find(name);
      if (place != named.end() && place->second != kNone) shared[place->second] = true;
    }
  }
  ScriptUses found;
  for (std::size_t at = 0; at < texts.size(); ++at) {
    std::map<std::size_t, std::uint32_t> counts;
    const auto use = [&](const Places& places, std::string_view name, std::uint32_t count) {
      const auto place = places.find(name);
      if (place == places.end() || place->second == kNone || place->second == at) return;
      if (shared[place->second]) counts[place->second] += count;
    };
    for (const auto name : facts[at].loads) use(named, name, 1);
    for (const auto& [word, count] : facts[at].commands) use(defining, word, count);
    for (const auto& [helper, count] : counts) found.uses.push_back({at, helper, count});
    found.lines.push_back(facts[at].lines);
  }
  return found;
}

}  // namespace kestrix
