#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/host/examples/samples.h"
#include "kestrix/host/examples/test_evidence.h"

namespace kestrix {

/// What of the tests a page shows: what they share, wherever it lies, and the tests that show most.
class ExampleChoice {
 public:
  /// Linear in references. Both must outlive the object.
  ExampleChoice(const TestEvidence& tests, const CodeEvidence& code);

  /// The paths of the tests that the page's rule chooses among, ascending. All, unless so much that
  /// tests share lies outside of them that the page must have room for it.
  std::vector<std::string> paths() const;

  /// What the rule counts, as edges between `paths`: to what tests share, one for each test that
  /// uses it; from the tests that show most to the product, the more the more they show.
  std::vector<FileEdge> edges(const PathSet& paths) const;

  bool is_shared(index::FileId file) const { return shared_[file]; }
  /// What tests share outside of them, that of the most tests first, then by path.
  std::span<const index::FileId> support() const { return support_; }
  /// Where a library has them, a few samples of its use, best first.
  std::span<const Sample> samples() const { return samples_; }
  /// How often a test names what tests share.
  std::uint32_t shared_mentions(index::FileId test) const { return mentions_[test]; }

 private:
  void find_shared();
  void count_mentions();
  void rank_tests();
  double points(index::FileId test) const;
  bool uses(index::FileId test, index::FileId shared) const;
  std::vector<bool> written_alike() const;
  std::size_t outside() const { return support_.size() + samples_.size(); }
  bool is_narrowed() const;

  const TestEvidence& tests_;
  const CodeEvidence& code_;
  std::vector<bool> shared_;            // by file
  std::vector<index::FileId> helpers_;  // of what is shared, the tests, most shared first
  std::vector<index::FileId> support_;  // the others
  std::vector<Sample> samples_;
  std::vector<std::uint32_t> mentions_;  // by file
  std::vector<index::FileId> ranked_;    // the other tests, the best first; no more than a page has
};

}  // namespace kestrix
