#include "kestrix/languages/code/declaration_reader.h"

#include "kestrix/languages/code/names.h"
#include "kestrix/languages/code/values.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {

bool DeclarationReader::declare(const Rule& rule, TSNode node, Frame& frame) {
  if (walk_.source.named != nullptr) return declare_named(rule, node, frame);
  const TSNode name = ts_node_child_by_field_id(node, rule.name);
  frame.role = Role::kUses;
  frame.errors.reset();
  const auto text = declared_name(rule, node, name, frame);
  if (!text) {
    if (rule.rule->role) frame.role = *rule.rule->role;
    if (walk_.source.extends_types) enter_members(node, frame);
    return walk_.push(frame, node);
  }
  if (text->empty() && walk_.source.name_of != nullptr) {
    mentions_.drop_annotations();
    return false;
  }
  const auto path = name_path(*text);
  const bool qualified = walk_.source.qualified_names || walk_.source.namespaced_names;
  if (!path || (path->find('.') != std::string::npos && !qualified)) {
    frame.scope = is_callable(rule.rule->kind);
    if (path) count_own_field(*path, frame.holder);
    // "registry[key] = Name" puts it into a table.
    if (!path && is_value(rule.rule->kind)) frame.arguments = rule.value;
    return walk_.push(frame, node);
  }
  frame.name = ts_node_is_null(name) ? child_at(node, *text) : name.id;
  frame.names = rule.name;
  Declaration as{.kind = rule.rule->kind,
                 .name = *path,
                 .line = SourceTree::line(ts_node_is_null(name) ? node : name),
                 .last_line = ts_node_end_point(node).row + 1,
                 .container = holder_of(rule.rule->kind, frame.holder),
                 .exported = !frame.hidden};
  const bool local = walk_.is_local(as.container);
  if ((local || walk_.locals.in_function()) && is_value(as.kind)) {
    walk_.bind_name(*text);
    return walk_.push(frame, node);
  }
  // Nothing outside of a function without a name knows those in it.
  if (local && frame.holder == 0 && as.kind == DeclarationKind::kFunction) {
    walk_.locals.bind(*text);
    frame.scope = true;
    return walk_.push(frame, node);
  }
  if (walk_.source.namespaced_names && text->starts_with("::")) as.container = 0;
  if (make_claim(node, as)) return false;
  if (!classify(rule, node, as)) return walk_.push(frame, node);
  if (!local) give_to_owner(node, frame, as);
  if (local) walk_.bind_name(*text);
  as.exported = !local && as.exported;
  if (walk_.facts.declarations.size() >= kMostDeclarations) {
    ++walk_.facts.dropped;
    return walk_.push(frame, node);
  }
  if (walk_.source.namespaced_names) nest(as);
  take(std::move(as), frame);
  return walk_.push(frame, node);
}

void DeclarationReader::enter_members(TSNode node, Frame& frame) const {
  frame.owner = walk_.source.owner(walk_.tree, node);
  if (const auto type = walk_.types.find(frame.owner); type != walk_.types.end()) {
    frame.holder = type->second;
    frame.owner = {};
  }
}

std::optional<std::string_view> DeclarationReader::declared_name(const Rule& rule, TSNode node,
                                                                 TSNode name, Frame& frame) {
  if (!ts_node_is_null(name)) settings_.add_taken_keys(rule, node, name, frame);
  if (frame.nameless && is_member(rule.rule->kind)) {
    frame.scope = rule.rule->kind == DeclarationKind::kMethod;
    return std::nullopt;
  }
  if (walk_.source.name_of != nullptr) return walk_.source.name_of(walk_.tree, node, name);
  if (ts_node_is_null(name)) return std::nullopt;
  return walk_.tree.text(name);
}

// The child that is the name, where no field tells it.
const void* DeclarationReader::child_at(TSNode node, std::string_view name) const {
  const auto offset = [](std::string_view text) {
    return reinterpret_cast<std::uintptr_t>(text.data());
  };
  if (offset(name) < offset(walk_.tree.text())) return nullptr;
  const std::size_t at = offset(name) - offset(walk_.tree.text());
  TreeCursor cursor(node);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    const bool leaf = ts_node_child_count(cursor.node()) == 0;
    if (leaf && ts_node_start_byte(cursor.node()) == at) return cursor.node().id;
  }
  return nullptr;
}

void DeclarationReader::count_own_field(std::string_view path, std::uint32_t holder) {
  if (!walk_.source.own_fields || holder == 0) return;
  const Declaration& method = walk_.facts.declarations[holder - 1];
  if (method.name != walk_.source.own_fields->method || method.container == 0) return;
  const auto dot = path.find('.');
  if (path.substr(0, dot) != walk_.source.own_fields->object) return;
  const std::string_view name = path.substr(dot + 1);
  if (name.find('.') != std::string_view::npos) return;
  const bool first = own_fields_.emplace(method.container, name).second;
  if (first) ++walk_.facts.declarations[method.container - 1].fields;
}

// The head of a method may declare a field of its type.
std::uint32_t DeclarationReader::holder_of(DeclarationKind kind, std::uint32_t holder) const {
  const bool of_type = kind == DeclarationKind::kField && holder > 0 &&
                       is_callable(walk_.facts.declarations[holder - 1].kind);
  return of_type ? walk_.facts.declarations[holder - 1].container : holder;
}

