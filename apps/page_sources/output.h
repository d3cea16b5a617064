#pragma once

// The forms in which answers are printed, but JSON (capi/answers/json.h); docs/output.md describes
// them. Each function returns the whole text, and the same values give the same bytes.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capi/answers/answers.h"
#include "capi/answers/references.h"
#include "kestrix/host/queries/edge_query.h"
#include "kestrix/host/queries/why.h"
#include "kestrix/index/refresh/indexer.h"

namespace kestrix::program {

/// How text looks on the terminal that shows it.
struct TextStyle {
  bool styled = false;    ///< headings bold, reasons dimmed
  std::size_t width = 0;  ///< columns to which reasons are cut; 0: they are not
};

std::string pages_as_text(std::span<const AnsweredPage> pages, const TextStyle& style);
std::string pages_as_tsv(std::span<const AnsweredPage> pages);
std::string paths_as_lines(std::span<const std::string> paths, bool nul);

std::string why_as_text(const WhyAnswer& answer, const TextStyle& style);

std::string edges_as_tsv(std::span<const FoundEdge> edges);
/// Files stand in a box for each of their folders; folders, whose edges are sums, stand alone.
std::string edges_as_dot(std::span<const FoundEdge> edges, bool folders);

std::string references_as_tsv(std::span<const FoundReference> references);

std::string symbols_as_tsv(std::span<const FoundSymbol> symbols);

/// The figures of an index that lies in `file`.
std::string statistics_as_text(const About& about, std::string_view file,
                               const index::Statistics& statistics);

/// What an index leaves out, a row each: path, reason.
std::string left_out_as_tsv(std::span<const index::LeftOut> left_out);

/// What a refresh did, as one line without its end.
std::string refresh_as_text(const index::RefreshResult& refresh);

}  // namespace kestrix::program
