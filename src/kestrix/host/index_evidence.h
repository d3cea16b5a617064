#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/reason.h"
#include "kestrix/index/index.h"

namespace kestrix {

/// "1 file", "2 files".
std::string counted(std::uint64_t count, std::string_view one, std::string_view many);

/// "Name:12, Other:40 …": the first places of one file, by their names and lines.
std::string names_and_lines(std::span<const Place> places);

/// What the index says about single files, in the form of reasons. Views into the index.
class IndexEvidence {
 public:
  /// Linear in the edges. `index` must outlive the object.
  explicit IndexEvidence(const index::RepositoryIndex& index);

  /// A reason that counts definitions in one file, with its places cut to `kMostPlaces`: `what`
  /// ("defines 3 registries") and their names.
  static Reason definitions(std::string kind, std::string_view what, std::vector<Place> places);

  /// The files that depend on a file, by path.
  std::span<const index::IndexedEdge> edges_to(std::string_view path) const;

  /// "used by 31 files", the strongest dependents first; count 0 when nothing uses it.
  Reason used_by(std::string_view path) const;

  /// The place of a symbol of the index.
  Place place_of(const index::IndexedSymbol& symbol) const;
  /// The same by the symbol's id; only the path is unknown when there is no such symbol.
  Place place_of(SymbolId id) const;

 private:
  const index::RepositoryIndex& index_;
  std::vector<index::IndexedEdge> edges_;  // by target, then source
};

/// Adds a reason that counts something.
inline void add_counted(std::vector<Reason>& reasons, Reason reason) {
  if (reason.count > 0) reasons.push_back(std::move(reason));
}

}  // namespace kestrix
