#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "kestrix/languages/go/code.h"
#include "kestrix/languages/go/conventions.h"
#include "kestrix/languages/go/names.h"
#include "kestrix/languages/go/query.scm.h"
#include "kestrix/languages/go/resolver.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kFiles = {".go"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 5> kCaptures = {"function", "method", "package", "types",
                                                       "values"};
constexpr std::array<std::string_view, 1> kComments = {"//"};
constexpr std::array kStrings = {
    StringStyle{.open = "`", .close = "`", .multiline = true, .escapes = false},
    StringStyle{.open = "\"", .close = "\""},
};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "/*",
                          .block_close = "*/",
                          .strings = kStrings,
                          .char_literals = true};

bool is_version(std::string_view part) {
  return part.size() > 1 && part.front() == 'v' &&
         std::ranges::all_of(part.substr(1), [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view last_part(std::string_view path) { return path.substr(path.rfind('/') + 1); }

// The names under which a package of that path is known if it is not renamed; the package itself,
// which may be out of reach, has the last word.
std::vector<std::string> names_of_package(std::string_view path) {
  std::string_view part = last_part(path);
  if (is_version(part) && part.size() < path.size()) {
    part = last_part(path.substr(0, path.size() - part.size() - 1));
  }
  if (const auto dot = part.rfind('.'); dot != part.npos && is_version(part.substr(dot + 1))) {
    part = part.substr(0, dot);
  }
  std::vector<std::string> names = {std::string(part)};
  if (part.starts_with("go-")) names.emplace_back(part.substr(3));
  if (part.ends_with("-go")) names.emplace_back(part.substr(0, part.size() - 3));
  if (part.find('-') != part.npos) {
    names.emplace_back(part.substr(part.rfind('-') + 1));
    std::string joined(part);
    std::ranges::replace(joined, '-', '_');
    names.push_back(joined);
    std::erase(joined, '_');
    names.push_back(joined);
  }
  return names;
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree), names_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    bind_imports();
    for (const TSNode declaration : declarations_) names_.read(declaration);
    sort_distinct(facts_.declares);
    facts_.uses = names_.take(facts_.imports, facts_.declares);
    return std::move(facts_);
  }

 private:
  void take(const Match& match) {
    if (const auto package = match.node("package")) {
      facts_.package = tree_.text(*package);
    } else if (const auto import = match.node("import")) {
      add_imports(*import);
    } else if (const auto types = match.node("types")) {
      for_each_child(*types, [this](TSNode item, std::string_view) { add_type(item); });
      declarations_.push_back(*types);
    } else if (const auto values = match.node("values")) {
      add_values(*values);
      declarations_.push_back(*values);
    } else if (const auto function = match.node("function")) {
      if (const auto name = field_of(*function, "name")) declare(*name);
      declarations_.push_back(*function);
    } else if (const auto method = match.node("method")) {
      declarations_.push_back(*method);
    }
  }

  void declare(TSNode name) {
    if (tree_.text(name) != "_") facts_.declares.emplace_back(tree_.text(name));
  }

  void add_imports(TSNode node) {
    for_each_child(node, [this](TSNode child, std::string_view) {
      if (type_of(child) == "import_spec") {
        add_import(child);
      } else {
        for_each_child(child, [this](TSNode item, std::string_view) {
          if (type_of(item) == "import_spec") add_import(item);
        });
      }
    });
  }

  void add_import(TSNode item) {
    const auto path = field_of(item, "path");
    if (!path || tree_.text(*path).size() < 3) return;
    std::string_view text = tree_.text(*path);
    text = text.substr(1, text.size() - 2);
    const auto name = field_of(item, "name");
    const std::string_view alias = name ? tree_.text(*name) : std::string_view();
    const GoImport form = alias == "."   ? GoImport::kDot
                          : alias == "_" ? GoImport::kBlank
                                         : GoImport::kNamed;
    aliases_.push_back(alias);
    facts_.imports.push_back({.module = std::string(text),
                              .form = static_cast<std::uint16_t>(form),
                              .line = SourceTree::line(item)});
  }

  // What is written goes before what is guessed.
  void bind_imports() {
    for (std::size_t i = 0; i < aliases_.size(); ++i) {
      if (!aliases_[i].empty()) names_.bind_import(std::string(aliases_[i]), i);
    }
    std::vector<std::vector<std::string>> guesses(aliases_.size());
    std::size_t longest = 0;
    for (std::size_t i = 0; i < aliases_.size(); ++i) {
      if (aliases_[i].empty()) guesses[i] = names_of_package(facts_.imports[i].module);
      longest = std::max(longest, guesses[i].size());
    }
    for (std::size_t rank = 0; rank < longest; ++rank) {
      for (std::size_t i = 0; i < guesses.size(); ++i) {
        if (rank < guesses[i].size()) names_.bind_import(guesses[i][rank], i);
      }
    }
  }

  void add_symbol(SymbolKind kind, std::string_view word, TSNode name, TSNode item,
                  std::uint32_t end) {
    facts_.symbols.push_back({kind, std::string(tree_.text(name)),
                              std::string(word) + head_of(tree_, ts_node_start_byte(item), end),
                              tree_.line(name)});
  }

  void add_type(TSNode item) {
    const auto name = field_of(item, "name");
    const auto type = field_of(item, "type");
    if (!name || !type) return;
    declare(*name);
    const bool structure = type_of(*type) == "struct_type";
    if (!structure && type_of(*type) != "interface_type") return;
    const std::string_view word = structure ? "struct" : "interface";
    add_symbol(structure ? SymbolKind::kClass : SymbolKind::kInterface, "type ", *name, item,
               ts_node_start_byte(*type) + static_cast<std::uint32_t>(word.size()));
  }

  void add_values(TSNode node) {
    const bool constant = type_of(node) == "const_declaration";
    for_each_child(node, [&](TSNode child, std::string_view) {
      if (type_of(child) != "var_spec_list") return add_value(child, constant);
      for_each_child(child, [&](TSNode item, std::string_view) { add_value(item, constant); });
    });
  }

  void add_value(TSNode item, bool constant) {
    const auto value = field_of(item, "value");
    const std::uint32_t end = value ? ts_node_start_byte(*value) : ts_node_end_byte(item);
    for_each_child(item, [&](TSNode name, std::string_view field) {
      if (field != "name" || type_of(name) != "identifier" || tree_.text(name) == "_") return;
      declare(name);
      add_symbol(constant ? SymbolKind::kConstant : SymbolKind::kVariable,
                 constant ? "const " : "var ", name, item, end);
    });
  }

  const SourceTree& tree_;
  FileFacts facts_;
  GoNames names_;
  std::vector<std::string_view> aliases_;  // of each import, "" for none
  std::vector<TSNode> declarations_;
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& go_language() {
  static const Language language{.name = "go",
                                 .files = kFiles,
                                 .grammar = tree_sitter_go,
                                 .query = go_query,
                                 .captures = kCaptures,
                                 .lexis = &kLexis,
                                 .keywords = {},
                                 .read = read,
                                 .resolver = make_go_resolver,
                                 .code = &go_code,
                                 .conventions = &go::kConventions};
  return language;
}

}  // namespace kestrix::index
