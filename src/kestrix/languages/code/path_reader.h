#pragma once

#include <tree_sitter/api.h>

#include <string_view>
#include <unordered_set>

#include "kestrix/languages/code/mention_reader.h"
#include "kestrix/languages/code/names.h"
#include "kestrix/languages/code/setting_reader.h"
#include "kestrix/languages/code/walk_state.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Reads names that are joined, with types as their arguments, and words among tokens.
class PathReader {
 public:
  using Rule = CompiledRules::Rule;

  PathReader(WalkState& walk, MentionReader& mentions, SettingReader& settings);

  bool visit_path(TSNode node, Frame& frame);
  /// "a::Name<T>": the path up to the arguments is one mention.
  bool visit_generic(const Rule& rule, TSNode node, Frame& frame);
  /// Tokens are not parsed: what stands around a word tells what it is.
  void visit_token(TSNode node, Frame& frame);
  /// The names of a type, without annotations before and arguments behind them.
  std::string_view text_of_type(TSNode node) const;
  Role role_of_type_arguments(TSNode list, Role role) const;

 private:
  // "value.run()" or "Type::run", where "run" is imported: no member of the value. What starts in
  // upper case before a "." may be a type that has a member of that name.
  bool add_extension(TSNode node, std::string_view text, const Frame& frame);
  // "env::var("KEY")" among tokens.
  void read_token(TSNode node, const Token& token, const Frame& frame);

  WalkState& walk_;
  MentionReader& mentions_;
  SettingReader& settings_;
  std::unordered_set<std::string_view, SeededHash> imported_;  // functions that may be extensions
};

}  // namespace kestrix::index
