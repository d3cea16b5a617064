#include "kestrix/languages/ecmascript/reader.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kestrix/languages/ecmascript/exports.h"
#include "kestrix/languages/ecmascript/resolver.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/text/seeded_hash.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index::ecmascript {
namespace {

constexpr std::array<std::string_view, 2> kKeywords = {"import", "require"};
constexpr std::array<std::string_view, 1> kComments = {"//"};
constexpr std::array kStrings = {
    StringStyle{.open = "\"", .close = "\""},
    StringStyle{.open = "'", .close = "'"},
    StringStyle{.open = "`", .close = "`", .multiline = true, .splice = "${"},
};

std::string_view unquoted(std::string_view text) {
  return text.size() < 2 ? std::string_view() : text.substr(1, text.size() - 2);
}

// What a binding pattern takes out of an object: the names as the object knows them, and as they
// are bound.
using Bindings = std::vector<std::pair<std::string_view, std::string_view>>;

// Where a local name comes from: an import and one of its names (or, past the end, the whole).
struct Origin {
  std::size_t import;
  std::size_t name;
};

class Reader {
 public:
  explicit Reader(const SourceTree& tree) : tree_(tree) {}

  FileFacts read() {
    tree_.for_each_match([this](const Match& match) { visit(match); });
    for (const OwnExport& own : exports_) hand_on(own);
    sort_distinct(facts_.declares);
    return std::move(facts_);
  }

 private:
  void visit(const Match& match) {
    if (const auto module = match.node("module")) {
      add_call(match, *module);
    } else if (const auto statement = match.node("import")) {
      add_statement(*statement);
    } else if (const auto exported = match.node("export")) {
      add_export(*exported, match.node("default").has_value());
    } else if (const auto target = match.node("exports")) {
      add_assignment(*target, match.node("name"));
    } else {
      add_symbol(tree_, match, facts_);
    }
  }

  ImportFact& new_import(std::string_view module, Form form, TSNode at) {
    ImportFact import{.module = std::string(module),
                      .form = static_cast<std::uint16_t>(form),
                      .line = SourceTree::line(at)};
    return facts_.imports.emplace_back(std::move(import));
  }

  // `written`: how often the binding itself has been counted as a use.
  void bind(std::string_view name, std::string_view local, std::uint32_t written = 0) {
    ImportFact& import = facts_.imports.back();
    origins_.try_emplace(local, Origin{facts_.imports.size() - 1, import.names.size()});
    import.names.push_back({.name = std::string(name),
                            .uses = uses(local, written),
                            .local = std::string(local == name ? std::string_view() : local)});
  }

  void bind_whole(std::string_view local, std::uint32_t written = 0) {
    ImportFact& import = facts_.imports.back();
    origins_.try_emplace(local, Origin{facts_.imports.size() - 1, SIZE_MAX});
    import.uses += uses(local, written);
    import.local = local;
  }

  std::uint32_t uses(std::string_view local, std::uint32_t written) const {
    const std::uint32_t all = tree_.uses(local);
    return all - std::min(all, written);
  }

  // import …, export … from
  void add_statement(TSNode statement) {
    const bool exports = type_of(statement) == "export_statement";
    new_import("", exports ? Form::kExport : Form::kImport, statement);
    bool all = exports;
    for_each_child(statement, [&](TSNode child, std::string_view field) {
      const std::string_view type = type_of(child);
      all &= type != "export_clause" && type != "namespace_export";
      if (field == "source") name_source(child);
      if (type == "import_clause") add_clause(child);
      if (type == "import_require_clause") bind_required(child);
      if (type == "export_clause") add_specifiers(child);
      if (type == "namespace_export") hand_on_namespace(child);
    });
    if (all) facts_.imports.back().names.push_back({.name = "*", .exported = "*"});
    // import Name = Some.Name
    if (facts_.imports.back().module.empty()) facts_.imports.pop_back();
  }

  void name_source(TSNode source) { facts_.imports.back().module = unquoted(tree_.text(source)); }

  void bind_required(TSNode clause) {
    if (const auto source = field_of(clause, "source")) name_source(*source);
    bind_first(clause);
  }

  void bind_first(TSNode clause) {
    for_each_child(clause, [&](TSNode child, std::string_view) {
      if (type_of(child) == "identifier") bind_whole(tree_.text(child));
    });
  }

