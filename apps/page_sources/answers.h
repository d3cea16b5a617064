#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "apps/page_sources/arguments.h"
#include "kestrix/files/skip_counts.h"
#include "kestrix/host/pages.h"
#include "kestrix/index/index.h"

namespace kestrix::program {

/// What every answer about a repository says of it.
struct About {
  std::string repository;               ///< absolute path of the directory
  std::optional<std::string> revision;  ///< of the work tree's commit; none outside of one
  std::optional<bool> clean;  ///< whether the files are those of the commit; none: unknown
  index::SkipCounts left_out;
  std::vector<std::string> warnings;  ///< why the answer may be incomplete
};

/// The answer for one page.
struct AnsweredPage {
  const Page* page;
  std::variant<PageAnswer, FlowsAnswer> answer;
};

/// Answers each page. Throws what the pages throw.
std::vector<AnsweredPage> answer_pages(const WikiGenerator& generator,
                                       std::span<const Page* const> pages,
                                       std::span<const std::string> entry_points);

/// A symbol with its file.
struct FoundSymbol {
  std::string path;
  SymbolKind kind;
  std::string name;
  std::string signature;
  std::uint32_t line = 0;  ///< 1-based
};

/// The symbols of these kinds (all without any) whose name matches a glob in any case; by path,
/// kind, name and signature.
std::vector<FoundSymbol> find_symbols(const index::RepositoryIndex& index,
                                      std::span<const SymbolKind> kinds, const std::string& glob);

/// Every path of these answers once, in their order.
std::vector<std::string> distinct_paths(std::span<const AnsweredPage> pages);

}  // namespace kestrix::program
