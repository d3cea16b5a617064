#include "kestrix/languages/reading.h"

#include <fmt/format.h>
#include <tree_sitter/api.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "kestrix/languages/language.h"
#include "kestrix/syntax/outline.h"
#include "kestrix/syntax/parser_memory.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

struct ParserDeleter {
  void operator()(TSParser* parser) const { ts_parser_delete(parser); }
};
struct TreeDeleter {
  void operator()(TSTree* tree) const { ts_tree_delete(tree); }
};
using ParserPtr = std::unique_ptr<TSParser, ParserDeleter>;
using TreePtr = std::unique_ptr<TSTree, TreeDeleter>;

const Query& query_of(const Language& language) {
  static std::mutex mutex;
  static std::map<const Language*, Query> queries;
  const std::lock_guard lock(mutex);
  auto found = queries.find(&language);
  if (found == queries.end()) {
    found = queries.try_emplace(&language, language.grammar(), language.query, language.name).first;
  }
  return found->second;
}

std::chrono::microseconds thread_time() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
}

// One call of the parser, in a form that may be left in its middle.
struct ParserCall {
  TSParser* parser;
  std::string_view text;
  TSTree* tree = nullptr;

  static void run(void* self) {
    auto& call = *static_cast<ParserCall*>(self);
    call.tree = ts_parser_parse_string(call.parser, nullptr, call.text.data(),
                                       static_cast<std::uint32_t>(call.text.size()));
  }
};

// The library counts the time that passes. On a busy machine that is not what the parser got: what
// it still has is granted, so that which files are given up depends less on the load.
TreePtr parse(ParserMemory& memory, ParserPtr parser, const Language& language,
              std::string_view text, std::chrono::microseconds budget) {
  if (!ts_parser_set_language(parser.get(), language.grammar())) {
    throw Error(fmt::format("the grammar of {} does not fit the parser library", language.name));
  }
  const auto masked = language.mask == nullptr ? std::nullopt : language.mask(text);
  ParserCall call{.parser = parser.get(), .text = masked ? std::string_view(*masked) : text};
  const auto end = thread_time() + budget;
  for (auto left = budget; left.count() > 0; left = end - thread_time()) {
    ts_parser_set_timeout_micros(parser.get(), static_cast<std::uint64_t>(left.count()));
    if (!memory.run(ParserCall::run, &call)) {
      static_cast<void>(parser.release());  // the memory of what was left goes with the arena
      return nullptr;
    }
    if (call.tree != nullptr) return TreePtr(call.tree);
  }
  return nullptr;
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

}  // namespace

std::optional<FileFacts> read_facts(const Language& language, std::string_view text,
                                    const ReadOptions& options) {
  if (text.size() >= UINT32_MAX) return std::nullopt;
  const Query& query = query_of(language);
  ParserMemory memory;
  const TreePtr tree =
      parse(memory, ParserPtr(ts_parser_new()), language, text, options.parse_budget);
  if (tree == nullptr) return std::nullopt;
  Words words = words_of(language, text);
  const TSNode root = ts_tree_root_node(tree.get());
  Outline outline = outline_of(root, query, text, words.hits);
  forget_imports(outline, query, *language.lexis, text, words.counts);
  FileFacts facts = language.read(
      SourceTree(root, text, *language.lexis, query, std::move(outline), std::move(words.counts)));
  drop_nameless(facts);
  return facts;
}

}  // namespace kestrix::index