  void add_clause(TSNode clause) {
    for_each_child(clause, [&](TSNode child, std::string_view) {
      const std::string_view type = type_of(child);
      if (type == "identifier") bind("default", tree_.text(child));
      if (type == "namespace_import") bind_first(child);
      if (type == "named_imports") add_specifiers(child);
    });
  }

  std::string_view name_of(TSNode node) const {
    const std::string_view text = tree_.text(node);
    return type_of(node) == "string" ? unquoted(text) : text;
  }

  // { name, name as alias }, of an import or of a re-export
  void add_specifiers(TSNode list) {
    for_each_child(list, [&](TSNode specifier, std::string_view) {
      const auto name = field_of(specifier, "name");
      if (!name) return;
      const std::string_view alias = name_of(field_of(specifier, "alias").value_or(*name));
      if (type_of(specifier) == "import_specifier") {
        bind(name_of(*name), alias);
      } else {
        facts_.imports.back().names.push_back(
            {.name = std::string(name_of(*name)), .exported = std::string(alias)});
      }
    });
  }

  void hand_on_namespace(TSNode node) {
    for_each_child(node, [&](TSNode child, std::string_view) {
      facts_.imports.back().names.push_back({.name = "*", .exported = std::string(name_of(child))});
    });
  }

  // export without a source: what it declares, and which local names it exports
  void add_export(TSNode statement, bool is_default) {
    if (is_default) facts_.declares.emplace_back("default");
    const bool sole = !is_default && tree_.text(statement).starts_with("export =");
    for_each_child(statement, [&](TSNode child, std::string_view field) {
      const bool named = type_of(child) == "identifier";
      if (field == "declaration" && !is_default) {
        declare(child);
      } else if (field == "declaration") {
        if (const auto name = field_of(child, "name"))
          hand_over(tree_.text(*name), "default", child);
      } else if (named && (sole || field == "value")) {
        hand_over(tree_.text(child), sole ? kSoleExport : "default", child);
      } else if (type_of(child) == "export_clause") {
        add_local_exports(child);
      }
    });
  }

  void declare(TSNode declaration) {
    if (const auto name = field_of(declaration, "name")) {
      facts_.declares.emplace_back(tree_.text(*name));
      return;
    }
    for_each_child(declaration, [&](TSNode child, std::string_view) {
      const auto name = field_of(child, "name");
      if (!name) return;
      for (const auto& [key, local] : bindings(*name)) facts_.declares.emplace_back(local);
    });
  }

  void add_local_exports(TSNode clause) {
    for_each_child(clause, [&](TSNode specifier, std::string_view) {
      const auto name = field_of(specifier, "name");
      if (!name) return;
      const TSNode alias = field_of(specifier, "alias").value_or(*name);
      facts_.declares.emplace_back(name_of(alias));
      hand_over(name_of(*name), name_of(alias), specifier);
    });
  }

  // module.exports = …, exports.name = …
  void add_assignment(TSNode assignment, std::optional<TSNode> variable) {
    const auto exported = exported_by(tree_, assignment);
    if (!exported) return;
    const std::string_view name = name_of_export(tree_, *exported);
    if (exported->name != kSoleExport) {
      facts_.declares.emplace_back(exported->name);
      if (is_declared(tree_, *exported)) hand_over(name, exported->name, assignment);
      return;
    }
    if (is_import(tree_, exported->value)) return;
    hand_over(variable ? tree_.text(*variable) : name, kSoleExport, assignment);
    if (type_of(exported->value) != "object") return;
    for_each_child(exported->value, [&](TSNode child, std::string_view) {
      if (type_of(child) == "shorthand_property_identifier") {
        facts_.declares.emplace_back(tree_.text(child));
        hand_over(tree_.text(child), tree_.text(child), child);
      } else if (const auto key = field_of(child, "key")) {
        facts_.declares.emplace_back(name_of(*key));
        const auto value = field_of(child, "value");
        if (value && type_of(*value) == "identifier") {
          hand_over(tree_.text(*value), name_of(*key), child);
        }
      }
    });
  }

