#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/swift/code.h"
#include "kestrix/languages/swift/conventions.h"
#include "kestrix/languages/swift/query.scm.h"
#include "kestrix/languages/swift/resolver.h"
#include "kestrix/languages/swift/text.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kFiles = {".swift"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 6> kCaptures = {"class",     "declaration", "extended",
                                                       "interface", "name",        "value"};
// Words that are followed by a bracket without being called.
constexpr auto kKeywords = std::to_array<std::string_view>(
    {"case",  "catch",    "fileprivate", "for",     "func",    "get",    "guard", "if",
     "init",  "internal", "package",     "private", "public",  "return", "self",  "set",
     "super", "switch",   "throw",       "throws",  "unowned", "while"});

bool is_called(std::string_view after) { return after.starts_with('('); }

constexpr packaged::CallWords kCallWords = {
    .keywords = kKeywords, .declares = "func", .is_called = is_called};

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    facts_.uses = own_.foreign_uses(tree_, packaged::Constants::kCount);
    packaged::add_calls(tree_, own_, kCallWords, facts_);
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  void take(const Match& match) {
    if (const auto import = match.node("import")) {
      read_import(*import);
    } else if (const auto extended = match.node("extended")) {
      const std::string_view name = tree_.text(*extended);
      if (match.nesting() == 0) {
        facts_.declares.push_back(std::string(kExtended) +
                                  std::string(name.substr(0, name.find_first_of(".<"))));
      }
    } else if (const auto name = match.node("name")) {
      declare(match, *name);
      add_symbol(match, *name);
    }
  }

  // "import struct Module.Name": of a declaration, its module is told first.
  void read_import(TSNode statement) {
    ImportFact import{.form = static_cast<std::uint16_t>(SwiftImport::kModule),
                      .line = SourceTree::line(statement)};
    for_each_child(statement, [&](TSNode child, std::string_view) {
      if (type_of(child) == "identifier") {
        const std::string path = packaged::dotted(tree_, child);
        import.module = path.substr(0, path.find('.'));
      } else if (type_of(child) == "modifiers" &&
                 tree_.text(child).find("@_exported") != std::string_view::npos) {
        import.form = static_cast<std::uint16_t>(SwiftImport::kReexport);
      }
    });
    if (import.module.empty()) return;
    import.uses = tree_.uses(import.module);
    facts_.imports.push_back(std::move(import));
  }

  void declare(const Match& match, TSNode node) {
    const std::string_view name = tree_.text(node);
    const TSNode declaration = match.node("declaration").value_or(node);
    if (match.nesting() > 0) {
      if (type_of(declaration) != "function_declaration") own_.add_nested(name);
      return;
    }
    own_.add(name);
    const bool hidden = packaged::has_modifier(tree_, declaration, "private") ||
                        packaged::has_modifier(tree_, declaration, "fileprivate");
    if (!hidden) facts_.declares.emplace_back(name);
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

  // Up to the type that it is given, if any.
  void add_value(TSNode declaration, TSNode name) {
    std::uint32_t end = ts_node_end_byte(name);
    for_each_child(declaration, [&](TSNode child, std::string_view) {
      if (type_of(child) == "type_annotation") end = ts_node_end_byte(child);
    });
    facts_.symbols.push_back(packaged::symbol(
        tree_, is_upper_case(tree_.text(name)) ? SymbolKind::kConstant : SymbolKind::kVariable,
        declaration, name, end));
  }

  void add_type(SymbolKind kind, TSNode declaration, TSNode name) {
    const auto body = field_of(declaration, "body");
    const std::uint32_t end = body ? ts_node_start_byte(*body) : ts_node_end_byte(declaration);
    facts_.symbols.push_back(packaged::symbol(tree_, kind, declaration, name, end));
  }

  const SourceTree& tree_;
  FileFacts facts_;
  packaged::OwnNames own_;
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& swift_language() {
  static const Language language{.name = "swift",
                                 .files = kFiles,
                                 .grammar = tree_sitter_swift,
                                 .query = swift_query,
                                 .captures = kCaptures,
                                 .lexis = &swift::lexis(),
                                 .keywords = {},
                                 .read = read,
                                 .resolver = make_swift_resolver,
                                 .code = &swift_code,
                                 .mask = swift::mask,
                                 .conventions = &swift::kConventions};
  return language;
}

}  // namespace kestrix::index
