#pragma once

#include <map>
#include <string>
#include <vector>

#include "kestrix/host/flows/dispatch/dispatch_roots.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

/// The texts of files that no language reads: manifests, lists of programs, start scripts. Each is
/// read once.
class TableTexts {
 public:
  explicit TableTexts(const RepoRoot& root) : root_(root) {}
  const std::string& of(const CodeEvidence& evidence, index::FileId file);

 private:
  const RepoRoot& root_;
  std::map<index::FileId, std::string> texts_;
};

/// Adds the files without code that name entry points, by a path ("scripts/check.js"), a dotted
/// name
/// ("app.cli:main") or what they declare ("CleanUpJob"): those in the folders above them, and what
/// sets a product up there.
void add_tables(Dispatch& dispatch, TableTexts& texts);

}  // namespace kestrix
