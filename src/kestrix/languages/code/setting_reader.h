#pragma once

#include <tree_sitter/api.h>

#include <string_view>

#include "kestrix/languages/code/mention_reader.h"
#include "kestrix/languages/code/walk_state.h"

namespace kestrix::index {

/// Notes which settings a file reads.
class SettingReader {
 public:
  using Rule = CompiledRules::Rule;

  SettingReader(WalkState& walk, MentionReader& mentions) : walk_(walk), mentions_(mentions) {}

  /// "process.env.KEY"
  bool read_member(TSNode node, std::string_view text, const Frame& frame);
  bool read_setting(TSNode node, std::string_view text, const Frame& frame);
  bool gives_settings(std::string_view path) const;
  bool is_environment(std::string_view path) const;
  /// The first argument, if it is a string, is what is read.
  void add_key(TSNode call, TSNode callee, TSFieldId arguments, const Frame& frame);
  /// "{ KEY, OTHER: name } = environment"
  void add_taken_keys(const Rule& rule, TSNode node, TSNode name, const Frame& frame);

 private:
  WalkState& walk_;
  MentionReader& mentions_;
};

}  // namespace kestrix::index
