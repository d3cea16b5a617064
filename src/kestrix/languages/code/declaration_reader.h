#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "kestrix/facts/declaration.h"
#include "kestrix/languages/code/mention_reader.h"
#include "kestrix/languages/code/setting_reader.h"
#include "kestrix/languages/code/walk_state.h"

namespace kestrix::index {

/// Takes what a file declares.
class DeclarationReader {
 public:
  using Rule = CompiledRules::Rule;

  DeclarationReader(WalkState& walk, MentionReader& mentions, SettingReader& settings)
      : walk_(walk), mentions_(mentions), settings_(settings) {}

  bool declare(const Rule& rule, TSNode node, Frame& frame);
  /// Makes what stands below a node members of the type that its language says.
  void enter_members(TSNode node, Frame& frame) const;
  /// "var a, b": what is declared like the name before.
  bool is_further_name(const Frame& up, TSNode node, TSFieldId field);
  void take(Declaration as, Frame& frame, bool counted = true);

 private:
  std::optional<std::string_view> declared_name(const Rule& rule, TSNode node, TSNode name,
                                                Frame& frame);
  // The child that is the name, where no field tells it.
  const void* child_at(TSNode node, std::string_view name) const;
  bool make_claim(TSNode node, const Declaration& as);
  bool classify(const Rule& rule, TSNode node, Declaration& as) const;
  bool lacks_body(TSNode node, const Declaration& as) const;
  // Gives a method to its type; where that stands elsewhere, its name says so.
  void give_to_owner(TSNode node, const Frame& frame, Declaration& as);
  // "A.B" is B in the namespace A.
  void nest(Declaration& as);
  void count_own_field(std::string_view path, std::uint32_t holder);
  // The head of a method may declare a field of its type.
  std::uint32_t holder_of(DeclarationKind kind, std::uint32_t holder) const;
  bool at_top(const Declaration& as) const;
  bool declare_named(const Rule& rule, TSNode node, Frame& frame);
  Declaration declaration_of(const Named& named, const Rule& rule, TSNode node,
                             const Frame& frame) const;
  // "Type::member" where the type stands in the file, too.
  void find_owner(Declaration& as) const;

  WalkState& walk_;
  MentionReader& mentions_;
  SettingReader& settings_;
  std::uint32_t open_ = 0;  // the enumeration whose members stand beside it
  std::set<std::pair<std::uint32_t, std::string>> own_fields_;  // by type
};

}  // namespace kestrix::index
