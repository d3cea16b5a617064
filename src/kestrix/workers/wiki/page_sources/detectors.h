#pragma once

#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/utils/logger.h"
#include "kestrix/workers/project_units.h"
#include "kestrix/workers/report_generator.h"
#include "kestrix/workers/wiki/page_sources/host_values.h"
#include "kestrix/workers/wiki/repo_facts.h"
#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {

/// The module's logger. Only `_extension_files` writes to it.
extern const Logger logger;

/// The detectors: for one aspect page each, the files that the page is about.
///
/// A generator takes this class in as a base and supplies its members and those of
/// `RepoFactsMixin`; the program that it is linked into supplies the host functions (`_norm`,
/// `is_test_path`, `cluster_inputs` …). The class has no state and every call reads the host
/// afresh, so calls may run at once as far as the host's members may. The detectors call each
/// other through their virtual members.
///
/// Every detector returns repository-relative paths in a total order, owned by the caller. A
/// failure of the host reaches the caller, and no part of a result is returned, unless the
/// detector says otherwise.
class PageSourcesMixin : public RepoFactsMixin {
 public:
  // The types of a C++ host's values, as the recipes name them.
  using Path = std::string;
  using PathSet = kestrix::PathSet;
  using SymbolList = kestrix::SymbolList;
  using Texts = PathTexts;
  using Counts = PathCounts;
  using Roots = RootMap;

  /// The paths that aspect pages may be grounded in: exactly the indexed source files that
  /// `_test_files` leaves out, in the form that `_norm` gives.
  virtual std::vector<std::string> _planner_paths() const = 0;
  /// The documents of the index.
  virtual std::vector<DocumentRecord> _indexed_documents() const = 0;

  /// The evidence-backed edges among `paths`, as `cluster_inputs` gives them. Their paths are
  /// views that live as long as the repository's handle.
  virtual std::vector<FileEdge> _file_edges(const PathSet& paths) const;

  /// Configuration: the indexed source files that configure, by name or directory; ascending.
  virtual std::vector<std::string> _config_files() const;

  /// Errors: whether the index has a class named "…Error" or "…Exception". False on any failure.
  virtual bool _has_exceptions() const;

  /// Errors: the production files that define the most such classes, at most `MAX_ASPECT_FILES`.
  /// Empty on any failure.
  virtual std::vector<std::string> _exception_files() const;

  /// Data models: the planner's files whose texts define data, as the rule `data_model_files`
  /// ranks them. Reads every planner file.
  virtual std::vector<std::string> _data_model_files() const;

  /// Decisions: the design documents, the current ones before the archived ones, at most
  /// `MAX_ASPECT_FILES`. Throws `MissingEntry` when a document record has no path.
  virtual std::vector<std::string> _decision_files() const;

  /// Extending: contracts and registries, those in use first, then where they are wired in; at
  /// most 10. When a look-up in the index fails, logs a warning and returns nothing.
  virtual std::vector<std::string> _extension_files() const;

  /// The indexed test files, in the index's order, not de-duplicated.
  virtual std::vector<std::string> _test_files() const;

  /// Examples: the helpers that the most tests import, then the tests that reach the most
  /// production files; at most `MAX_ASPECT_FILES`.
  virtual std::vector<std::string> _example_files() const;

  /// Flows: the files that dispatch to the entry points `roots`, most of them first; at most
  /// `DISPATCH_FILES`.
  virtual std::vector<std::string> _flow_dispatch(std::span<const std::string> roots) const;
};

/// Logs a failure that a recipe absorbed, with its trace.
void warn(const PageSourcesMixin& host, std::string_view message, const std::exception& error);

}  // namespace kestrix
