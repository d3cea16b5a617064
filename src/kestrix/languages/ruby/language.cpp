#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/ruby/code.h"
#include "kestrix/languages/ruby/conventions.h"
#include "kestrix/languages/ruby/query.scm.h"
#include "kestrix/languages/ruby/resolver.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 6> kFiles = {".rb", ".rake",   ".gemspec",
                                                    ".ru", "gemfile", "rakefile"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 11> kCaptures = {
    "body", "class",   "constant", "made",       "name",    "namespace",
    "path", "require", "scope",    "superclass", "variable"};
constexpr std::array<std::string_view, 3> kKeywords = {"autoload", "require", "require_relative"};
constexpr std::array<std::string_view, 1> kComments = {"#"};
constexpr std::array kStrings = {
    StringStyle{.open = "\"", .close = "\"", .multiline = true, .splice = "#{"},
    StringStyle{.open = "'", .close = "'", .multiline = true},
};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "\n=begin",
                          .block_close = "\n=end",
                          .strings = kStrings,
                          .regexes = true};

bool is_constant(std::string_view word) { return word.front() >= 'A' && word.front() <= 'Z'; }

// Whether what follows starts with "::" rather than belongs to something by it.
bool stands_at_top(std::string_view before) {
  if (!before.ends_with("::")) return false;
  before.remove_suffix(2);
  return before.empty() ||
         std::string_view(" \t\r\n([{,<|!=&*").find(before.back()) != std::string_view::npos;
}

using Uses = std::map<std::string_view, std::uint32_t>;

// Every constant that the code names, with the namespaces that it names it by.
Uses constants_named(const SourceTree& tree) {
  Uses uses;
  WordScanner scanner(tree.text(), tree.lexis());
  std::string_view chain;
  const auto close = [&] {
    if (!chain.empty()) ++uses[chain];
    chain = {};
  };
  for (Word word; scanner.next(word);) {
    const std::size_t end = word.offset + word.text.size();
    const std::size_t start = static_cast<std::size_t>(chain.data() - tree.text().data());
    const bool joined = !chain.empty() && word.offset == start + chain.size() + 2 &&
                        tree.text(static_cast<std::uint32_t>(word.offset) - 2,
                                  static_cast<std::uint32_t>(word.offset)) == "::";
    if (joined && is_constant(word.text)) {
      chain = tree.text().substr(start, end - start);
      continue;
    }
    close();
    if (!is_constant(word.text) || word.member) continue;
    const bool top = stands_at_top(tree.text().substr(0, word.offset));
    chain = tree.text().substr(word.offset - (top ? 2 : 0), word.text.size() + (top ? 2 : 0));
  }
  close();
  return uses;
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    add_uses();
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  struct Scope {
    std::uint32_t end;
    std::string name;
  };

  void take(const Match& match) {
    if (const auto import = match.node("import")) {
      read_import(match, *import);
    } else if (const auto scope = match.node("scope")) {
      read_scope(match, *scope);
    } else if (const auto made = match.node("made")) {
      const TSNode name = *match.node("name");
      facts_.symbols.push_back(
          packaged::symbol(tree_, SymbolKind::kClass, *made, name, ts_node_end_byte(*made)));
      facts_.declares.push_back(full_name(*made, tree_.text(name)));
    } else if (const auto constant = match.node("constant")) {
      facts_.declares.push_back(full_name(*constant, tree_.text(*match.node("name"))));
      add_symbol(tree_, match, facts_);
    } else {
      add_symbol(tree_, match, facts_);
    }
  }

  // What declares a name is no use of it.
  void add_uses() {
    Uses uses = constants_named(tree_);
    for (const std::string_view name : written_) {
      const auto found = uses.find(name);
      if (found != uses.end() && --found->second == 0) uses.erase(found);
    }
    for (const auto& [name, count] : uses) facts_.uses.push_back({std::string(name), count});
  }

  void read_import(const Match& match, TSNode call) {
    const auto word = match.node("require");
    const bool relative = word && tree_.text(*word) == "require_relative";
    const auto form = relative ? RubyImport::kRelative : RubyImport::kLoadPath;
    facts_.imports.push_back({.module = std::string(tree_.text(*match.node("path"))),
                              .form = static_cast<std::uint16_t>(form),
                              .line = SourceTree::line(call)});
  }

  void read_scope(const Match& match, TSNode scope) {
    const TSNode name = match.node("name") ? *match.node("name") : *match.node("namespace");
    std::string whole = full_name(scope, tree_.text(name));
    if (const auto type = match.node("class")) {
      const TSNode last = match.node("superclass").value_or(name);
      facts_.symbols.push_back(
          packaged::symbol(tree_, SymbolKind::kClass, *type, name, ts_node_end_byte(last)));
    }
    facts_.declares.push_back(whole);
    scopes_.push_back({ts_node_end_byte(scope), std::move(whole)});
  }

  std::string full_name(TSNode declaration, std::string_view name) {
    while (!scopes_.empty() && scopes_.back().end <= ts_node_start_byte(declaration)) {
      scopes_.pop_back();
    }
    written_.push_back(name);
    const bool from_top = name.starts_with("::");
    if (from_top) name.remove_prefix(2);
    if (from_top) return std::string(name);
    return scopes_.empty() ? std::string(name) : scopes_.back().name + "::" + std::string(name);
  }

  const SourceTree& tree_;
  FileFacts facts_;
  std::vector<std::string_view> written_;  // names as their declarations write them
  std::vector<Scope> scopes_;              // open at the match at hand, the innermost last
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& ruby_language() {
  static const Language language{.name = "ruby",
                                 .files = kFiles,
                                 .grammar = tree_sitter_ruby,
                                 .query = ruby_query,
                                 .captures = kCaptures,
                                 .lexis = &kLexis,
                                 .keywords = kKeywords,
                                 .read = read,
                                 .resolver = make_ruby_resolver,
                                 .code = &ruby_code,
                                 .conventions = &ruby::kConventions};
  return language;
}

}  // namespace kestrix::index
