#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// A repository in memory: path and text of each file.
using World = std::map<std::string, std::string>;

/// What the resolvers of all languages make of it, as "source -> target" in the order of the paths;
/// ends in "unresolved N" when imports that looked local led nowhere. Files are read as the index
/// reads them.
std::vector<std::string> edges_of(const World& world);

/// The same with weights: "source -> target *3".
std::vector<std::string> weighted_edges_of(const World& world);

}  // namespace kestrix::index
