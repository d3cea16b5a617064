#include "kestrix/languages/code/call_reader.h"

#include <algorithm>
#include <utility>

#include "kestrix/languages/code/call_rules.h"
#include "kestrix/languages/code/names.h"

namespace kestrix::index {

constexpr std::size_t kMostContexts = 2'000;  // that macros make in one file

bool CallReader::visit_literal(const Rule& rule, TSNode node, Frame& frame) {
  const TSNode type = ts_node_child_by_field_id(node, rule.name);
  frame.callee = ts_node_is_null(type) ? node.id : type.id;
  frame.callee_role = called(frame.role, Role::kConstructs);
  frame.arguments = rule.value;
  if (frame.role != Role::kThrows) frame.role = Role::kLists;
  frame.keyed = walk_.source.keyed_by_member == nullptr || walk_.source.keyed_by_member(node);
  return walk_.push(frame, node);
}

bool CallReader::visit_call(const Rule& rule, TSNode node, Frame& frame) {
  frame.arguments = rule.value;
  if (rule.rule->act == Act::kConstruct) {
    const bool type = walk_.source.makes_type != nullptr && walk_.source.makes_type(node);
    frame.callee_role = type ? Role::kExtends : Role::kConstructs;
  }
  if (rule.rule->act == Act::kSubscript) {
    frame.callee_role = Role::kUses;
    frame.argument_role = Role::kUses;
  }
  const TSNode callee =
      rule.name == 0 ? ts_node_named_child(node, 0) : ts_node_child_by_field_id(node, rule.name);
  frame.callee = ts_node_is_null(callee) ? node.id : callee.id;
  if (ts_node_is_null(callee)) return walk_.push(frame, node);
  const TSNode object = rule.object == 0 ? TSNode{} : ts_node_child_by_field_id(node, rule.object);
  const bool member = object.id != nullptr;
  std::string_view text = walk_.tree.text(callee);
  if (member && rule.rule->in_type) frame.role = Role::kUses;
  if (member) text = visit_object(node, object, callee, frame);
  if (walk_.source.open_calls && rule.rule->act == Act::kCall)
    mentions_.add_open_call(callee, frame);
  auto path = name_path(text);
  if (!path) path = name_path(without_arguments(callee, node));
  if (!path) path = name_path(called_member(text).name);
  if (!path) return walk_.push(frame, node);
  if (walk_.source.macro != nullptr && (!member || path->find('.') != std::string::npos) &&
      !note_macro(node, callee, text, frame)) {
    return false;
  }
  if (rule.rule->act == Act::kSubscript) {
    if (settings_.is_environment(*path) || settings_.gives_settings(*path))
      settings_.add_key(node, callee, rule.value, frame);
  } else if (const CallRule* call = call_rule(walk_.source, *path, text.back(), member)) {
    if (call->role == Role::kReads) {
      if (!call->sole || is_sole_argument(node, callee, rule.value))
        settings_.add_key(node, callee, rule.value, frame);
    } else if (call->role != Role::kExtends || walk_.makes_type()) {
      frame.argument_role = call->role;
      if (call->first) frame.first = first_argument(node, rule.value).id;
    }
  }
  return walk_.push(frame, node);
}

// Of "name[Type]" the name, where the grammar has a node for that; "" for anything else.
std::string_view CallReader::without_arguments(TSNode callee, TSNode call) const {
  const Rule* rule = walk_.rules.find(ts_node_symbol(callee), ts_node_symbol(call), 0);
  if (rule == nullptr || rule->rule->act != Act::kGeneric) return {};
  const TSNode name = ts_node_child_by_field_id(callee, rule->name);
  return ts_node_is_null(name) ? std::string_view() : walk_.tree.text(name);
}

// Whether anything else in the call counts.
bool CallReader::note_macro(TSNode call, TSNode callee, std::string_view name, Frame& frame) {
  MacroNotes notes{.around = walk_.contexts[frame.around],
                   .of_type = walk_.makes_type() || frame.role == Role::kExtends};
  walk_.source.macro(walk_.tree, call, name, notes);
  if (notes.quiet) frame.name = callee.id;
  frame.body = notes.body;
  for (const MacroNotes::Member& member : notes.members) add_member(member, frame);
  for (const auto& [mentioned, role] : notes.mentions)
    mentions_.add(mentioned, role, frame, SourceTree::line(call));
  for (const std::string_view hidden : notes.hidden) walk_.hidden.emplace(frame.holder, hidden);
  if (notes.inside && walk_.contexts.size() >= kMostContexts) {
    ++walk_.facts.dropped;
  } else if (notes.inside) {
    frame.around = static_cast<std::uint32_t>(walk_.contexts.size());
    walk_.contexts.push_back(std::move(*notes.inside));
  }
  return !notes.skip;
}

void CallReader::add_member(const MacroNotes::Member& member, const Frame& frame) {
  const std::string_view text = walk_.tree.text(member.name);
  const std::string_view content = literal_content(text);
  const auto name = name_path(content.empty() ? text : content);
  if (!name || frame.holder == 0) return;
  if (!is_type(walk_.facts.declarations[frame.holder - 1].kind)) return;
  if (walk_.facts.declarations.size() >= kMostDeclarations) {
    ++walk_.facts.dropped;
    return;
  }
  Frame unused = frame;
  const std::uint32_t line = SourceTree::line(member.name);
  declarations_.take({.kind = member.kind,
                      .name = *name,
                      .line = line,
                      .last_line = line,
                      .container = frame.holder,
                      .exported = !frame.hidden},
                     unused);
}

// Mentions what is called of an object as one path, if the object is nothing but names; else the
// name alone says what is called. Returns what the call is known by.
std::string_view CallReader::visit_object(TSNode call, TSNode object, TSNode callee, Frame& frame) {
  frame.name = callee.id;
  const std::string_view name = walk_.tree.text(callee);
  const std::string_view text =
      walk_.tree.text(ts_node_start_byte(object), ts_node_end_byte(callee));
  if (ts_node_eq(callee, ts_node_child(call, ts_node_child_count(call) - 1)) &&
      settings_.read_setting(object, text, frame)) {
    frame.object = object.id;
    return name;
  }
  const bool whole = !walk_.source.capital_types ||
                     (starts_in_upper_case(text) && !is_call(object, ts_node_symbol(call)));
  if (!whole) return name;
  if (walk_.makes_type()) {
    frame.object = object.id;
    return text;
  }
  Frame as = frame;
  as.role = called(frame.role, frame.callee_role);
  const bool makes = std::ranges::find(walk_.source.makers, name) != walk_.source.makers.end();
  if (makes && as.role == Role::kCalls) as.role = Role::kConstructs;
  if (!mentions_.mention(object, makes ? walk_.tree.text(object) : text, as)) return name;
  frame.object = object.id;
  return text;
}

bool CallReader::is_call(TSNode node, TSSymbol parent) const {
  const Rule* rule = walk_.rules.find(ts_node_symbol(node), parent, 0);
  return rule != nullptr && rule->rule->act == Act::kCall;
}

}  // namespace kestrix::index
