#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/workers/wiki_cluster.h"

namespace kestrix::test {

using Paths = std::vector<std::string>;
using Edges = std::vector<FileEdge>;

inline FileEdge edge(std::string_view source, std::string_view target, double weight = 1) {
  return {source, target, weight};
}

inline Symbol symbol(SymbolId id, std::string name, std::string signature = "") {
  return {id, std::move(name), std::move(signature)};
}

inline SourceFileRecord file(std::string path) { return {std::move(path)}; }
inline DocumentRecord document(std::string path) { return {std::move(path)}; }

}  // namespace kestrix::test
