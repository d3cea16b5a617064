#include "kestrix/languages/c_family/reader.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/languages/c_family/declarators.h"
#include "kestrix/languages/c_family/includes.h"
#include "kestrix/languages/c_family/uses.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 1> kComments = {"//"};
constexpr std::array kStrings = {StringStyle{.open = "\"", .close = "\""}};
constexpr Lexis kLexis = {.line_comments = kComments,
                          .block_open = "/*",
                          .block_close = "*/",
                          .strings = kStrings,
                          .char_literals = true};

bool is_name(std::string_view type) {
  return type == "identifier" || type == "field_identifier" || type == "type_identifier";
}

std::optional<Declarator> declared_by(TSNode node) {
  auto declarator = declarator_of(node);
  if (declarator && !is_name(type_of(declarator->name))) declarator.reset();
  return declarator;
}

bool is_type_with_body(TSNode node) {
  const std::string_view type = type_of(node);
  return (type == "struct_specifier" || type == "class_specifier" || type == "union_specifier" ||
          type == "enum_specifier") &&
         field_of(node, "body");
}

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { take(match); });
    facts_.imports = includes_of(tree_);
    sort_distinct(facts_.declares);
    facts_.uses = names_used(tree_.text(), tree_.lexis(), facts_.declares);
    return std::move(facts_);
  }

 private:
  // A type whose body is being read.
  struct Open {
    std::uint32_t end;
    std::optional<std::size_t> symbol;  // none for a type without a name
  };

  void take(const Match& match) {
    nested_ = match.nesting() > 0;
    if (const auto type = match.node("type")) {
      add_type(*type);
    } else if (const auto typedef_node = match.node("typedef")) {
      add_typedef(*typedef_node);
    } else if (const auto declaration = match.node("declaration")) {
      add_declaration(*declaration);
    } else if (const auto function = match.node("function")) {
      if (const auto declarator = field_of(*function, "declarator")) declare(*declarator);
    } else if (const auto macro = match.node("macro")) {
      declare(*macro);
    } else if (const auto alias = match.node("alias")) {
      declare(*alias);
    } else if (const auto constant = match.node("constant")) {
      const TSNode name = *match.node("name");
      add_symbol(SymbolKind::kConstant, name, *constant, ts_node_end_byte(name));
    }
  }

  void declare(TSNode declarator) {
    if (nested_) return;
    if (const auto declared = declared_by(declarator)) {
      facts_.declares.emplace_back(tree_.text(declared->name));
    }
  }

  void add_type(TSNode node) {
    const auto body = field_of(node, "body");
    const auto name = field_of(node, "name");
    Open open{ts_node_end_byte(node), std::nullopt};
    if (name && body && is_name(type_of(*name))) {
      open.symbol = facts_.symbols.size();
      add_symbol(SymbolKind::kClass, *name, node, ts_node_start_byte(*body));
      declare(*name);
    }
    if (type_of(node) != "enum_specifier") open_.push_back(open);
  }

  void add_symbol(SymbolKind kind, TSNode name, TSNode declaration, std::uint32_t end) {
    facts_.symbols.push_back({kind, std::string(tree_.text(name)),
                              head_of(tree_, ts_node_start_byte(declaration), end),
                              SourceTree::line(declaration)});
  }

  void add_typedef(TSNode node) {
    const auto type = field_of(node, "type");
    const bool defines = type && is_type_with_body(*type);
    if (defines && field_of(*type, "name")) add_type(*type);
    for_each_child(node, [&](TSNode child, std::string_view field) {
      if (field != "declarator") return;
      declare(child);
      if (!defines || type_of(child) != "type_identifier") return;
      const auto tag = field_of(*type, "name");
      if (tag && tree_.text(*tag) == tree_.text(child)) return;
      add_symbol(SymbolKind::kClass, child, node, ts_node_start_byte(*field_of(*type, "body")));
    });
  }

  void add_declaration(TSNode node) {
    bool constant = false;
    bool fixed = false;      // static or the like: a class holds one of it
    bool elsewhere = false;  // extern: defined in another place
    for_each_child(node, [&](TSNode child, std::string_view field) {
      const std::string_view type = type_of(child);
      if (type == "type_qualifier" || type == "storage_class_specifier") {
        const std::string_view word = tree_.text(child);
        constant |= word == "const" || word == "constexpr" || word == "constinit";
        fixed |= word == "static" || word == "constexpr" || word == "inline";
        elsewhere |= word == "extern";
      } else if (field == "type" && is_type_with_body(child)) {
        add_type(child);
      } else if (field == "declarator") {
        add_declarator(node, child, constant, !nested_ || fixed, elsewhere);
      }
    });
  }

  void add_declarator(TSNode declaration, TSNode declarator, bool constant, bool shared,
                      bool elsewhere) {
    const auto declared = declared_by(declarator);
    if (!declared) return;
    if (!nested_) facts_.declares.emplace_back(tree_.text(declared->name));
    const auto value = declared->value ? declared->value : field_of(declaration, "default_value");
    if (declared->function) {
      if (value && tree_.text(*value) == "0") mark_abstract(ts_node_start_byte(declaration));
      return;
    }
    if (!shared || (elsewhere && !value)) return;
    const bool upper = is_upper_case(tree_.text(declared->name));
    add_symbol(constant || upper ? SymbolKind::kConstant : SymbolKind::kVariable, declared->name,
               declaration, value ? ts_node_start_byte(*value) : ts_node_end_byte(declarator));
  }

  void mark_abstract(std::uint32_t at) {
    while (!open_.empty() && open_.back().end <= at) open_.pop_back();
    if (open_.empty() || !open_.back().symbol) return;
    std::string& signature = facts_.symbols[*open_.back().symbol].signature;
    if (!signature.starts_with("abstract ")) signature.insert(0, "abstract ");
  }

  const SourceTree& tree_;
  FileFacts facts_;
  std::vector<Open> open_;
  bool nested_ = false;
};

}  // namespace

const Lexis& c_family_lexis() { return kLexis; }

FileFacts read_c_family(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace kestrix::index
