#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/languages/rust/code.h"
#include "kestrix/languages/rust/conventions.h"
#include "kestrix/languages/rust/macro_items.h"
#include "kestrix/languages/rust/paths.h"
#include "kestrix/languages/rust/query.scm.h"
#include "kestrix/languages/rust/resolver.h"
#include "kestrix/languages/rust/use_tree.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kFiles = {".rs"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 13> kCaptures = {
    "attribute", "body", "class", "constant", "crate", "inline",  "interface",
    "item",      "mod",  "name",  "tokens",   "use",   "variable"};
constexpr std::array<std::string_view, 2> kKeywords = {"extern", "use"};
constexpr std::array<std::string_view, 1> kComments = {"//"};
constexpr std::array kStrings = {StringStyle{.open = "\"", .close = "\"", .multiline = true}};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "/*",
                          .block_close = "*/",
                          .nested_blocks = true,
                          .strings = kStrings,
                          .char_literals = true};

constexpr std::size_t kNone = SIZE_MAX;
constexpr std::size_t kLongestModule = 1000;
constexpr std::size_t kMostPaths = 8;  // of one module, by platform

std::uint16_t form(RustImport import) { return static_cast<std::uint16_t>(import); }

// The value of `path = "…"` in an attribute; "" when it has none.
std::string_view path_in(std::string_view attribute) {
  const std::size_t word = attribute.find("path");
  if (word == attribute.npos) return {};
  const std::size_t equals = attribute.find_first_not_of(" \t", word + 4);
  if (equals == attribute.npos || attribute[equals] != '=') return {};
  const std::size_t open = attribute.find('"', equals);
  const std::size_t close = attribute.find('"', open + 1);
  if (open == attribute.npos || close == attribute.npos) return {};
  return attribute.substr(open + 1, close - open - 1);
}

// A name without the mark that lets a keyword be one.
std::string_view plain(std::string_view name) {
  return name.starts_with("r#") ? name.substr(2) : name;
}

