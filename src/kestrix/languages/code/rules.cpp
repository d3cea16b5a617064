#include "kestrix/languages/code/rules.h"

#include <fmt/format.h>

#include <unordered_map>

#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

// A grammar may have several symbols of one name: aliases of one node in different places.
using Symbols = std::unordered_map<std::string_view, std::vector<TSSymbol>>;

Symbols symbols_of(const TSLanguage* grammar) {
  Symbols symbols;
  const auto count = static_cast<TSSymbol>(ts_language_symbol_count(grammar));
  for (TSSymbol symbol = 0; symbol < count; ++symbol) {
    // What a tree shows of a symbol is its public one.
    if (ts_language_symbol_type(grammar, symbol) == TSSymbolTypeRegular) {
      symbols[ts_language_symbol_name(grammar, symbol)].push_back(symbol);
    }
  }
  return symbols;
}

class Compiler {
 public:
  Compiler(const TSLanguage* grammar, std::string_view language)
      : grammar_(grammar), language_(language), symbols_(symbols_of(grammar)) {}

  const std::vector<TSSymbol>& symbols(std::string_view name) const {
    const auto found = symbols_.find(name);
    if (found == symbols_.end()) {
      throw Error(fmt::format("{}: its grammar has no node {}", language_, name));
    }
    return found->second;
  }

  TSFieldId field(std::string_view name) const {
    return ts_language_field_id_for_name(grammar_, name.data(),
                                         static_cast<std::uint32_t>(name.size()));
  }

  TSFieldId known_field(std::string_view name) const {
    const TSFieldId id = field(name);
    if (id == 0) throw Error(fmt::format("{}: its grammar has no field {}", language_, name));
    return id;
  }

 private:
  const TSLanguage* grammar_;
  std::string_view language_;
  Symbols symbols_;
};

}  // namespace

CompiledRules::CompiledRules(const TSLanguage* grammar, const CodeRules& rules,
                             std::string_view language)
    : source_(&rules) {
  const Compiler compiler(grammar, language);
  const std::size_t count = ts_language_symbol_count(grammar);
  by_node_.resize(count);
  by_parent_.resize(count);
  body_ = compiler.field("body");
  for (const CodeRule& rule : rules.rules) {
    Rule compiled{.field = rule.field.empty() ? TSFieldId{0} : compiler.known_field(rule.field),
                  .name = compiler.field(rule.name),
                  .value = compiler.field(rule.value),
                  .object = compiler.field(rule.object),
                  .rule = &rule};
    const std::vector<TSSymbol> none{0};
    for (const TSSymbol parent : rule.parent.empty() ? none : compiler.symbols(rule.parent)) {
      compiled.parent = parent;
      if (rule.node.empty()) {
        by_parent_[parent].push_back(compiled);
        continue;
      }
      for (const TSSymbol node : compiler.symbols(rule.node)) by_node_[node].push_back(compiled);
    }
  }
}

const CompiledRules::Rule* CompiledRules::find(TSSymbol node, TSSymbol parent,
                                               TSFieldId field) const {
  const auto fits = [&](const Rule& rule) {
    return (rule.parent == 0 || rule.parent == parent) && (rule.field == 0 || rule.field == field);
  };
  if (node < by_node_.size()) {
    for (const Rule& rule : by_node_[node]) {
      if (fits(rule)) return &rule;
    }
  }
  if (parent < by_parent_.size()) {
    for (const Rule& rule : by_parent_[parent]) {
      if (fits(rule)) return &rule;
    }
  }
  return nullptr;
}

}  // namespace kestrix::index