bool DeclarationReader::make_claim(TSNode node, const Declaration& as) {
  if (walk_.source.claim == nullptr || as.name != "_" || !is_value(as.kind)) return false;
  const auto claim = walk_.source.claim(walk_.tree, node);
  if (!claim || walk_.claims.size() >= kMostDeclarations) return false;
  walk_.claims.emplace_back(*claim, as.line);
  return true;
}

// Gives a method to its type; where that stands elsewhere, its name says so.
void DeclarationReader::give_to_owner(TSNode node, const Frame& frame, Declaration& as) {
  if (walk_.source.owner == nullptr || as.container > 0) return;
  std::string_view owner = frame.owner;
  if (owner.empty() && as.kind == DeclarationKind::kMethod)
    owner = walk_.source.owner(walk_.tree, node);
  if (owner.empty()) return;
  if (const auto type = walk_.types.find(owner); type != walk_.types.end()) {
    as.container = type->second;
    return;
  }
  if (as.kind == DeclarationKind::kFunction) as.kind = DeclarationKind::kMethod;
  if (as.kind == DeclarationKind::kMethod) walk_.owners.push_back(owner);
  as.name = std::string(owner) + "." + as.name;
}

// "A.B" is B in the namespace A.
void DeclarationReader::nest(Declaration& as) {
  for (std::size_t dot; (dot = as.name.find('.')) != std::string::npos;) {
    walk_.facts.declarations.push_back({.kind = DeclarationKind::kModule,
                                        .name = as.name.substr(0, dot),
                                        .line = as.line,
                                        .last_line = as.last_line,
                                        .container = as.container});
    as.container = static_cast<std::uint32_t>(walk_.facts.declarations.size());
    as.name.erase(0, dot + 1);
  }
}

bool DeclarationReader::classify(const Rule& rule, TSNode node, Declaration& as) const {
  const bool member = walk_.is_in_type(as.container);
  if (is_value(as.kind)) {
    if (as.kind == DeclarationKind::kVariable) {
      if (is_upper_case(as.name)) {
        as.kind = DeclarationKind::kConstant;
      } else if (member) {
        as.kind = DeclarationKind::kField;
      }
    }
    const TSNode value = walk_.source.value_of != nullptr
                             ? walk_.source.value_of(node)
                             : ts_node_child_by_field_id(node, rule.value);
    if (!ts_node_is_null(value))
      take_value(walk_.rules, walk_.tree, value, ts_node_symbol(node), as);
  }
  if (as.kind == DeclarationKind::kFunction && member) as.kind = DeclarationKind::kMethod;
  if (walk_.source.refine != nullptr && !walk_.source.refine(walk_.tree, node, as)) return false;
  as.is_abstract = walk_.source.is_abstract != nullptr
                       ? walk_.source.is_abstract(walk_.tree, node, as)
                       : lacks_body(node, as);
  if (walk_.source.exported != nullptr) as.exported = walk_.source.exported(walk_.tree, node, as);
  return true;
}

bool DeclarationReader::lacks_body(TSNode node, const Declaration& as) const {
  return as.kind == DeclarationKind::kMethod && walk_.rules.body() != 0 &&
         ts_node_is_null(ts_node_child_by_field_id(node, walk_.rules.body()));
}

// "var a, b": what is declared like the name before.
bool DeclarationReader::is_further_name(const Frame& up, TSNode node, TSFieldId field) {
  if (up.names == 0 || field != up.names || node.id == up.name) return false;
  if (ts_node_child_count(node) > 0 || !ts_node_is_named(node)) return false;
  const std::string_view name = walk_.tree.text(node);
  if (up.declared == 0) {
    walk_.locals.bind(name);
    return true;
  }
  if (walk_.facts.declarations.size() >= kMostDeclarations) {
    ++walk_.facts.dropped;
    return true;
  }
  Declaration as = walk_.facts.declarations[up.declared - 1];
  as.name = name;
  as.line = SourceTree::line(node);
  as.shape = ValueShape::kUnknown;
  as.size = 0;
  if (walk_.source.exported != nullptr) as.exported = walk_.source.exported(walk_.tree, node, as);
  if (as.container > 0 && as.kind == DeclarationKind::kField) {
    ++walk_.facts.declarations[as.container - 1].fields;
  }
  walk_.facts.declarations.push_back(std::move(as));
  return true;
}

void DeclarationReader::take(Declaration as, Frame& frame, bool counted) {
  if (as.container > 0 && counted) {
    Declaration& holder = walk_.facts.declarations[as.container - 1];
    if (as.kind == DeclarationKind::kField) ++holder.fields;
    if (as.kind == DeclarationKind::kMethod) ++holder.methods;
    if (as.kind == DeclarationKind::kMethod && as.is_abstract) ++holder.abstract_methods;
  }
  frame.scope = is_callable(as.kind);
  frame.nameless = false;
  const bool type = is_type(as.kind) && at_top(as);
  walk_.facts.declarations.push_back(std::move(as));
  frame.declared = static_cast<std::uint32_t>(walk_.facts.declarations.size());
  frame.owner = {};
  frame.hidden = false;
  if (type) walk_.types.try_emplace(walk_.facts.declarations.back().name, frame.declared);
  frame.holder = static_cast<std::uint32_t>(walk_.facts.declarations.size());
  mentions_.annotate(frame.holder);
}

bool DeclarationReader::at_top(const Declaration& as) const {
  return as.container == 0 ||
         (walk_.source.qualified_names &&
          walk_.facts.declarations[as.container - 1].kind == DeclarationKind::kModule);
}

}  // namespace kestrix::index
