#pragma once

// The forms in which answers are printed; docs/output.md describes them. Each function returns the
// whole text, and the same values give the same bytes.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/page_sources/answers.h"
#include "kestrix/index/indexer.h"
#include "kestrix/workers/wiki_cluster.h"

namespace kestrix::program {

/// Number of the JSON form; raised when a reader of the old form would misread the new one.
inline constexpr int kJsonSchema = 1;

std::string pages_as_text(std::span<const PageAnswer> pages, bool styled);
std::string pages_as_json(std::string_view repository, std::span<const PageAnswer> pages);

std::string edges_as_tsv(std::span<const FileEdge> edges);
std::string edges_as_json(std::string_view repository, std::span<const FileEdge> edges);
std::string edges_as_dot(std::span<const FileEdge> edges);

std::string symbols_as_tsv(std::span<const FoundSymbol> symbols);
std::string symbols_as_json(std::string_view repository, std::span<const FoundSymbol> symbols);

/// The figures of an index that lies in `file`.
std::string statistics_as_text(std::string_view repository, std::string_view file,
                               const index::Statistics& statistics);

/// What a refresh did, as one line without its end.
std::string refresh_as_text(const index::RefreshResult& refresh);

}  // namespace kestrix::program
