#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/host/pages.h"
#include "kestrix/index/refresh/indexer.h"
#include "tests/index/scratch.h"

namespace kestrix {

/// A repository made of a few texts, and the generator over its index.
class AnsweredRepository {
 public:
  using Files = std::vector<std::pair<std::string, std::string>>;

  explicit AnsweredRepository(const Files& files) {
    for (const auto& [path, text] : files) scratch_.write("repo/" + path, text);
    index::IndexOptions options;
    options.root = scratch_ / "repo";
    options.file = scratch_ / "index.sqlite";
    index_ = index::refresh_and_open(options).index;
    generator_.emplace(*index_, options.root);
  }

  const WikiGenerator& generator() const { return *generator_; }

 private:
  index::Scratch scratch_;
  std::unique_ptr<index::RepositoryIndex> index_;
  std::optional<WikiGenerator> generator_;
};

inline std::vector<std::string> paths_of(const std::vector<Pick>& picks) {
  std::vector<std::string> paths;
  for (const Pick& pick : picks) paths.push_back(pick.path);
  return paths;
}

/// The text of a file's reason of that kind; "" without one.
inline std::string reason_of(const std::vector<Pick>& picks, std::string_view path,
                             std::string_view kind) {
  for (const Pick& pick : picks) {
    for (const Reason& reason : pick.reasons) {
      if (pick.path == path && reason.kind == kind) return reason.text;
    }
  }
  return {};
}

}  // namespace kestrix
