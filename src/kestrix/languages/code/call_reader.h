#pragma once

#include <tree_sitter/api.h>

#include <string_view>

#include "kestrix/languages/code/declaration_reader.h"
#include "kestrix/languages/code/mention_reader.h"
#include "kestrix/languages/code/setting_reader.h"
#include "kestrix/languages/code/walk_state.h"

namespace kestrix::index {

/// Reads what is called and made, and what is said by that.
class CallReader {
 public:
  using Rule = CompiledRules::Rule;

  CallReader(WalkState& walk, MentionReader& mentions, SettingReader& settings,
             DeclarationReader& declarations)
      : walk_(walk), mentions_(mentions), settings_(settings), declarations_(declarations) {}

  bool visit_call(const Rule& rule, TSNode node, Frame& frame);
  bool visit_literal(const Rule& rule, TSNode node, Frame& frame);

 private:
  // Mentions what is called of an object as one path, if the object is nothing but names; else the
  // name alone says what is called. Returns what the call is known by.
  std::string_view visit_object(TSNode call, TSNode object, TSNode callee, Frame& frame);
  bool is_call(TSNode node, TSSymbol parent) const;
  // Of "name[Type]" the name, where the grammar has a node for that; "" for anything else.
  std::string_view without_arguments(TSNode callee, TSNode call) const;
  // Whether anything else in the call counts.
  bool note_macro(TSNode call, TSNode callee, std::string_view name, Frame& frame);
  void add_member(const MacroNotes::Member& member, const Frame& frame);

  WalkState& walk_;
  MentionReader& mentions_;
  SettingReader& settings_;
  DeclarationReader& declarations_;
};

}  // namespace kestrix::index
