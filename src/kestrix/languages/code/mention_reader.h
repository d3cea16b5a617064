#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/languages/code/mentions.h"
#include "kestrix/languages/code/walk.h"
#include "kestrix/languages/code/walk_state.h"

namespace kestrix::index {

/// Notes whom a file names, in which role, unless the name is local.
class MentionReader {
 public:
  using Rule = CompiledRules::Rule;

  explicit MentionReader(WalkState& walk) : walk_(walk) {}

  /// Whether the text is a name or path of names; it is taken as a mention unless it is local.
  bool mention(TSNode node, std::string_view text, const Frame& frame);
  void add(std::string_view name, Role role, const Frame& frame, std::uint32_t line);
  void add_string(TSNode node, const Frame& frame);
  /// What is called of a type's name is declared in that type.
  void add_open_call(TSNode callee, const Frame& frame);
  /// Gives what stands ahead of a declaration to it.
  void annotate(std::uint32_t declared);

  void drop_annotations() { annotations_.clear(); }
  void add_hidden(const Mention& found);
  void add_claim(const Claim& claim, std::uint32_t type, std::uint32_t line);
  /// Gives the file all that it mentions.
  void hand_over();

 private:
  // Of "Type.make" the type; what makes an error by itself is called.
  static Role thrown(std::string& path);
  // "this.run()": what is called or handed over by the object itself.
  void add_own_member(std::string_view path, std::string_view self, const Frame& frame,
                      std::uint32_t line);
  // "env = "KEY"" among the tokens of an attribute.
  bool is_key(TSNode node) const;

  WalkState& walk_;
  Mentions mentions_{kMostMentions};
  std::vector<std::pair<std::string, std::uint32_t>> annotations_;  // of what follows
};

}  // namespace kestrix::index
