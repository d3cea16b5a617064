#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "kestrix/files/skip_counts.h"
#include "kestrix/host/pages.h"
#include "kestrix/host/queries/edge_query.h"
#include "kestrix/host/queries/why.h"
#include "kestrix/index/index.h"

namespace kestrix {

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

/// Answers each page. Throws what the pages throw, and what `before_each` throws.
std::vector<AnsweredPage> answer_pages(const WikiGenerator& generator,
                                       std::span<const Page* const> pages,
                                       std::span<const std::string> entry_points,
                                       const std::function<void()>& before_each = {});

/// Why a file is on a page, or why not. `file` is relative to `root`, or an absolute path below it.
/// Throws as `why` does.
WhyAnswer answer_why(const WikiGenerator& generator, const std::filesystem::path& root,
                     const Page& page, const std::string& file);

/// Which edges are asked for, and in what shape.
struct EdgeRequest {
  EdgeQuery query;
  std::vector<std::string> path;    ///< two files between which the shortest way is sought, or none
  std::optional<unsigned> folders;  ///< sums between folders of so many levels; 0: of all levels
};

/// Throws `BadGlob`, and `Error`, which names the path, for a way between unknown files.
std::vector<FoundEdge> answer_edges(const index::RepositoryIndex& index,
                                    const EdgeRequest& request);

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

}  // namespace kestrix
