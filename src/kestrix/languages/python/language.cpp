#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <string>

#include "kestrix/languages/python/code.h"
#include "kestrix/languages/python/conventions.h"
#include "kestrix/languages/python/query.scm.h"
#include "kestrix/languages/python/resolver.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 3> kFiles = {".py", ".pyi", ".pyw"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 4> kCaptures = {"binding", "body", "class", "name"};
constexpr std::array<std::string_view, 1> kKeywords = {"import"};
constexpr std::array<std::string_view, 1> kComments = {"#"};
constexpr std::array kStrings = {
    StringStyle{.open = R"(""")",
                .close = R"(""")",
                .multiline = true,
                .splice = "{",
                .splice_prefix = "fF"},
    StringStyle{
        .open = "'''", .close = "'''", .multiline = true, .splice = "{", .splice_prefix = "fF"},
    StringStyle{.open = "\"", .close = "\"", .splice = "{", .splice_prefix = "fF"},
    StringStyle{.open = "'", .close = "'", .splice = "{", .splice_prefix = "fF"},
};
constexpr Lexis kLexis = {.line_comments = kComments, .strings = kStrings};

// A dotted name may be written with spaces and line continuations between its parts.
std::string dotted(std::string_view text) {
  std::string name(text);
  std::erase_if(name, [](char c) { return c == '\\' || c == ' ' || (c >= '\t' && c <= '\r'); });
  return name;
}

std::string first_part(const std::string& name) { return name.substr(0, name.find('.')); }

// The name of an import as written, and the one that it is bound to.
struct Bound {
  std::string name;
  std::string_view alias;
};

Bound bound(const SourceTree& tree, TSNode node) {
  if (type_of(node) != "aliased_import") return {dotted(tree.text(node)), {}};
  const auto name = field_of(node, "name");
  const auto alias = field_of(node, "alias");
  return {name ? dotted(tree.text(*name)) : "", alias ? tree.text(*alias) : std::string_view()};
}

void add_import(const SourceTree& tree, TSNode statement, FileFacts& facts) {
  for_each_child(statement, [&](TSNode child, std::string_view field) {
    if (field != "name") return;
    const auto [name, alias] = bound(tree, child);
    const std::uint32_t uses = tree.uses(alias.empty() ? first_part(name) : alias);
    facts.imports.push_back({.module = name,
                             .uses = uses,
                             .line = SourceTree::line(statement),
                             .local = std::string(alias)});
  });
}

void read_module(const SourceTree& tree, TSNode node, ImportFact& import) {
  const std::string text = dotted(tree.text(node));
  const std::size_t dots = std::min(text.find_first_not_of('.'), text.size());
  import.level = static_cast<std::uint16_t>(std::min<std::size_t>(dots, UINT16_MAX));
  import.module = text.substr(dots);
}

void add_import_from(const SourceTree& tree, TSNode statement, FileFacts& facts) {
  ImportFact import{.line = SourceTree::line(statement)};
  for_each_child(statement, [&](TSNode child, std::string_view field) {
    if (field == "module_name") {
      read_module(tree, child, import);
    } else if (field == "name") {
      const auto [name, alias] = bound(tree, child);
      import.names.push_back({.name = name,
                              .uses = tree.uses(alias.empty() ? name : alias),
                              .local = std::string(alias)});
    } else if (type_of(child) == "wildcard_import") {
      import.names.push_back({.name = "*"});
    }
  });
  facts.imports.push_back(std::move(import));
}

FileFacts read(const SourceTree& tree) {
  FileFacts facts;
  tree.for_each_match([&](const Match& match) {
    if (const auto import = match.node("import")) {
      const bool from = type_of(*import) == "import_from_statement";
      (from ? add_import_from : add_import)(tree, *import, facts);
    } else {
      add_symbol(tree, match, facts);
    }
  });
  return facts;
}

}  // namespace

const Language& python_language() {
  static const Language language{.name = "python",
                                 .files = kFiles,
                                 .grammar = tree_sitter_python,
                                 .query = python_query,
                                 .captures = kCaptures,
                                 .lexis = &kLexis,
                                 .keywords = kKeywords,
                                 .read = read,
                                 .resolver = make_python_resolver,
                                 .code = &python_code,
                                 .conventions = &python::kConventions};
  return language;
}

}  // namespace kestrix::index
