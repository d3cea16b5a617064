#pragma once

#include "kestrix/facts/facts.h"
#include "kestrix/languages/code/rules.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// The most declarations and mentions that one file gives; what is beyond is counted.
inline constexpr std::size_t kMostDeclarations = 20'000;
inline constexpr std::size_t kMostMentions = 60'000;

/// Walks over the whole tree by a language's rules and adds declarations and mentions to `facts`.
///
/// One pass, linear in the number of nodes, without recursion. A name that the enclosing functions
/// bind before its mention is no mention.
void read_code(const CompiledRules& rules, const SourceTree& tree, FileFacts& facts);

}  // namespace kestrix::index
