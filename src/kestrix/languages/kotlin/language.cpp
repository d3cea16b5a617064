#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "kestrix/languages/jvm/conventions.h"
#include "kestrix/languages/jvm/resolver.h"
#include "kestrix/languages/kotlin/code.h"
#include "kestrix/languages/kotlin/query.scm.h"
#include "kestrix/languages/kotlin/text.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 2> kFiles = {".kt", ".kts"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 8> kCaptures = {
    "class", "declaration", "facade", "head", "interface", "name", "package", "value"};
// Words behind which a dotted name is no use of it.
constexpr std::array<std::string_view, 2> kStatements = {"import", "package"};
// Words that are followed by a bracket without being called.
constexpr std::array<std::string_view, 19> kKeywords = {
    "as", "by",   "catch", "constructor", "do",     "else", "finally", "for",  "fun",  "if",
    "in", "init", "is",    "object",      "return", "try",  "val",     "when", "while"};

bool is_called(std::string_view name, std::string_view after) {
  if (name == "get" && after.starts_with("()")) return false;  // of a property
  const std::size_t at = after.find_first_not_of(' ');
  return at != after.npos && (after[at] == '(' || after[at] == '{' || after[at] == '<');
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree)
      : tree_(tree), code_(tree.text()), broken_(ts_node_has_error(tree.root())) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    if (broken_) add_unseen_types();
    facts_.uses = own_.foreign_uses(tree_, packaged::Constants::kCount);
    read_calls();
    packaged::add_qualified_names(tree_, kStatements,
                                  static_cast<std::uint16_t>(JvmImport::kInCode), facts_);
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  void take(const Match& match) {
    if (const auto facade = match.node("facade")) {
      facts_.declares.emplace_back(tree_.text(*facade));
    } else if (const auto package = match.node("package")) {
      read_package(*package);
    } else if (const auto import = match.node("import")) {
      read_import(*import);
    } else if (const auto name = match.node("name")) {
      declare(match, *name);
      add_symbol(match, *name);
    }
  }

  void read_package(TSNode package) {
    for_each_child(package, [this](TSNode child, std::string_view) {
      if (type_of(child) == "qualified_identifier") {
        facts_.package = packaged::dotted(tree_, child);
      }
    });
  }

  void read_import(TSNode header) {
    ImportFact import{.line = SourceTree::line(header)};
    imports_end_ = ts_node_end_byte(header);
    std::string_view bound;
    TreeCursor cursor(header);
    for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
      const TSNode child = cursor.node();
      if (type_of(child) == "qualified_identifier") {
        import.module = packaged::dotted(tree_, child);
        bound = tree_.text(child);
        bound = bound.substr(bound.rfind('.') + 1);
      } else if (type_of(child) == "identifier") {
        bound = tree_.text(child);  // behind "as"
      } else if (type_of(child) == "*") {
        import.form = static_cast<std::uint16_t>(JvmImport::kEverything);
      }
    }
    if (import.form == static_cast<std::uint16_t>(JvmImport::kName)) bind(import, bound);
    facts_.imports.push_back(std::move(import));
  }

  void bind(ImportFact& import, std::string_view name) {
    import.local = name;
    import.uses = tree_.uses(name);
    own_.add(name);
    if (!packaged::is_type_like(name)) functions_.emplace(name, facts_.imports.size());
  }

  void declare(const Match& match, TSNode node) {
    const std::string_view name = tree_.text(node);
    const TSNode declaration = match.node("declaration").value_or(node);
    if (match.nesting() > 0 || is_inside(declaration)) {
      // A function that is named after a type of the package does not hide it.
      if (type_of(declaration) != "function_declaration") own_.add_nested(name);
      return;
    }
    own_.add(name);
    declare(name, packaged::has_modifier(tree_, declaration, "private"),
            packaged::has_modifier(tree_, declaration, "actual"));
  }

  void declare(std::string_view name, bool is_private, bool actual) {
    if (is_private) return;
    facts_.declares.push_back((actual ? std::string(kActual) : "") + std::string(name));
  }

  static bool has_word(std::string_view head, std::string_view word) {
    WordScanner scanner(head, kotlin::lexis());
    for (Word found; scanner.next(found);) {
      if (found.text == word) return true;
    }
    return false;
  }

  // Where the grammar gives a type up, its members seem to stand outside of it.
  bool is_inside(TSNode declaration) {
    return broken_ && code_.depth_at(ts_node_start_byte(declaration)) > 0;
  }

  // Where the grammar gives a file up, its types are still worth having.
  void add_unseen_types() {
    for (const kotlin::TypeText& type : kotlin::top_types(tree_.text())) {
      if (own_.contains(type.name)) continue;
      own_.add(type.name);
      declare(type.name, has_word(type.head, "private"), has_word(type.head, "actual"));
      const auto start = static_cast<std::uint32_t>(type.head.data() - tree_.text().data());
      const auto end = start + static_cast<std::uint32_t>(type.head.size());
      facts_.symbols.push_back({type.interface ? SymbolKind::kInterface : SymbolKind::kClass,
                                std::string(type.name), head_of(tree_, start, end), type.line});
    }
    std::ranges::stable_sort(facts_.symbols, {}, &SymbolFact::line);
  }

  void add_symbol(const Match& match, TSNode name) {
    if (const auto value = match.node("value")) {
      add_value(*value, name, ts_node_end_byte(match.node("head").value_or(name)));
    } else if (const auto type = match.node("class")) {
      add_type(SymbolKind::kClass, *type, name);
    } else if (const auto interface = match.node("interface")) {
      add_type(SymbolKind::kInterface, *interface, name);
    }
  }

  void add_value(TSNode declaration, TSNode name, std::uint32_t end) {
    const bool constant =
        is_upper_case(tree_.text(name)) || packaged::has_modifier(tree_, declaration, "const");
    facts_.symbols.push_back(packaged::symbol(
        tree_, constant ? SymbolKind::kConstant : SymbolKind::kVariable, declaration, name, end));
  }

  void add_type(SymbolKind kind, TSNode declaration, TSNode name) {
    std::uint32_t end = ts_node_end_byte(declaration);
    for_each_child(declaration, [&](TSNode child, std::string_view) {
      if (type_of(child).ends_with("class_body")) end = ts_node_start_byte(child);
    });
    facts_.symbols.push_back(packaged::symbol(tree_, kind, declaration, name, end));
  }

  // What the words alone do not tell: extension functions are used as members, and a wildcard or
  // the package may bring in functions, known by their being called.
  void read_calls() {
    std::map<std::string_view, std::uint32_t> calls;
    std::unordered_set<std::string_view, SeededHash> own(kKeywords.begin(), kKeywords.end());
    WordScanner scanner(tree_.text(), tree_.lexis());
    std::string_view before;
    for (Word word; scanner.next(word); before = word.text) {
      if (word.offset < imports_end_ || packaged::is_type_like(word.text)) continue;
      const auto function = functions_.find(word.text);
      if (word.member && function != functions_.end()) ++facts_.imports[function->second].uses;
      // A name in back quotes is no word.
      if (before == "fun" && word.text.data() == before.data() + before.size() + 1) {
        own.insert(word.text);
      }
      const std::string_view after = tree_.text().substr(word.offset + word.text.size());
      if (is_called(word.text, after)) ++calls[word.text];
    }
    for (const auto& [name, count] : calls) {
      if (own_.contains(name) || own.contains(name)) continue;
      facts_.uses.push_back({std::string(name), count});
    }
  }

  const SourceTree& tree_;
  kotlin::Code code_;
  bool broken_;  // the grammar could not read all of it
  FileFacts facts_;
  packaged::OwnNames own_;
  std::unordered_map<std::string_view, std::size_t, SeededHash>
      functions_;  // to the place of their import
  std::uint32_t imports_end_ = 0;
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& kotlin_language() {
  static const Language language{.name = "kotlin",
                                 .files = kFiles,
                                 .grammar = tree_sitter_kotlin,
                                 .query = kotlin_query,
                                 .captures = kCaptures,
                                 .lexis = &kotlin::lexis(),
                                 .keywords = {},
                                 .read = read,
                                 .resolver = make_jvm_resolver,
                                 .code = &kotlin_code,
                                 .mask = kotlin::mask,
                                 .conventions = &jvm::kConventions};
  return language;
}

}  // namespace kestrix::index
