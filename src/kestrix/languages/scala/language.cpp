#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>
#include <utility>

#include "kestrix/languages/jvm/resolver.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/scala/code.h"
#include "kestrix/languages/scala/conventions.h"
#include "kestrix/languages/scala/query.scm.h"
#include "kestrix/languages/scala/text.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 3> kFiles = {".scala", ".sc", ".sbt"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 7> kCaptures = {"class",  "declaration", "interface", "name",
                                                       "object", "package",     "value"};
// Words behind which a dotted name is no use of it.
constexpr std::array<std::string_view, 2> kStatements = {"import", "package"};
constexpr std::string_view kRoot = "_root_";
constexpr std::size_t kLongestPath = 200;  // what is longer names nothing
// Words that are followed by a bracket without being called.
constexpr std::array<std::string_view, 14> kKeywords = {
    "case", "catch", "class", "do",     "else",  "extends", "for",
    "if",   "match", "new",   "return", "super", "this",    "while"};

bool is_called(std::string_view after) { return after.starts_with('(') || after.starts_with('['); }

constexpr packaged::CallWords kCallWords = {
    .keywords = kKeywords, .declares = "def", .is_called = is_called};

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    facts_.uses = own_.foreign_uses(tree_, packaged::Constants::kCount);
    packaged::add_calls(tree_, own_, kCallWords, facts_);
    packaged::add_qualified_names(tree_, kStatements,
                                  static_cast<std::uint16_t>(JvmImport::kInCode), facts_);
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  void take(const Match& match) {
    if (const auto package = match.node("package")) {
      // One clause behind another names a package in that of the first.
      std::string inner = packaged::dotted(tree_, *package);
      if (facts_.package.size() + inner.size() > kLongestPath) return;
      if (!facts_.package.empty()) facts_.package += '.';
      facts_.package += inner;
    } else if (const auto object = match.node("object")) {
      declare_package_object(*object);
    } else if (const auto import = match.node("import")) {
      read_imports(*import);
    } else if (const auto name = match.node("name")) {
      declare(match, *name);
      add_symbol(match, *name);
    }
  }

  // What it holds belongs to the package that it is named after.
  void declare_package_object(TSNode name) {
    const std::string prefix = std::string(tree_.text(name)) + ".";
    if (prefix.size() > kLongestPath) return;
    const TSNode body = ts_node_child_by_field_id(ts_node_parent(name), body_field());
    for_each_child(body, [&](TSNode child, std::string_view) {
      for_each_child(child, [&](TSNode part, std::string_view field) {
        const bool named = field == "name" || field == "pattern";
        if (!named || ts_node_child_count(part) > 0) return;
        if (packaged::has_modifier(tree_, child, "private")) return;
        facts_.declares.push_back(prefix + std::string(tree_.text(part)));
        own_.add(tree_.text(part));
      });
    });
  }

  static TSFieldId body_field() {
    static const TSFieldId id = ts_language_field_id_for_name(tree_sitter_scala(), "body", 4);
    return id;
  }

  // "import a.b, c.{D, E => F}"
  void read_imports(TSNode statement) {
    std::string path;
    bool listed = false;
    const auto end_path = [&] {
      if (!path.empty() && !listed) add_import(statement, path, last_part(path));
      path.clear();
      listed = false;
    };
    TreeCursor cursor(statement);
    for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
      const TSNode child = cursor.node();
      const std::string_view type = type_of(child);
      if (type == ",") {
        end_path();
      } else if (cursor.field() == "path" && type != ".") {
        if (!path.empty()) path += '.';
        path += packaged::dotted(tree_, child);
        if (path == kRoot) path.clear();
      } else if (type == "namespace_selectors") {
        for_each_child(child, [&](TSNode selected, std::string_view) {
          add_selected(statement, path, selected);
        });
        listed = true;
      } else if (type == "namespace_wildcard" || type.ends_with("renamed_identifier")) {
        add_selected(statement, path, child);
        listed = true;
      }
    }
    end_path();
  }

  static std::string_view last_part(std::string_view path) {
    return path.substr(path.rfind('.') + 1);
  }

  void add_selected(TSNode statement, const std::string& path, TSNode selected) {
    if (path.size() > kLongestPath) return;
    const std::string_view type = type_of(selected);
    if (type == "namespace_wildcard") return add_all(statement, path);
    if (type == "identifier") {
      const std::string name = packaged::dotted(tree_, selected);
      return add_import(statement, path + "." + name, name);
    }
    if (!type.ends_with("renamed_identifier")) return;
    const TSNode name = ts_node_named_child(selected, 0);
    const TSNode alias = ts_node_named_child(selected, 1);
    if (ts_node_is_null(alias) || type_of(alias) == "wildcard") return;
    add_import(statement, path + "." + packaged::dotted(tree_, name),
               packaged::dotted(tree_, alias));
  }

  void add_import(TSNode statement, std::string module, std::string_view bound) {
    if (module.size() > kLongestPath) return;
    const std::string_view name = *names_.emplace(bound).first;
    own_.add(name);
    facts_.imports.push_back({.module = std::move(module),
                              .form = static_cast<std::uint16_t>(JvmImport::kName),
                              .uses = tree_.uses(name),
                              .line = SourceTree::line(statement),
                              .local = std::string(name)});
  }

  void add_all(TSNode statement, const std::string& path) {
    facts_.imports.push_back({.module = path,
                              .form = static_cast<std::uint16_t>(JvmImport::kEverything),
                              .line = SourceTree::line(statement)});
  }

  void declare(const Match& match, TSNode node) {
    const std::string_view name = tree_.text(node);
    const TSNode declaration = match.node("declaration").value_or(node);
    if (match.nesting() > 0) {
      if (type_of(declaration) != "function_definition") own_.add_nested(name);
      return;
    }
    own_.add(name);
    if (!packaged::has_modifier(tree_, declaration, "private")) {
      facts_.declares.emplace_back(name);
    }
  }

  void add_symbol(const Match& match, TSNode name) {
    if (const auto value = match.node("value")) {
      add_value(*value, name);
    } else if (const auto type = match.node("class")) {
      add_type(SymbolKind::kClass, *type, name);
    } else if (const auto interface = match.node("interface")) {
      add_type(SymbolKind::kInterface, *interface, name);
    }
  }

  void add_value(TSNode declaration, TSNode name) {
    std::uint32_t end = ts_node_end_byte(name);
    for_each_child(declaration, [&](TSNode child, std::string_view field) {
      if (field == "type") end = ts_node_end_byte(child);
    });
    const bool constant = packaged::is_type_like(tree_.text(name));
    facts_.symbols.push_back(packaged::symbol(
        tree_, constant ? SymbolKind::kConstant : SymbolKind::kVariable, declaration, name, end));
  }

  void add_type(SymbolKind kind, TSNode declaration, TSNode name) {
    const TSNode body = ts_node_child_by_field_id(declaration, body_field());
    const std::uint32_t end =
        ts_node_is_null(body) ? ts_node_end_byte(declaration) : ts_node_start_byte(body);
    facts_.symbols.push_back(packaged::symbol(tree_, kind, declaration, name, end));
  }

  const SourceTree& tree_;
  FileFacts facts_;
  packaged::OwnNames own_;
  std::unordered_set<std::string, SeededHash> names_;  // that imports bind; what own_ views
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& scala_language() {
  static const Language language{.name = "scala",
                                 .files = kFiles,
                                 .grammar = tree_sitter_scala,
                                 .query = scala_query,
                                 .captures = kCaptures,
                                 .lexis = &scala::lexis(),
                                 .keywords = {},
                                 .read = read,
                                 .resolver = make_jvm_resolver,
                                 .code = &scala_code,
                                 .mask = scala::mask,
                                 .conventions = &scala::kConventions};
  return language;
}

}  // namespace kestrix::index
