#include "kestrix/languages/reading.h"

#include <fmt/format.h>
#include <tree_sitter/api.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "kestrix/languages/code/walk.h"
#include "kestrix/languages/language.h"
#include "kestrix/syntax/outline.h"
#include "kestrix/syntax/parsed_text.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

// Code takes a step for some hundred bytes, the most tangled file of many repositories one for ten.
constexpr std::uint64_t kLeastSteps = 4'000;
constexpr std::uint64_t kMostSteps = 50'000;
constexpr std::uint64_t kBytesPerStep = 16;

std::uint64_t steps_for(std::size_t bytes) {
  return std::min(kLeastSteps + bytes / kBytesPerStep, kMostSteps);
}

// What a language's row says, bound to its grammar.
struct Compiled {
  explicit Compiled(const Language& language)
      : query(language.grammar(), language.query, language.name, language.captures) {
    if (language.code != nullptr) code.emplace(language.grammar(), *language.code, language.name);
  }

  Query query;
  std::optional<CompiledRules> code;
};

const Compiled& compiled(const Language& language) {
  static std::mutex mutex;
  static std::map<const Language*, Compiled> known;
  const std::lock_guard lock(mutex);
  auto found = known.find(&language);
  if (found == known.end()) found = known.try_emplace(&language, language).first;
  return found->second;
}

struct Words {
  WordCounts counts;
  std::vector<std::uint32_t> hits;  // where the keywords of patterns that count anywhere stand
};

Words words_of(const Language& language, std::string_view text) {
  Words words;
  words.counts.reset(text.size());
  WordScanner scanner(text, *language.lexis);
  for (Word word; scanner.next(word);) {
    if (std::ranges::find(language.keywords, word.text) != language.keywords.end()) {
      words.hits.push_back(static_cast<std::uint32_t>(word.offset));
    }
    if (!word.member) words.counts.add(word.text);
  }
  return words;
}

// What an import statement itself says is no use of the names that it binds.
void forget_imports(const Outline& outline, const Query& query, const Lexis& lexis,
                    std::string_view text, WordCounts& counts) {
  std::uint32_t done = 0;
  for (const OutlineMatch& match : outline.matches) {
    for (const TSQueryCapture& capture : outline.captures_of(match)) {
      const std::uint32_t start = ts_node_start_byte(capture.node);
      const std::uint32_t end = ts_node_end_byte(capture.node);
      if (query.capture_name(capture.index) != "import" || start < done) continue;
      WordScanner scanner(text.substr(start, end - start), lexis);
      for (Word word; scanner.next(word);) {
        if (!word.member) counts.remove(word.text);
      }
      done = end;
    }
  }
}

// Where a declaration lacks its name the parser makes one up, of no length.
void drop_nameless(FileFacts& facts) {
  std::erase_if(facts.symbols, [](const SymbolFact& symbol) { return symbol.name.empty(); });
  std::erase(facts.declares, "");
}

template <class List>
std::size_t keep_first(List& list, std::size_t most) {
  if (list.size() <= most) return 0;
  const std::size_t left_out = list.size() - most;
  list.erase(list.begin() + static_cast<std::ptrdiff_t>(most), list.end());
  return left_out;
}

// What the code rules bound, the readers of languages do not. A few files of names alone would else
// fill the memory.
void keep_within_limits(FileFacts& facts) {
  std::size_t left_out = keep_first(facts.symbols, kMostDeclarations);
  left_out += keep_first(facts.declares, kMostDeclarations);
  left_out += keep_first(facts.imports, kMostDeclarations);
  left_out += keep_first(facts.uses, kMostMentions);
  std::size_t names = kMostMentions;
  for (ImportFact& import : facts.imports) {
    left_out += keep_first(import.names, names);
    names -= import.names.size();
  }
  facts.dropped += static_cast<std::uint32_t>(left_out);
}

}  // namespace

std::optional<FileFacts> read_facts(const Language& language, std::string_view text,
                                    const ReadOptions& options) {
  if (text.size() >= UINT32_MAX) return std::nullopt;
  const auto& [query, code] = compiled(language);
  const auto masked = language.mask == nullptr ? std::nullopt : language.mask(text);
  const ParsedText parsed(language.grammar(), masked ? std::string_view(*masked) : text,
                          options.parse_steps.value_or(steps_for(text.size())));
  const auto root = parsed.root();
  if (!root) return std::nullopt;
  const std::string_view code_text = masked && language.masks_words ? *masked : text;
  Words words = words_of(language, code_text);
  Outline outline = outline_of(*root, query, text, words.hits);
  forget_imports(outline, query, *language.lexis, text, words.counts);
  const SourceTree source(*root, text, *language.lexis, query, std::move(outline),
                          std::move(words.counts));
  FileFacts facts = language.read(source);
  drop_nameless(facts);
  keep_within_limits(facts);
  if (code) read_code(*code, source, facts);
  return facts;
}

}  // namespace kestrix::index
