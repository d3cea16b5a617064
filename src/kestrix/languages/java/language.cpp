#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <array>
#include <string>

#include "kestrix/languages/java/code.h"
#include "kestrix/languages/java/query.scm.h"
#include "kestrix/languages/jvm/conventions.h"
#include "kestrix/languages/jvm/resolver.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kFiles = {".java"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 7> kCaptures = {"body",      "class", "constant", "field",
                                                       "interface", "name",  "package"};
// Words behind which a dotted name is no use of it.
constexpr std::array<std::string_view, 3> kStatements = {"import", "module", "package"};
constexpr std::array<std::string_view, 1> kComments = {"//"};
constexpr std::array kStrings = {
    StringStyle{.open = R"(""")", .close = R"(""")", .multiline = true},
    StringStyle{.open = "\"", .close = "\""},
};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "/*",
                          .block_close = "*/",
                          .strings = kStrings,
                          .char_literals = true};

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    facts_.uses = own_.foreign_uses(tree_, packaged::Constants::kIgnore);
    packaged::add_qualified_names(tree_, kStatements,
                                  static_cast<std::uint16_t>(JvmImport::kInCode), facts_);
    packaged::sort_declared(facts_);
    return std::move(facts_);
  }

 private:
  void take(const Match& match) {
    if (const auto package = match.node("package")) {
      read_package(*package);
    } else if (const auto import = match.node("import")) {
      read_import(*import);
    } else if (const auto name = match.node("name")) {
      read_declaration(match, *name);
    }
  }

  void read_package(TSNode package) {
    for_each_child(package, [this](TSNode child, std::string_view) {
      if (type_of(child).ends_with("identifier")) facts_.package = packaged::dotted(tree_, child);
    });
  }

  void read_import(TSNode statement) {
    ImportFact import{.line = SourceTree::line(statement)};
    std::string_view bound;
    for_each_child(statement, [&](TSNode child, std::string_view) {
      if (type_of(child) == "asterisk") {
        import.form = static_cast<std::uint16_t>(JvmImport::kEverything);
      } else if (type_of(child).ends_with("identifier")) {
        import.module = packaged::dotted(tree_, child);
        bound = tree_.text(field_of(child, "name").value_or(child));
      }
    });
    if (import.form == static_cast<std::uint16_t>(JvmImport::kName)) {
      import.local = bound;
      import.uses = tree_.uses(bound);
      own_.add(bound);
    }
    facts_.imports.push_back(std::move(import));
  }

  void read_declaration(const Match& match, TSNode name) {
    if (const auto field = match.node("field")) {
      const bool constant = packaged::has_modifier(tree_, *field, "final");
      add_value(constant ? SymbolKind::kConstant : SymbolKind::kVariable, *field, name);
    } else if (const auto constant = match.node("constant")) {
      add_value(SymbolKind::kConstant, *constant, name);
    } else if (const auto type = match.node("class")) {
      add_type(SymbolKind::kClass, match, *type, name);
    } else if (const auto interface = match.node("interface")) {
      add_type(SymbolKind::kInterface, match, *interface, name);
    }
  }

  void add_value(SymbolKind kind, TSNode declaration, TSNode name) {
    facts_.symbols.push_back(
        packaged::symbol(tree_, kind, declaration, name, ts_node_end_byte(name)));
    if (!is_upper_case(tree_.text(name))) return;
    facts_.symbols.back().kind = SymbolKind::kConstant;
    own_.add(tree_.text(name));
  }

  void add_type(SymbolKind kind, const Match& match, TSNode declaration, TSNode name) {
    const std::uint32_t end = ts_node_start_byte(match.node("body").value_or(declaration));
    facts_.symbols.push_back(packaged::symbol(tree_, kind, declaration, name, end));
    if (match.nesting() > 0) return own_.add_nested(tree_.text(name));
    own_.add(tree_.text(name));
    own_.add_head(tree_, ts_node_start_byte(declaration), end);
    facts_.declares.emplace_back(tree_.text(name));
  }

  const SourceTree& tree_;
  FileFacts facts_;
  packaged::OwnNames own_;
};

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace

const Language& java_language() {
  static const Language language{.name = "java",
                                 .files = kFiles,
                                 .grammar = tree_sitter_java,
                                 .query = java_query,
                                 .captures = kCaptures,
                                 .lexis = &kLexis,
                                 .keywords = {},
                                 .read = read,
                                 .resolver = make_jvm_resolver,
                                 .code = &java_code,
                                 .conventions = &jvm::kConventions};
  return language;
}

}  // namespace kestrix::index
