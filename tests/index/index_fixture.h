#pragma once

#include <fmt/format.h>

#include <chrono>
#include <string>
#include <thread>

#include "kestrix/index/refresh/indexer.h"
#include "tests/index/dump.h"
#include "tests/index/scratch.h"

namespace kestrix::index {

/// A repository with an index beside it.
class IndexFixture {
 public:
  void write(std::string_view path, std::string_view text = "") const {
    scratch_.write(fmt::format("repo/{}", path), text);
  }
  void remove(std::string_view path) const { scratch_.remove(fmt::format("repo/{}", path)); }

  IndexOptions options(std::string_view file = "index.sqlite") const {
    IndexOptions options;
    options.root = scratch_ / "repo";
    options.file = scratch_ / file;
    return options;
  }

  /// Lets the files grow older than a tick of the clock: younger ones are read at every refresh,
  /// because a later change could leave the same stamp behind.
  static void settle() { std::this_thread::sleep_for(std::chrono::milliseconds(50)); }

  RefreshedIndex refreshed() const { return refresh_and_open(options()); }
  const Scratch& scratch() const { return scratch_; }

 private:
  Scratch scratch_;
};

}  // namespace kestrix::index
