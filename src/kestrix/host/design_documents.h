#pragma once

#include <string>
#include <vector>

namespace kestrix {

/// The design documents among `documents`, best first, each distinct path once. What counts and in
/// which order is told at `decision_docs`, which cuts this list.
std::vector<std::string> rank_design_documents(const std::vector<std::string>& documents);

}  // namespace kestrix
