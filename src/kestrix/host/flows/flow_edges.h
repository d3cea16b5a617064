#pragma once

#include <vector>

#include "kestrix/index/repository.h"

namespace kestrix {

/// While it lives, the generator's `_file_edges` holds these edges, too, on the thread that made
/// it: what leads to entry points otherwise than by an import, for the rule that counts reach.
class FlowEdgesScope {
 public:
  using Edges = std::vector<FileEdge>;

  explicit FlowEdgesScope(const Edges& edges);
  FlowEdgesScope(const FlowEdgesScope&) = delete;
  FlowEdgesScope& operator=(const FlowEdgesScope&) = delete;
  ~FlowEdgesScope();

  /// The edges in force on this thread; null without any.
  static const Edges* current();

 private:
  const Edges* before_;
};

}  // namespace kestrix
