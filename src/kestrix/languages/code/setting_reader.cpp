#include "kestrix/languages/code/setting_reader.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "kestrix/languages/code/names.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {

// "process.env.KEY"
bool SettingReader::read_member(TSNode node, std::string_view text, const Frame& frame) {
  for (const std::string_view base : walk_.source.environments) {
    if (text.size() <= base.size() + 1 || !text.starts_with(base)) continue;
    std::string_view key = text.substr(base.size());
    if (key.starts_with("?.")) key.remove_prefix(1);
    if (!key.starts_with('.')) continue;
    key.remove_prefix(1);
    if (walk_.source.flat_environments) {
      const std::size_t end = key.find_first_of(".?!");
      if (end == std::string_view::npos && frame.role == Role::kCalls) return false;
      key = key.substr(0, end);
    }
    if (const auto path = name_path(key))
      mentions_.add(*path, Role::kReads, frame, SourceTree::line(node));
    return true;
  }
  return false;
}

bool SettingReader::read_setting(TSNode node, std::string_view text, const Frame& frame) {
  for (const std::string_view base : walk_.source.settings) {
    if (!text.starts_with(base)) continue;
    const auto path = name_path(text.substr(base.size(), kLongestMention));
    const std::string key = path ? path->substr(0, path->find('.')) : std::string();
    if (!key.empty() && text[base.size()] == '.')
      mentions_.add(key, Role::kReads, frame, SourceTree::line(node));
    return true;
  }
  return false;
}

bool SettingReader::gives_settings(std::string_view path) const {
  return std::ranges::any_of(walk_.source.keyed_settings, [&](std::string_view end) {
    return path.ends_with(end) &&
           (path.size() == end.size() || path[path.size() - end.size() - 1] == '.');
  });
}

bool SettingReader::is_environment(std::string_view path) const {
  return std::ranges::find(walk_.source.environments, path) != walk_.source.environments.end();
}

// The first argument, if it is a string, is what is read.
void SettingReader::add_key(TSNode call, TSNode callee, TSFieldId arguments, const Frame& frame) {
  TSNode node = arguments == 0 ? ts_node_next_named_sibling(callee)
                               : ts_node_child_by_field_id(call, arguments);
  TSSymbol parent = ts_node_symbol(call);
  for (int depth = 0; depth < 4 && !ts_node_is_null(node); ++depth) {
    const Rule* rule =
        walk_.rules.find(ts_node_symbol(node), parent, depth == 0 ? arguments : TSFieldId{0});
    if (rule != nullptr && rule->rule->act == Act::kString) {
      std::string_view key = literal_content(walk_.tree.text(node));
      if (walk_.source.key_of != nullptr) key = walk_.source.key_of(key);
      if (!key.empty() && key.size() <= kLongestMention && name_path(key)) {
        mentions_.add(key, Role::kReads, frame, SourceTree::line(node));
      }
      return;
    }
    if (rule == nullptr || rule->rule->ask != nullptr) return;  // a part of a key is none
    const std::uint32_t children = ts_node_named_child_count(node);
    const bool entry = rule->rule->act == Act::kEntry && children > 0;
    parent = ts_node_symbol(node);
    node = ts_node_named_child(node, entry ? children - 1 : 0);
  }
}

// "{ KEY, OTHER: name } = environment"
void SettingReader::add_taken_keys(const Rule& rule, TSNode node, TSNode name, const Frame& frame) {
  if (walk_.source.environments.empty() || !is_value(rule.rule->kind)) return;
  const TSNode value = ts_node_child_by_field_id(node, rule.value);
  if (ts_node_is_null(value) || ts_node_named_child_count(name) == 0) return;
  if (!is_environment(walk_.tree.text(value))) return;
  TreeCursor cursor(name);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    TSNode key = cursor.node();
    for (int depth = 0; depth < 4 && ts_node_named_child_count(key) > 0; ++depth)
      key = ts_node_named_child(key, 0);
    if (const auto path = name_path(walk_.tree.text(key)); path && ts_node_is_named(key))
      mentions_.add(*path, Role::kReads, frame, SourceTree::line(key));
  }
}

}  // namespace kestrix::index
