#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "kestrix/syntax/parser_memory.h"

namespace kestrix::index {

/// The syntax tree of a text, which must outlive it. Nodes of the tree and cursors over it live no
/// longer than this. One a thread at a time.
///
/// What a parse may cost is counted in steps: a hundred operations of the parser, 2 KiB of text
/// that its lexer reads, again and again where it goes back, 4 KiB of lists that it copies, or, at
/// an error, 64 KiB of text that it goes back over. For code each is some 20 microseconds; where
/// the parser goes back all the time the first may be four times as many. Time is not looked at, so
/// the same text is parsed or given up in every run.
class ParsedText {
 public:
  /// Throws Error when the library cannot read the grammar. Never recurses on the text's depth.
  ParsedText(const TSLanguage* grammar, std::string_view text, std::uint64_t steps);

  /// None when the parse would have taken more than the steps, or than ParserMemory::kLimit.
  std::optional<TSNode> root() const {
    if (tree_ == nullptr) return std::nullopt;
    return ts_tree_root_node(tree_);
  }

 private:
  ParserMemory memory_;  // of the tree, too, which is never deleted on its own
  const TSTree* tree_ = nullptr;
};

}  // namespace kestrix::index