  // require(…), import(…) and import.meta.glob(…)
  void add_call(const Match& match, TSNode module) {
    if (!modules_.insert(ts_node_start_byte(module)).second) return;
    const std::string_view source = tree_.text(module);
    if (source.starts_with('`') && source.find("${") != std::string_view::npos) return;
    ImportFact& import = new_import(
        unquoted(source), match.node("dynamic") ? Form::kDynamic : Form::kRequire, module);
    if (match.node("glob")) {
      import.form = static_cast<std::uint16_t>(Form::kGlob);
    } else if (const auto member = match.node("member")) {
      import.names.push_back({.name = std::string(tree_.text(*member)), .uses = 1});
      if (const auto bound = match.node("bind")) name_member(tree_.text(*bound));
    } else if (const auto bound = match.node("bind")) {
      bind_all(*bound);
    } else if (const auto assigned = match.node("assigned")) {
      const std::string_view target = tree_.text(*assigned);
      hand_on_whole(target == "module.exports" ? "*" : exports_member(target));
    } else if (const auto key = match.node("key")) {
      hand_on_whole(tree_.text(*key));
    } else if (match.node("spread")) {
      hand_on_whole("*");
    }
  }

  // name = require("…").member
  void name_member(std::string_view local) {
    ImportFact& import = facts_.imports.back();
    ImportedName& member = import.names.back();
    if (local != member.name) member.local = local;
    origins_.try_emplace(local, Origin{facts_.imports.size() - 1, import.names.size() - 1});
  }

  void hand_on_whole(std::string_view exported) {
    if (exported.empty()) return;
    facts_.imports.back().names.push_back({.name = "*", .exported = std::string(exported)});
  }

  void bind_all(TSNode pattern) {
    if (type_of(pattern) == "identifier") return bind_whole(tree_.text(pattern), 1);
    for (const auto& [name, local] : bindings(pattern)) bind(name, local, 1);
  }

  Bindings bindings(TSNode pattern) const {
    Bindings found;
    if (type_of(pattern) == "identifier")
      found.emplace_back(tree_.text(pattern), tree_.text(pattern));
    if (type_of(pattern) != "object_pattern") return found;
    for_each_child(pattern, [&](TSNode child, std::string_view) {
      if (type_of(child) == "object_assignment_pattern") child = left_of(child);
      if (type_of(child) == "shorthand_property_identifier_pattern") {
        found.emplace_back(tree_.text(child), tree_.text(child));
      } else if (type_of(child) == "pair_pattern") {
        const auto key = field_of(child, "key");
        const auto value = field_of(child, "value");
        if (key && value) found.emplace_back(name_of(*key), tree_.text(left_of(*value)));
      }
    });
    return found;
  }

  // Of "name = default" the name.
  static TSNode left_of(TSNode pattern) { return field_of(pattern, "left").value_or(pattern); }

  struct OwnExport {
    std::string_view local;
    std::string_view exported;
    std::uint32_t line;
  };

  void hand_over(std::string_view local, std::string_view exported, TSNode at) {
    exports_.push_back({local, exported, SourceTree::line(at)});
  }

  // A local name is exported: if it was imported, its import hands it on.
  void hand_on(const OwnExport& own) {
    const auto origin = origins_.find(own.local);
    if (origin == origins_.end()) {
      if (own.local == own.exported) return;
      ImportFact& fact = facts_.imports.emplace_back(
          ImportFact{.form = static_cast<std::uint16_t>(Form::kOwn), .line = own.line});
      fact.names.push_back({.name = std::string(own.local), .exported = std::string(own.exported)});
      return;
    }
    ImportFact& import = facts_.imports[origin->second.import];
    if (origin->second.name < import.names.size()) {
      import.names[origin->second.name].exported = own.exported;
    } else {
      import.names.push_back({.name = "*", .exported = std::string(own.exported)});
    }
  }

  const SourceTree& tree_;
  FileFacts facts_;
  std::unordered_map<std::string_view, Origin, SeededHash> origins_;  // by local name
  std::vector<OwnExport> exports_;
  std::unordered_set<std::uint32_t> modules_;  // where the module names of calls stand
};

}  // namespace

constinit const Lexis lexis = {.line_comments = kComments,
                               .block_open = "/*",
                               .block_close = "*/",
                               .strings = kStrings,
                               .regexes = true};

std::span<const std::string_view> keywords() { return kKeywords; }

FileFacts read(const SourceTree& tree) { return Reader(tree).read(); }

}  // namespace kestrix::index::ecmascript
