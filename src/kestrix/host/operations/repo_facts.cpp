#include "kestrix/workers/wiki/repo_facts.h"

#include <algorithm>

namespace kestrix {

std::string _norm(std::string_view path) {
  std::string normal;
  normal.reserve(path.size());
  while (!path.empty()) {
    const auto slash = std::min(path.find('/'), path.size());
    const auto piece = path.substr(0, slash);
    path.remove_prefix(std::min(slash + 1, path.size()));
    if (piece.empty() || piece == ".") continue;
    if (!normal.empty()) normal += '/';
    normal.append(piece);
  }
  return normal;
}

Text _read_text(const RepoPath& path, ReadTextOptions options) {
  return path.root->text(path.below, options);
}

}  // namespace kestrix
