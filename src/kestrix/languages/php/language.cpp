#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/php/code.h"
#include "kestrix/languages/php/conventions.h"
#include "kestrix/languages/php/query.scm.h"
#include "kestrix/languages/php/resolver.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 3> kFiles = {".php", ".phtml", ".inc"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 11> kCaptures = {
    "binding",   "body", "class",   "constant", "function", "inclusion",
    "interface", "name", "package", "use",      "variable"};
constexpr std::array<std::string_view, 4> kKeywords = {"include", "include_once", "require",
                                                       "require_once"};
// "#[" opens an attribute.
constexpr std::array<std::string_view, 2> kComments = {"//", "# "};
constexpr std::array kStrings = {
    StringStyle{.open = "\"", .close = "\"", .multiline = true, .splice = "{$"},
    StringStyle{.open = "'", .close = "'", .multiline = true},
};
constexpr Lexis kLexis = {
    .line_comments = kComments, .block_open = "/*", .block_close = "*/", .strings = kStrings};

// A qualified name with dots, without the leading backslash.
std::string dotted(std::string_view text) {
  std::string name(text);
  std::erase_if(name, [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
  if (name.starts_with('\\')) name.erase(0, 1);
  std::ranges::replace(name, '\\', '.');
  return name;
}

std::string_view last_word(std::string_view name) {
  return name.substr(name.find_last_of("\\ \t\n") + 1);
}

// The literal path of an inclusion; behind __DIR__ or dirname(__FILE__) it starts with "/".
std::optional<ImportFact> inclusion_of(std::string_view text) {
  const std::size_t open = text.find_first_of("'\"");
  if (open == std::string_view::npos) return std::nullopt;
  const std::size_t close = text.find(text[open], open + 1);
  if (close == std::string_view::npos) return std::nullopt;
  std::string_view path = text.substr(open + 1, close - open - 1);
  const std::string_view before = text.substr(0, open);
  const std::string_view after = text.substr(close + 1);
  const bool spliced = path.find_first_of("${") != std::string_view::npos;
  if (spliced || after.find_first_of(".$") != std::string_view::npos) return std::nullopt;
  const bool here = before.find("__DIR__") != std::string_view::npos ||
                    before.find("__FILE__") != std::string_view::npos;
  const bool computed = before.find('.') != std::string_view::npos;
  if (path.empty() || (computed && !here)) return std::nullopt;
  if (!here && path.starts_with('/')) return std::nullopt;
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  const auto form = here ? PhpImport::kHere : PhpImport::kSomewhere;
  return ImportFact{.module = std::string(path), .form = static_cast<std::uint16_t>(form)};
}

using Stretch = std::pair<std::size_t, std::size_t>;

struct Named {
  std::uint32_t line;  // of the first use
  std::uint32_t uses = 0;
};

// Names of several parts, as the code writes them outside of `statements`, with their uses.
std::map<std::string_view, Named> qualified_names(const SourceTree& tree,
                                                  std::span<const Stretch> statements) {
  std::map<std::string_view, Named> names;
  if (tree.text().find('\\') == std::string_view::npos) return names;
  const std::string_view text = tree.text();
  WordScanner scanner(text, tree.lexis());
  std::string_view chain;
  std::uint32_t line = 1;
  std::size_t counted = 0;  // bytes whose lines are in `line`
  const auto close = [&] {
    if (chain.find('\\') == std::string_view::npos) return;
    const auto at = static_cast<std::size_t>(chain.data() - text.data());
    while (!statements.empty() && statements.front().second <= at)
      statements = statements.subspan(1);
    if (!statements.empty() && at >= statements.front().first) return;
    line +=
        static_cast<std::uint32_t>(std::ranges::count(text.substr(counted, at - counted), '\n'));
    counted = at;
    ++names.try_emplace(chain, Named{.line = line}).first->second.uses;
  };
  for (Word word; scanner.next(word);) {
    const auto start = static_cast<std::size_t>(chain.data() - text.data());
    const bool joined =
        !chain.empty() && word.offset == start + chain.size() + 1 && text[word.offset - 1] == '\\';
    if (joined) {
      chain = text.substr(start, word.offset + word.text.size() - start);
      continue;
    }
    close();
    const bool rooted = word.offset > 0 && text[word.offset - 1] == '\\';
    chain = text.substr(word.offset - (rooted ? 1 : 0), word.text.size() + (rooted ? 1 : 0));
  }
  close();
  return names;
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    facts_.uses = own_.foreign_uses(tree_, packaged::Constants::kIgnore);
    add_qualified_names();
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  void take(const Match& match) {
    if (const auto package = match.node("package")) {
      if (facts_.package.empty()) facts_.package = dotted(tree_.text(*package));
      add_statement(*package);
    } else if (const auto use = match.node("use")) {
      add_statement(*use);
      read_use(*use);
    } else if (const auto inclusion = match.node("inclusion")) {
      read_inclusion(*inclusion);
    } else if (const auto function = match.node("function")) {
      facts_.declares.emplace_back(tree_.text(*function));
    } else if (const auto name = match.node("name")) {
      read_declaration(match, *name);
    }
  }

  void add_statement(TSNode node) {
    statements_.emplace_back(ts_node_start_byte(node), ts_node_end_byte(node));
  }

  void read_use(TSNode statement) {
    std::string prefix;
    for_each_child(statement, [&](TSNode child, std::string_view) {
      if (type_of(child) == "namespace_use_clause") {
        read_clause(child, "");
      } else if (type_of(child) == "namespace_name") {
        prefix = dotted(tree_.text(child)) + ".";
      } else if (type_of(child) == "namespace_use_group") {
        for_each_child(child,
                       [&](TSNode clause, std::string_view) { read_clause(clause, prefix); });
      }
    });
  }

  void read_clause(TSNode clause, const std::string& prefix) {
    std::string name;
    for_each_child(clause, [&](TSNode child, std::string_view field) {
      if (field.empty() && name.empty() && type_of(child).ends_with("name")) {
        name = prefix + dotted(tree_.text(child));
      }
    });
    if (name.empty()) return;
    const auto alias = field_of(clause, "alias");
    const std::string_view own = alias ? tree_.text(*alias) : last_word(tree_.text(clause));
    facts_.imports.push_back({.module = name,
                              .uses = tree_.uses(own),
                              .line = SourceTree::line(clause),
                              .local = std::string(own)});
    own_.add(own);
    aliases_.emplace(own, name);
  }

  // The first part may be an alias; without one the name starts in the file's namespace.
  std::string full_name(std::string_view written) const {
    if (written.starts_with('\\')) return dotted(written);
    const std::string_view first = written.substr(0, written.find('\\'));
    const std::string rest = dotted(written.substr(first.size()));
    const auto alias = aliases_.find(first);
    if (alias != aliases_.end()) return alias->second + "." + rest;
    const std::string whole = std::string(first) + "." + rest;
    return facts_.package.empty() ? whole : facts_.package + "." + whole;
  }

  void add_qualified_names() {
    for (const auto& [written, named] : qualified_names(tree_, statements_)) {
      facts_.imports.push_back({.module = full_name(written),
                                .form = static_cast<std::uint16_t>(PhpImport::kInCode),
                                .uses = named.uses,
                                .line = named.line,
                                .local = as_mentioned(written)});
    }
  }

  // What is written in full keeps a mark of it.
  static std::string as_mentioned(std::string_view written) {
    return (written.starts_with('\\') ? "." : "") + dotted(written);
  }

  void read_inclusion(TSNode node) {
    auto import = inclusion_of(tree_.text(node));
    if (!import) return;
    import->line = SourceTree::line(node);
    facts_.imports.push_back(std::move(*import));
  }

  void read_declaration(const Match& match, TSNode name) {
    if (match.node("class") || match.node("interface")) {
      const auto kind = match.node("class") ? SymbolKind::kClass : SymbolKind::kInterface;
      const TSNode type = *match.node(match.node("class") ? "class" : "interface");
      const std::uint32_t end = ts_node_start_byte(*match.node("body"));
      facts_.symbols.push_back(packaged::symbol(tree_, kind, type, name, end));
      own_.add(tree_.text(name));
      facts_.declares.emplace_back(tree_.text(name));
      return;
    }
    add_symbol(tree_, match, facts_);
  }

  const SourceTree& tree_;
  FileFacts facts_;
  packaged::OwnNames own_;
  std::vector<Stretch> statements_;                  // those that name without using, in order
  std::map<std::string_view, std::string> aliases_;  // full names by what the file calls them
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& php_language() {
  static const Language language{.name = "php",
                                 .files = kFiles,
                                 .grammar = tree_sitter_php,
                                 .query = php_query,
                                 .captures = kCaptures,
                                 .lexis = &kLexis,
                                 .keywords = kKeywords,
                                 .read = read,
                                 .resolver = make_php_resolver,
                                 .code = &php_code,
                                 .conventions = &php::kConventions};
  return language;
}

}  // namespace kestrix::index
