#pragma once

#include <cstddef>
#include <string_view>

#include "kestrix/facts/document_facts.h"

namespace kestrix {

/// So many words are an essay, of which nothing but its place need speak.
inline constexpr std::uint32_t kWordsOfAnEssay = 300;

/// A listing with hardly a word about it.
bool is_mostly_code(const index::DocumentFacts& facts);

/// No list of links.
bool links_few_sites(const index::DocumentFacts& facts);

/// Prose about the product: few blocks of code, nothing to type, nobody to instruct, no list of
/// links, no steps.
bool is_explanation(const index::DocumentFacts& facts);

/// Whether it has the form of a proposal: of the headings that such texts have ("Goals",
/// "Alternatives considered", "Consequences" ...) at least two.
bool is_proposal(const index::DocumentFacts& facts);

/// How often a text weighs something or says why: "because", "instead of", "trade-off". What is
/// fenced as code does not count. Linear.
std::size_t count_reasons(std::string_view text);

}  // namespace kestrix
