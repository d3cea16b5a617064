#pragma once

#include <map>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

/// One class of entry points, and which files may be what leads to it.
class DispatchRoots {
 public:
  DispatchRoots(const CodeEvidence& evidence, std::span<const index::FileId> roots);

  const std::vector<index::FileId>& files() const { return files_; }
  std::size_t size() const { return files_.size(); }
  /// Headers that declare what an entry point defines, each with the entry point; by this.
  struct Header {
    index::FileId file;
    index::FileId root;
  };
  const std::vector<Header>& headers() const { return headers_; }
  /// No entry point but one that others of them are made from.
  bool may_dispatch(index::FileId file) const;

 private:
  std::vector<bool> bases() const;
  void take_headers();

  const CodeEvidence& evidence_;
  std::vector<index::FileId> files_;
  std::vector<Header> headers_;
  std::vector<bool> is_root_;  // by file
  std::vector<bool> is_base_;  // by file
  bool of_product_ = true;
};

/// The headers of that file's name that it includes: they declare what it defines.
std::vector<index::FileId> headers_of(const CodeEvidence& evidence, index::FileId file);

/// What one file has to do with some others.
struct Seen {
  std::set<index::FileId> files;
  std::size_t declarations = 0;
  std::vector<Place> at;

  void take(const CodeEvidence& evidence, const Naming& naming, index::FileId named);
};
using SeenBy = std::map<index::FileId, Seen>;

/// What leads to one class of entry points, as it is found.
struct Dispatch {
  const CodeEvidence& evidence;
  const NamingGraph& graph;
  DispatchRoots roots;
  ScoreSheet sheet;
  std::map<index::FileId, std::set<index::FileId>>
      reached;                         ///< the entry points by what leads there
  std::vector<index::FileId> hubs;     ///< those that name them; ascending
  std::vector<index::FileId> holders;  ///< the few that hold what they come from; ascending

  void lead(index::FileId file, const std::set<index::FileId>& to) {
    reached[file].insert(to.begin(), to.end());
  }
};

/// Adds the types that the entry points come from, and who has to do with these. Errors that they
/// raise are none.
void add_bases(Dispatch& dispatch, const std::set<index::DeclarationRef>& errors);

}  // namespace kestrix
