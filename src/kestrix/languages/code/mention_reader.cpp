#include "kestrix/languages/code/mention_reader.h"

#include <algorithm>

#include "kestrix/languages/code/names.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {

// Whether the text is a name or path of names; it is taken as a mention unless it is local.
bool MentionReader::mention(TSNode node, std::string_view text, const Frame& frame) {
  if (frame.member) return true;
  auto path = name_path(text);
  if (!path) return false;
  const bool absolute = walk_.source.capital_types && text.starts_with("::");
  if (absolute || text.starts_with('\\')) path->insert(0, 1, '.');
  const std::string_view root = std::string_view(*path).substr(0, path->find('.'));
  if (std::ranges::find(walk_.source.self, root) != walk_.source.self.end()) {
    add_own_member(*path, root, frame, SourceTree::line(node));
    return true;
  }
  if (walk_.source.variables != '\0' && root.starts_with(walk_.source.variables)) return true;
  const bool function = frame.role == Role::kCalls && root.size() == path->size();
  if (walk_.locals.contains(root) && !(function && walk_.source.functions_apart)) return true;
  const bool plain = is_of(frame.role, {Role::kUses, Role::kLists, Role::kConstructs});
  Role role = frame.role;
  if (frame.errors && plain && walk_.source.is_error(*path, frame.role)) role = *frame.errors;
  if (role == Role::kThrows && walk_.source.thrown_types) role = thrown(*path);
  if (role == Role::kImplements && !frame.owner.empty()) {
    walk_.claims.push_back({{frame.owner, text}, SourceTree::line(node)});
  } else {
    add(*path, role, frame, SourceTree::line(node));
  }
  return true;
}

// Of "Type.make" the type; what makes an error by itself is called.
Role MentionReader::thrown(std::string& path) {
  const std::size_t dot = path.rfind('.');
  const std::size_t last = dot + 1;  // 0 without a dot
  if (!starts_in_lower_case(std::string_view(path).substr(last))) return Role::kThrows;
  if (dot == std::string::npos) return Role::kCalls;
  const std::string_view type = std::string_view(path).substr(0, dot);
  if (!starts_in_upper_case(type.substr(type.rfind('.') + 1))) return Role::kCalls;
  path.erase(dot);
  return Role::kThrows;
}

// "this.run()": what is called or handed over by the object itself.
void MentionReader::add_own_member(std::string_view path, std::string_view self, const Frame& frame,
                                   std::uint32_t line) {
  if (path.size() <= self.size() || !is_of(frame.role, {Role::kCalls, Role::kLists})) return;
  if (std::ranges::find(walk_.source.own, self) != walk_.source.own.end()) {
    add("@" + std::string(path.substr(self.size() + 1)), frame.role, frame, line);
  } else if (walk_.source.members_in_scope && self == walk_.source.self.front()) {
    add(path.substr(self.size() + 1), frame.role, frame, line);
  }
}

void MentionReader::add(std::string_view name, Role role, const Frame& frame, std::uint32_t line) {
  if (frame.ahead && role == Role::kAnnotates) {
    annotations_.emplace_back(std::string(name), line);
  } else {
    mentions_.add(name, role, frame.holder, line);
  }
}

void MentionReader::annotate(std::uint32_t declared) {
  for (const auto& [name, line] : annotations_)
    mentions_.add(name, Role::kAnnotates, declared, line);
  annotations_.clear();
}

// "env = "KEY"" among the tokens of an attribute.
bool MentionReader::is_key(TSNode node) const {
  std::string_view before = walk_.tree.text().substr(0, ts_node_start_byte(node));
  const auto trim = [&] {
    while (!before.empty() && ascii::is_space(before.back())) before.remove_suffix(1);
  };
  if (walk_.source.key_words.empty()) return false;
  trim();
  if (!before.ends_with('=')) return false;
  before.remove_suffix(1);
  trim();
  return std::ranges::any_of(walk_.source.key_words, [&](std::string_view word) {
    if (!before.ends_with(word)) return false;
    const std::size_t start = before.size() - word.size();
    return start == 0 || !ascii::is_word(before[start - 1]);
  });
}

void MentionReader::add_string(TSNode node, const Frame& frame) {
  const std::string_view content = literal_content(walk_.tree.text(node));
  if (frame.role == Role::kType) {
    if (const auto path = name_path(content))
      add(*path, Role::kType, frame, SourceTree::line(node));
  } else if (frame.ahead && is_key(node) && name_path(content)) {
    add(content, Role::kReads, frame, SourceTree::line(node));
  } else if (may_name_something(content)) {
    const bool action = content.find('#') != std::string_view::npos;
    std::string whole = action ? walk_.contexts[frame.around] : std::string();
    add(whole.append(content), Role::kString, frame, SourceTree::line(node));
  }
}

// What is called of a type's name is declared in that type.
void MentionReader::add_open_call(TSNode callee, const Frame& frame) {
  const CalledMember member = called_member(walk_.tree.text(callee));
  if (member.name.empty()) return;
  const bool known = std::ranges::find(walk_.source.self, member.object) != walk_.source.self.end();
  const bool simple = member.object.find_first_of(".(") == std::string_view::npos;
  if (known || (simple && starts_in_upper_case(member.object))) return;
  mentions_.add(":" + std::string(member.name), Role::kCalls, frame.holder,
                ts_node_end_point(callee).row + 1);
}

void MentionReader::add_hidden(const Mention& found) {
  mentions_.add(found.name, found.role, found.within, found.line);
}

void MentionReader::add_claim(const Claim& claim, std::uint32_t type, std::uint32_t line) {
  if (const auto base = name_path(claim.base)) mentions_.add(*base, Role::kImplements, type, line);
}

void MentionReader::hand_over() {
  walk_.facts.mentions = mentions_.take();
  walk_.facts.dropped += mentions_.dropped();
}

}  // namespace kestrix::index
