#include "kestrix/languages/code/path_reader.h"

#include <cstdint>
#include <optional>

#include "kestrix/languages/code/call_rules.h"

namespace kestrix::index {

PathReader::PathReader(WalkState& walk, MentionReader& mentions, SettingReader& settings)
    : walk_(walk), mentions_(mentions), settings_(settings) {
  if (!walk.source.extensions) return;
  for (const ImportFact& import : walk.facts.imports) {
    if (!import.local.empty()) imported_.insert(import.local);
  }
}

// The names of a type, without annotations before and arguments behind them.
std::string_view PathReader::text_of_type(TSNode node) const {
  TSNode name = ts_node_named_child(node, 0);
  if (!ts_node_is_null(name) && ts_node_child_count(name) > 0) {
    name = ts_node_next_named_sibling(name);
  }
  const TSNode first = ts_node_is_null(name) ? node : name;
  const auto text = walk_.tree.text(ts_node_start_byte(first), ts_node_end_byte(node));
  return text.substr(0, text.find('<'));
}

bool PathReader::visit_path(TSNode node, Frame& frame) {
  std::string_view text = walk_.tree.text(node);
  for (const std::string_view end : {"::class", ".self"}) {
    if (text.ends_with(end)) text.remove_suffix(end.size());
  }
  if (frame.role != Role::kCalls || walk_.source.flat_environments) {
    if (settings_.read_member(node, text, frame)) return false;
  }
  const bool extension = add_extension(node, text, frame);
  if (extension && name_path(text)) return false;
  if (!extension && mentions_.mention(node, text, frame)) return false;
  // Where a grammar has nodes for generic names, they are left to them.
  const bool whole = extension || walk_.source.defined_elsewhere;
  const auto plain = whole ? std::nullopt : without_type_arguments(text);
  if (plain && mentions_.mention(node, *plain, frame)) {
    frame.member = true;
    return walk_.push(frame, node);
  }
  frame.path = ts_node_start_byte(node) + 1;
  frame.path_role = frame.role;
  frame.role = beyond(frame.role);
  return walk_.push(frame, node);
}

// "value.run()" or "Type::run", where "run" is imported: no member of the value. What starts in
// upper case before a "." may be a type that has a member of that name.
bool PathReader::add_extension(TSNode node, std::string_view text, const Frame& frame) {
  if (!walk_.source.extensions || !is_of(frame.role, {Role::kCalls, Role::kLists})) return false;
  const std::size_t joint = text.find_last_of(".:");
  if (joint == std::string_view::npos || !imported_.contains(text.substr(joint + 1))) return false;
  const bool handed = text[joint] == ':';
  if (!handed && frame.role != Role::kCalls) return false;
  const std::string_view name = text.substr(joint + 1);
  if (!handed && starts_in_upper_case(name) && starts_in_upper_case(text)) return false;
  mentions_.add(name, frame.role, frame, SourceTree::line(node));
  return true;
}

// "a::Name<T>": the path up to the arguments is one mention.
bool PathReader::visit_generic(const Rule& rule, TSNode node, Frame& frame) {
  const TSNode name = ts_node_child_by_field_id(node, rule.name);
  if (ts_node_is_null(name)) return walk_.push(frame, node);
  if (frame.path != 0) frame.role = frame.path_role;
  const std::uint32_t start = frame.path != 0 ? frame.path - 1 : ts_node_start_byte(node);
  const std::string_view text = walk_.tree.text(start, ts_node_end_byte(name));
  mentions_.mention(node, text, frame);
  frame.arguments = rule.value;
  frame.argument_role = Role::kUses;
  if (const auto path = name_path(text)) {
    frame.name = name.id;
    if (const CallRule* call = call_rule(walk_.source, *path, text.back(), false))
      frame.argument_role = call->role;
  }
  frame.role = Role::kUses;
  frame.path = 0;
  return walk_.push(frame, node);
}

Role PathReader::role_of_type_arguments(TSNode list, Role role) const {
  if (walk_.source.type_arguments != nullptr)
    return walk_.source.type_arguments(walk_.tree, list, role);
  if (role == Role::kLists) return role;
  const bool type = is_of(
      role, {Role::kExtends, Role::kImplements, Role::kType, Role::kConstructs, Role::kCalls});
  return type ? Role::kType : Role::kUses;
}

// Tokens are not parsed: what stands around a word tells what it is.
void PathReader::visit_token(TSNode node, Frame& frame) {
  const Token token = token_at(walk_.tree.text(), ts_node_start_byte(node));
  if (token.path.empty()) return;
  const std::string_view last = token.path.substr(token.path.rfind(':') + 1);
  if (frame.role == Role::kAnnotates && starts_in_lower_case(last)) return;
  if (frame.role == Role::kThrows && starts_in_lower_case(last)) frame.role = Role::kUses;
  if (is_of(frame.role, {Role::kUses, Role::kLists})) {
    if (token.typed && starts_in_upper_case(last)) frame.role = Role::kType;
    if (token.next == '(' || token.next == '!') frame.role = Role::kCalls;
    if (token.next == '{') frame.role = Role::kUses;
    if (frame.role == Role::kCalls) read_token(node, token, frame);
  }
  mentions_.mention(node, token.path, frame);
}

// "env::var("KEY")" among tokens.
void PathReader::read_token(TSNode node, const Token& token, const Frame& frame) {
  const auto path = name_path(token.path);
  const CallRule* call = path ? call_rule(walk_.source, *path, token.path.back(), false) : nullptr;
  if (call == nullptr || call->role != Role::kReads) return;
  std::string_view rest = walk_.tree.text().substr(ts_node_start_byte(node) + token.path.size());
  rest = rest.substr(0, kLongestMention);
  const std::size_t open = rest.find('"');
  const std::size_t close = rest.find('"', open + 1);
  if (open == std::string_view::npos || close == std::string_view::npos) return;
  if (rest.substr(0, open).find_first_not_of("!( \t\r\n") != std::string_view::npos) return;
  const std::string_view key = rest.substr(open + 1, close - open - 1);
  if (name_path(key)) mentions_.add(key, Role::kReads, frame, SourceTree::line(node));
}

}  // namespace kestrix::index
