#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/languages/csharp/code.h"
#include "kestrix/languages/csharp/conventions.h"
#include "kestrix/languages/csharp/directives.h"
#include "kestrix/languages/csharp/names.h"
#include "kestrix/languages/csharp/query.scm.h"
#include "kestrix/languages/csharp/resolver.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 2> kFiles = {".cs", ".csx"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 11> kCaptures = {
    "accessors", "body", "class",     "delegate", "field", "interface",
    "method",    "name", "namespace", "property", "using"};
constexpr std::size_t kLongestSpace = 1000;  // bytes of a namespace's name

bool is_automatic(const SourceTree& tree, TSNode accessors) {
  return tree.text(accessors).find_first_of("{=", 1) == std::string_view::npos;
}

std::size_t parameters_of(TSNode type) {
  std::size_t arity = 0;
  for_each_child(type, [&](TSNode child, std::string_view) {
    if (type_of(child) == "type_parameter_list") arity = csharp::arity_of(child);
  });
  return arity;
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    add_uses(csharp::used_names(tree_, own_));
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  struct Space {
    std::string name;
    std::uint32_t end;
  };

  void take(const Match& match) {
    if (const auto space = match.node("namespace")) {
      enter(*space, *match.node("name"));
    } else if (const auto directive = match.node("using")) {
      read_using(*directive);
    } else if (const auto method = match.node("method")) {
      declare(*method, class_around(*method) + kMethodMark +
                           std::string(csharp::plain(tree_.text(*method))));
    } else if (const auto name = match.node("name")) {
      read_declaration(match, *name);
    }
  }

  std::string class_around(TSNode method) const {
    for (TSNode up = ts_node_parent(method); !ts_node_is_null(up); up = ts_node_parent(up)) {
      const auto name = field_of(up, "name");
      if (type_of(up) == "class_declaration" && name)
        return std::string(csharp::plain(tree_.text(*name)));
    }
    return {};
  }

  // A namespace with a body ends with it, one without lasts to the end of the file.
  void enter(TSNode statement, TSNode name) {
    const bool block = type_of(statement) == "namespace_declaration";
    const std::string own = packaged::dotted(tree_, name);
    const std::string& around = space_at(ts_node_start_byte(name));
    std::string full = around.empty() ? own : around + "." + own;
    if (full.size() > kLongestSpace) full = around;
    spaces_.push_back({std::move(full), block ? ts_node_end_byte(statement) : UINT32_MAX});
    if (facts_.package.empty()) facts_.package = spaces_.back().name;
  }

  const std::string& space_at(std::uint32_t at) {
    static const std::string none;
    while (!spaces_.empty() && spaces_.back().end <= at) spaces_.pop_back();
    return spaces_.empty() ? none : spaces_.back().name;
  }

  void read_using(TSNode directive) {
    ImportFact import{.line = SourceTree::line(directive)};
    auto form = CSharpImport::kNamespace;
    bool global = false;
    TreeCursor cursor(directive);
    for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
      const std::string_view type = type_of(cursor.node());
      if (type == "global") {
        global = true;
      } else if (type == "static") {
        form = CSharpImport::kStatic;
      } else if (cursor.field() == "name") {
        form = CSharpImport::kAlias;
        import.names.push_back({.name = std::string(csharp::plain(tree_.text(cursor.node())))});
      } else if (ts_node_is_named(cursor.node())) {
        import.module = module_of(cursor.node());
      }
    }
    if (import.module.empty()) return;
    import.form = static_cast<std::uint16_t>(form);
    if (global) import.form += static_cast<std::uint16_t>(CSharpImport::kGlobalNamespace);
    import.level = space_at(ts_node_start_byte(directive)).empty() ? 0 : 1;
    facts_.imports.push_back(std::move(import));
  }

  // The last part alone may have type arguments.
  std::string module_of(TSNode name) {
    std::string text = packaged::dotted(tree_, name);
    if (text.starts_with("global::")) text.erase(0, std::string_view("global::").size());
    const std::size_t arguments = text.find('<');
    const bool named = type_of(name).ends_with("name") || type_of(name) == "identifier";
    if (!named) return {};  // an array, a tuple …
    if (arguments == std::string::npos) return text;
    const auto commas = std::ranges::count(text, ',');
    return csharp::with_arity(text.substr(0, arguments), static_cast<std::size_t>(commas) + 1);
  }

  void read_declaration(const Match& match, TSNode name) {
    if (const auto field = match.node("field")) {
      add_value(*field, name);
    } else if (const auto property = match.node("property")) {
      if (is_automatic(tree_, *match.node("accessors"))) add_value(*property, name);
    } else if (const auto type = match.node("class")) {
      add_type(SymbolKind::kClass, match, *type, name);
    } else if (const auto interface = match.node("interface")) {
      add_type(SymbolKind::kInterface, match, *interface, name);
    } else if (const auto delegate = match.node("delegate")) {
      declare_type(match, *delegate, name);
    }
  }

  void add_value(TSNode declaration, TSNode name) {
    const bool fixed = packaged::has_modifier(tree_, declaration, "const") ||
                       (packaged::has_modifier(tree_, declaration, "static") &&
                        packaged::has_modifier(tree_, declaration, "readonly"));
    const bool constant = fixed || is_upper_case(tree_.text(name));
    add_symbol(constant ? SymbolKind::kConstant : SymbolKind::kVariable, declaration, name,
               ts_node_end_byte(name));
  }

  void add_symbol(SymbolKind kind, TSNode declaration, TSNode name, std::uint32_t end) {
    facts_.symbols.push_back(packaged::symbol(tree_, kind, declaration, name, end));
    facts_.symbols.back().name = csharp::plain(tree_.text(name));
  }

  void add_type(SymbolKind kind, const Match& match, TSNode declaration, TSNode name) {
    const auto body = match.node("body");
    const std::uint32_t end = body ? ts_node_start_byte(*body) : ts_node_end_byte(declaration);
    add_symbol(kind, declaration, name, end);
    declare_type(match, declaration, name);
    if (body && match.nesting() == 0) outer_ = {ts_node_start_byte(*body), ts_node_end_byte(*body)};
  }

  void declare_type(const Match& match, TSNode declaration, TSNode name) {
    std::string full =
        csharp::with_arity(csharp::plain(tree_.text(name)), parameters_of(declaration));
    if (match.nesting() > 0) return own_.add_nested(std::move(full), outer_.first, outer_.second);
    declare(name, full, packaged::has_modifier(tree_, declaration, "partial"));
    own_.add(std::move(full));
  }

  void declare(TSNode name, const std::string& own, bool partial = false) {
    const std::string& space = space_at(ts_node_start_byte(name));
    std::string full(partial ? kPartial : std::string_view());
    if (!space.empty()) full += space + ".";
    facts_.declares.push_back(full + own);
  }

  void add_uses(csharp::UsedNames used) {
    // What each alias stands for.
    std::map<std::string, std::string, std::less<>> aliases;
    for (ImportFact& import : facts_.imports) {
      if (import.names.empty()) continue;
      const std::string& alias = import.names.front().name;
      const auto uses = used.names.extract(alias);
      if (!uses.empty()) import.uses = uses.mapped();
      aliases.emplace(alias, import.module);
    }
    for (auto& [name, count] : used.names) facts_.uses.push_back({name, count});
    for (const auto& [name, chain] : used.chains) {
      const std::string_view first = std::string_view(name).substr(0, name.find('.'));
      const auto alias = aliases.find(first);
      const bool known = alias != aliases.end();
      facts_.imports.push_back({.module = known ? alias->second + name.substr(first.size()) : name,
                                .form = static_cast<std::uint16_t>(CSharpImport::kInCode),
                                .uses = chain.uses,
                                .line = chain.line,
                                .local = name});
    }
  }

  const SourceTree& tree_;
  FileFacts facts_;
  csharp::OwnTypes own_;
  std::vector<Space> spaces_;                      // around what is being read
  std::pair<std::uint32_t, std::uint32_t> outer_;  // the body of the last type in no other one
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& csharp_language() {
  static const Language language{.name = "csharp",
                                 .files = kFiles,
                                 .grammar = tree_sitter_c_sharp,
                                 .query = csharp_query,
                                 .captures = kCaptures,
                                 .lexis = &csharp::lexis(),
                                 .keywords = {},
                                 .read = read,
                                 .resolver = make_csharp_resolver,
                                 .code = &csharp_code,
                                 .mask = csharp::mask,
                                 .conventions = &csharp::kConventions};
  return language;
}

}  // namespace kestrix::index
