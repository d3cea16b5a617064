#include "kestrix/host/decisions/document_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>

#include "kestrix/roles/folder_names.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/heading_hash.h"

namespace kestrix {
namespace {

// The bounds of a text that tells why and how, and neither instructs nor lists.
constexpr std::uint32_t kFewestWords = 150;
constexpr std::uint32_t kProseOfCode = 4;  // lines for one of code
constexpr std::uint32_t kMostCommands = 2;
constexpr std::uint32_t kMostAddressed = 12;  // words in a thousand
constexpr std::uint32_t kMostSteps = 2;
constexpr std::uint32_t kAddressesAllowed = 8;
constexpr std::uint32_t kWordsOfAnAddress = 80;
constexpr std::uint32_t kStub = 5;
constexpr std::size_t kHeadingsOfProposal = 2;

// The second row: the same in Chinese.
constexpr auto kProposalHeadings =
    std::to_array<std::uint32_t>({heading_hash("goals"),
                                  heading_hash("non-goals"),
                                  heading_hash("non goals"),
                                  heading_hash("goals and non-goals"),
                                  heading_hash("goals / non-goals"),
                                  heading_hash("out of scope"),
                                  heading_hash("motivation"),
                                  heading_hash("rationale"),
                                  heading_hash("proposal"),
                                  heading_hash("alternatives"),
                                  heading_hash("alternatives considered"),
                                  heading_hash("considered options"),
                                  heading_hash("prior art"),
                                  heading_hash("drawbacks"),
                                  heading_hash("trade-offs"),
                                  heading_hash("tradeoffs"),
                                  heading_hash("risks / trade-offs"),
                                  heading_hash("decision"),
                                  heading_hash("consequences"),
                                  heading_hash("unresolved questions"),
                                  heading_hash("design goals"),
                                  heading_hash("design principles"),
                                  heading_hash("design decisions"),
                                  heading_hash("\u80cc\u666f"),
                                  heading_hash("\u76ee\u6807"),
                                  heading_hash("\u975e\u76ee\u6807"),
                                  heading_hash("\u65b9\u6848")});

constexpr auto kReasonWords = std::to_array<std::string_view>(
    {"advantages",   "alternatives",  "because",       "chose",     "chosen",    "decided",
     "deliberately", "disadvantage",  "disadvantages", "downside",  "downsides", "drawback",
     "drawbacks",    "intentionally", "philosophy",    "rationale", "reason",    "reasons",
     "therefore",    "tradeoff",      "tradeoffs",     "unlike",    "why"});

struct Pair {
  std::string_view first;
  std::string_view second;
};
constexpr std::array kReasonPairs{Pair{"instead", "of"}, Pair{"rather", "than"},
                                  Pair{"trade", "off"}, Pair{"trade", "offs"},
                                  Pair{"non", "goals"}};

bool gives_reason(std::string_view before, std::string_view word) {
  if (is_among(kReasonWords, word)) return true;
  return std::ranges::any_of(kReasonPairs, [&](const Pair& pair) {
    return ascii::equals(before, pair.first) && ascii::equals(word, pair.second);
  });
}

bool marks_fence(std::string_view line) {
  const auto begin = line.find_first_not_of(" \t");
  if (begin == line.npos) return false;
  return line.substr(begin).starts_with("```") || line.substr(begin).starts_with("~~~");
}

}  // namespace

bool is_mostly_code(const index::DocumentFacts& facts) {
  return facts.code_lines * 3 > facts.lines * 2 || facts.words < kStub;
}

bool links_few_sites(const index::DocumentFacts& facts) {
  return facts.outward_links <= std::max(kAddressesAllowed, facts.words / kWordsOfAnAddress);
}

bool is_explanation(const index::DocumentFacts& facts) {
  return facts.words >= kFewestWords && facts.code_lines * kProseOfCode <= facts.lines &&
         facts.commands <= kMostCommands && facts.numbered_headings <= kMostSteps &&
         std::uint64_t{facts.addressed} * 1000 <= std::uint64_t{kMostAddressed} * facts.words &&
         links_few_sites(facts);
}

bool is_proposal(const index::DocumentFacts& facts) {
  std::set<std::uint32_t> found;
  for (const auto heading : facts.headings) {
    if (std::ranges::find(kProposalHeadings, heading) != kProposalHeadings.end()) {
      found.insert(heading);
    }
  }
  return found.size() >= kHeadingsOfProposal;
}

std::size_t count_reasons(std::string_view text) {
  std::size_t count = 0;
  bool in_code = false;
  std::string_view before;
  while (!text.empty()) {
    auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (marks_fence(line)) in_code = !in_code;
    while (!in_code && !line.empty()) {
      const auto end =
          static_cast<std::size_t>(std::ranges::find_if_not(line, ascii::is_alpha) - line.begin());
      if (end > 0 && gives_reason(before, line.substr(0, end))) ++count;
      if (end > 0) before = line.substr(0, end);
      line.remove_prefix(std::max<std::size_t>(end, 1));
    }
  }
  return count;
}

}  // namespace kestrix
