#pragma once

// The JSON documents of the published schemas. Each function returns the whole text, and the same
// values give the same bytes.

#include <span>
#include <string>

#include "capi/answers/answers.h"
#include "capi/answers/references.h"
#include "kestrix/host/queries/edge_query.h"
#include "kestrix/host/queries/why.h"
#include "kestrix/index/refresh/indexer.h"

namespace kestrix {

std::string pages_as_json(const About& about, std::span<const AnsweredPage> pages);
std::string why_as_json(const About& about, const WhyAnswer& answer);
std::string edges_as_json(const About& about, std::span<const FoundEdge> edges);
std::string references_as_json(const About& about, std::span<const FoundReference> references);
std::string symbols_as_json(const About& about, std::span<const FoundSymbol> symbols);
std::string statistics_as_json(const About& about, const index::RefreshResult& refresh,
                               const index::Statistics& statistics);
/// What an index leaves out, a row each: path, reason.
std::string left_out_as_json(const About& about, std::span<const index::LeftOut> left_out);

}  // namespace kestrix
