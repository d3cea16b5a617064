#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/host/decisions/document_evidence.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {

/// So many entries of one form are a series.
inline constexpr std::size_t kSeriesLength = 3;

/// What the entries of one folder have in common.
struct Series {
  std::size_t padded = 0;    ///< numbers like "0007"
  std::size_t numbered = 0;  ///< of any form
  bool one_skeleton = false;
};

/// The numbered and dated documents of a repository, folder by folder. Views the paths given.
class AllSeries {
 public:
  /// `evidence` may be null: then no series is known by the form of its texts.
  AllSeries(const std::vector<std::string>& documents, const DocumentEvidence* evidence);

  /// Of the documents directly in a folder.
  Series of(std::string_view folder) const;

 private:
  using Counts = std::map<std::uint32_t, std::size_t>;

  void count_headings(std::string_view folder, std::vector<std::uint32_t> headings);
  bool has_skeleton(std::string_view folder, const Series& series) const;

  std::unordered_map<std::string_view, Series, SeededHash> series_;
  std::unordered_map<std::string_view, Counts, SeededHash> headings_;
};

}  // namespace kestrix
