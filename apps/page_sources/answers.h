#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "apps/page_sources/arguments.h"
#include "kestrix/index/index.h"
#include "kestrix/workers/wiki/page_sources/detectors.h"

namespace kestrix::program {

/// The dispatch of one class of entry points.
struct FlowClass {
  std::string entry_points;        ///< the pattern or directory that selects the roots
  std::vector<std::string> roots;  ///< ascending
  std::vector<std::string> files;  ///< best first
};

/// The answer for one aspect page.
struct PageAnswer {
  PageName page;
  std::optional<bool> has_material;  ///< only of the errors page
  std::vector<std::string> files;    ///< best first; of the flows page: empty
  std::vector<FlowClass> classes;    ///< only of the flows page
};

/// Asks the detectors for each page. Throws what they throw.
std::vector<PageAnswer> answer_pages(const PageSourcesMixin& generator,
                                     std::span<const PageName> pages,
                                     std::span<const std::string> entry_points);

/// A symbol with its file.
struct FoundSymbol {
  std::string path;
  SymbolKind kind;
  std::string name;
  std::string signature;
};

/// The symbols of one kind, or of every kind, whose name matches; by path, kind, name and
/// signature.
std::vector<FoundSymbol> find_symbols(const Repository& repository, std::optional<SymbolKind> kind,
                                      const std::string& pattern);

/// Every dependency of the index, by source, then target. The paths are views into the index.
std::vector<FileEdge> list_edges(const index::RepositoryIndex& index);

}  // namespace kestrix::program
