#pragma once

#include <fmt/format.h>

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

/// `count` files of a pattern in which {0} is a letter, behind `more`.
inline AnsweredRepository::Files repeated(std::size_t count, std::string_view path,
                                          std::string_view text,
                                          AnsweredRepository::Files more = {}) {
  for (std::size_t at = 0; at < count; ++at) {
    const char letter = static_cast<char>('a' + at);
    more.emplace_back(fmt::format(fmt::runtime(path), letter),
                      fmt::format(fmt::runtime(text), letter));
  }
  return more;
}

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