// As mentions write a path.
std::string with_dots(std::string_view path) {
  std::string dotted;
  for (std::size_t at = 0; at < path.size(); ++at) {
    if (path[at] == ':') ++at;
    dotted += path[at] == ':' ? '.' : path[at];
  }
  return dotted;
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    add_paths();
    sort_distinct(facts_.declares);
    return std::move(facts_);
  }

 private:
  // A module whose body stands in this file.
  struct Inline {
    std::uint32_t start;
    std::uint32_t end;
    std::size_t outer;  // its place among them, or kNone
    std::string path;
  };

  void take(const Match& match) {
    if (const auto use = match.node("use")) {
      add_use(*use);
    } else if (const auto crate = match.node("crate")) {
      add_crate(*crate);
    } else if (const auto attribute = match.node("attribute")) {
      if (const auto path = path_in(tree_.text(*attribute)); !path.empty()) {
        if (paths_.size() == kMostPaths) paths_.erase(paths_.begin());
        paths_.emplace_back(*attribute, path);
      }
    } else if (const auto tokens = match.node("tokens")) {
      add_macro(*tokens);
    } else if (const auto mod = match.node("mod")) {
      add_mod(*mod, plain(tree_.text(*match.node("name"))));
    } else if (const auto inner = match.node("inline")) {
      add_inline(*inner, plain(tree_.text(*match.node("name"))));
    } else if (const auto item = match.node("item")) {
      if (match.nesting() == 0) {
        facts_.declares.emplace_back(plain(tree_.text(*match.node("name"))));
      }
      const std::size_t before = facts_.symbols.size();
      add_symbol(tree_, match, facts_);
      if (facts_.symbols.size() > before && facts_.symbols.back().signature.ends_with(';')) {
        facts_.symbols.back().signature.pop_back();
      }
    }
  }

  // Modules start in ascending order, and each knows the one around it.
  const Inline* inline_at(std::size_t offset) const {
    const auto behind = std::ranges::upper_bound(inlines_, offset, {}, &Inline::start);
    const Inline* module = behind == inlines_.begin() ? nullptr : &*std::prev(behind);
    while (module != nullptr && module->end <= offset) {
      module = module->outer == kNone ? nullptr : &inlines_[module->outer];
    }
    return module;
  }

  std::string path_below(const Inline* outer, std::string_view name) const {
    if (outer == nullptr) return std::string(name);
    if (outer->path.size() > kLongestModule) return outer->path;
    return outer->path + "::" + std::string(name);
  }

  // A path as the file's own module would write it: "super::a" within "mod tests" is "self::a".
  std::string from_file(std::string path, std::size_t offset) const {
    const Inline* module = inline_at(offset);
    if (module == nullptr) return path;
    std::string base = module->path;
    bool relative = false;
    if (path == "self" || path.starts_with("self::")) {
      path.erase(0, std::min<std::size_t>(6, path.size()));
      relative = true;
    }
    while (!base.empty() && (path == "super" || path.starts_with("super::"))) {
      path.erase(0, std::min<std::size_t>(7, path.size()));
      const std::size_t at = base.rfind("::");
      base = at == std::string::npos ? "" : base.substr(0, at);
      relative = true;
    }
    if (!relative) return path;
    if (path == "super" || path.starts_with("super::")) return path;
    const std::string whole = base.empty() ? "self" : "self::" + base;
    return path.empty() ? whole : whole + "::" + path;
  }

  void add_use(TSNode node) {
    const auto argument = field_of(node, "argument");
    if (!argument) return;
    excluded_.emplace_back(ts_node_start_byte(node), ts_node_end_byte(node));
    const bool handed_on = type_of(ts_node_named_child(node, 0)) == "visibility_modifier";
    add_use_tree(tree_.text(*argument), handed_on, node);
  }

  void add_use_tree(std::string_view text, bool handed_on, TSNode node) {
    for (UseLeaf& leaf : leaves_of(text, tree_.lexis())) {
      if (leaf.prefix.empty() && leaf.name == "self") continue;
      const std::string_view bound = leaf.alias.empty() ? leaf.name : leaf.alias;
      const std::uint32_t uses = leaf.name == "*" ? 0 : tree_.uses(bound);
      ImportFact& import =
          import_of(node, from_file(std::move(leaf.prefix), ts_node_start_byte(node)));
      import.names.push_back(
          {.name = leaf.name,
           .exported = handed_on ? std::string(bound) : "",
           .uses = uses,
           .local = leaf.alias == leaf.name ? std::string() : std::string(leaf.alias)});
    }
  }

  void add_macro(TSNode node) {
    const MacroItems items = items_of_macro(tree_.text(node), tree_.lexis());
    for (const std::string_view name : items.modules) add_mod(node, name);
    for (const auto& use : items.uses) add_use_tree(use.tree, use.handed_on, node);
    for (const std::string_view name : items.declared) facts_.declares.emplace_back(name);
  }

  // Leaves of one declaration that share a prefix share a fact.
  ImportFact& import_of(TSNode node, std::string prefix) {
    const std::uint32_t line = SourceTree::line(node);
    if (facts_.imports.empty() || facts_.imports.back().line != line ||
        facts_.imports.back().module != prefix || facts_.imports.back().names.empty()) {
      facts_.imports.push_back(
          {.module = std::move(prefix), .form = form(RustImport::kUse), .line = line});
    }
    return facts_.imports.back();
  }

  void add_crate(TSNode node) {
    const auto name = field_of(node, "name");
    const auto alias = field_of(node, "alias");
    if (!name) return;
    const std::string_view bound = tree_.text(alias ? *alias : *name);
    facts_.imports.push_back({.module = std::string(tree_.text(*name)),
                              .form = form(RustImport::kCrate),
                              .uses = tree_.uses(bound),
                              .line = SourceTree::line(node)});
  }

  void add_mod(TSNode node, std::string_view name) {
    const Inline* outer = inline_at(ts_node_start_byte(node));
    const std::string path = path_below(outer, name);
    for (const auto& [attribute, file] : paths_) {
      if (!is_before(attribute, node)) continue;
      facts_.imports.push_back({.module = std::string(file),
                                .form = form(RustImport::kModFile),
                                .names = {{.name = path}},
                                .uses = tree_.uses(name),
                                .line = SourceTree::line(node)});
    }
    paths_.clear();
    facts_.imports.push_back({.module = path,
                              .form = form(RustImport::kMod),
                              .uses = tree_.uses(name),
                              .line = SourceTree::line(node)});
  }

  // Whether nothing but attributes and comments stands between them.
  bool is_before(TSNode attribute, TSNode node) const {
    const std::string_view between =
        tree_.text(ts_node_end_byte(attribute), ts_node_start_byte(node));
    return between.find_first_of(";}") == between.npos;
  }

  void add_inline(TSNode node, std::string_view name) {
    const Inline* outer = inline_at(ts_node_start_byte(node));
    const std::string path = path_below(outer, name);
    const std::size_t place =
        outer == nullptr ? kNone : static_cast<std::size_t>(outer - inlines_.data());
    inlines_.push_back({ts_node_start_byte(node), ts_node_end_byte(node), place, path});
    facts_.imports.push_back(
        {.module = path, .form = form(RustImport::kInline), .line = SourceTree::line(node)});
  }

  void add_paths() {
    std::ranges::sort(excluded_);
    std::uint32_t line = 1;
    std::size_t at = 0;
    for (RustPath& path : paths_of(tree_, excluded_)) {
      const std::string_view passed = tree_.text().substr(at, path.offset - at);
      line += static_cast<std::uint32_t>(std::ranges::count(passed, '\n'));
      at = path.offset;
      const std::string written = path.path;
      const std::string whole = from_file(std::move(path.path), path.offset);
      const std::size_t last = whole.rfind("::");
      if (last == std::string::npos) continue;
      facts_.imports.push_back({.module = whole.substr(0, last),
                                .form = form(RustImport::kPath),
                                .names = {{.name = whole.substr(last + 2),
                                           .uses = path.count - 1,
                                           .local = with_dots(written)}},
                                .line = line});
    }
  }

  const SourceTree& tree_;
  FileFacts facts_;
  std::vector<Inline> inlines_;
  std::vector<std::pair<TSNode, std::string_view>> paths_;  // attributes that name a file
  std::vector<std::pair<std::uint32_t, std::uint32_t>> excluded_;
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& rust_language() {
  static const Language language{.name = "rust",
                                 .files = kFiles,
                                 .grammar = tree_sitter_rust,
                                 .query = rust_query,
                                 .captures = kCaptures,
                                 .lexis = &kLexis,
                                 .keywords = kKeywords,
                                 .read = read,
                                 .resolver = make_rust_resolver,
                                 .code = &rust_code,
                                 .conventions = &rust::kConventions};
  return language;
}

}  // namespace kestrix::index
