#include "kestrix/languages/code/declaration_reader.h"
#include "kestrix/languages/code/names.h"
#include "kestrix/languages/code/values.h"
#include "kestrix/languages/symbols.h"

namespace kestrix::index {

bool DeclarationReader::declare_named(const Rule& rule, TSNode node, Frame& frame) {
  frame.role = Role::kUses;
  frame.errors.reset();
  const bool local = walk_.is_local(frame.holder);
  if (local && is_value(rule.rule->kind)) {
    if (ts_node_child_count(node) == 0) walk_.locals.bind(walk_.tree.text(node));
    return walk_.push(frame, node);
  }
  const auto named =
      walk_.source.named(walk_.tree, node, walk_.frames.back().node, rule.rule->kind);
  if (!named || walk_.facts.declarations.size() + 2 > kMostDeclarations) {
    if (named) ++walk_.facts.dropped;
    frame.role = rule.rule->role.value_or(Role::kUses);
    return walk_.push(frame, node);
  }
  const bool nameless = named->node.id == nullptr && named->name.empty();
  frame.hidden |= nameless;
  if (nameless) return walk_.push(frame, node);
  // A field of a type that has no name.
  const bool member = walk_.is_in_type(frame.holder);
  if (named->kind == DeclarationKind::kField && !member) return walk_.push(frame, node);
  frame.name = named->node.id;
  Declaration as = declaration_of(*named, rule, node, frame);
  if (local && named->node.id != nullptr) walk_.locals.bind(walk_.tree.text(named->node));
  as.exported &= !local;
  const Declaration other{.kind = DeclarationKind::kAlias,
                          .name = std::string(named->other),
                          .line = as.line,
                          .last_line = as.line,
                          .container = as.container,
                          .exported = as.exported,
                          .bases = {as.name}};
  // What is written outside of its type has been counted there.
  const bool inside = as.container == frame.holder;
  take(std::move(as), frame, inside);
  if (named->open) open_ = frame.declared;
  if (!other.name.empty()) walk_.facts.declarations.push_back(other);
  const bool pushed = walk_.push(frame, node);
  if (pushed && frame.scope) {
    for (const std::string_view word : named->words) walk_.locals.bind(word);
  }
  return pushed;
}

Declaration DeclarationReader::declaration_of(const Named& named, const Rule& rule, TSNode node,
                                              const Frame& frame) const {
  const bool written = named.node.id != nullptr;
  Declaration as{.kind = named.kind,
                 .name = named.name.empty() ? std::string(walk_.tree.text(named.node)) : named.name,
                 .line = SourceTree::line(written ? named.node : node),
                 .last_line = ts_node_end_point(node).row + 1,
                 .container = frame.holder,
                 .exported = named.exported && !frame.hidden,
                 .is_abstract = named.is_abstract};
  const bool member = walk_.is_in_type(as.container);
  if (member && as.kind == DeclarationKind::kFunction) as.kind = DeclarationKind::kMethod;
  if (member && as.kind == DeclarationKind::kVariable) as.kind = DeclarationKind::kField;
  if (as.kind == DeclarationKind::kMember && as.container == open_ && open_ > 0)
    as.container = walk_.facts.declarations[open_ - 1].container;
  const TSNode value = rule.value == 0 ? TSNode{} : ts_node_child_by_field_id(node, rule.value);
  if (is_value(as.kind) && value.id != nullptr) {
    take_value(walk_.rules, walk_.tree, value, ts_node_symbol(node), as);
    if (named.instance) as.size = 0;
    if (named.instance) as.shape = ValueShape::kInstance;
  }
  if (!named.aliased.empty()) as.bases.emplace_back(named.aliased);
  if (!member) find_owner(as);
  if (as.kind == DeclarationKind::kMacro) as.container = 0;  // of no namespace
  return as;
}

// "Type::member" where the type stands in the file, too.
void DeclarationReader::find_owner(Declaration& as) const {
  const std::size_t joint = as.name.rfind('.');
  if (joint == std::string::npos || is_type(as.kind) || as.kind == DeclarationKind::kModule) {
    return;
  }
  if (as.kind == DeclarationKind::kFunction) as.kind = DeclarationKind::kMethod;
  std::string_view owner = std::string_view(as.name).substr(0, joint);
  auto type = walk_.types.find(owner);
  while (type == walk_.types.end() && owner.find('.') != std::string_view::npos) {
    owner.remove_prefix(owner.find('.') + 1);
    type = walk_.types.find(owner);
  }
  if (type == walk_.types.end()) return;
  as.container = type->second;
  as.name.erase(0, joint + 1);
}

}  // namespace kestrix::index
