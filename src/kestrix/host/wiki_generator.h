#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/decisions/document_evidence.h"
#include "kestrix/host/repository/file_parts.h"
#include "kestrix/host/repository/repository_handle.h"
#include "kestrix/host/repository/repository_root.h"
#include "kestrix/host/settings/steering.h"
#include "kestrix/index/index.h"
#include "kestrix/workers/wiki/page_sources.h"

namespace kestrix {

class CodeEvidence;
class ScoreSheet;
struct ErrorEvidence;
struct Contract;

/// The generator of a repository on disk: the object that the native host mixes the detectors into.
///
/// Its planner gives the indexed source files that are no tests. No detector is given another
/// project's files, and none that would come before the product: generated code, samples,
/// documentation's code, data that tests read (`FileParts` says which). They take part in edges.
/// Immutable; safe to use from several threads.
class WikiGenerator : public PageSourcesMixin {
 public:
  /// `index` and `steering`, which may be none, must outlive the generator; `root` is the directory
  /// that its paths are relative to. Throws `Error` when that is no directory.
  WikiGenerator(const index::RepositoryIndex& index, const std::filesystem::path& root,
                const Steering* steering = nullptr);
  WikiGenerator(const WikiGenerator&) = delete;
  WikiGenerator& operator=(const WikiGenerator&) = delete;
  ~WikiGenerator() override;

  const Repository& repository() const override { return handle_; }
  /// What the handle speaks for.
  const index::RepositoryIndex& indexed() const { return index_; }
  /// The settings in force; null when there are none.
  const Steering* steering() const { return steering_; }
  /// What the files are to the pages.
  const FileParts& parts() const { return parts_; }
  /// Whether a path is one of `_planner_paths`.
  bool is_planned(std::string_view path) const;
  /// The paths among which users may name entry points: also samples, generated code.
  std::vector<std::string> nameable_paths() const;
  const RepoRoot& repo_root() const override { return root_; }
  /// Those of the planner: what can configure the product. Tests are `_test_files`.
  std::vector<SourceFileRecord> _source_files() const override;
  std::vector<std::string> _planner_paths() const override { return planner_paths_; }
  std::vector<DocumentRecord> _indexed_documents() const override;
  /// Settings may make a file a test that its path does not show. Without data that tests read.
  std::vector<std::string> _test_files() const override;
  /// With what the code says of its types in force.
  std::vector<std::string> _data_model_files() const override;
  /// With what tests name, where the imports alone would tell less.
  std::vector<std::string> _example_files() const override;
  /// With what the index knows of the documents in force.
  std::vector<std::string> _decision_files() const override;
  std::vector<FileEdge> _file_edges(const PathSet& paths) const override;
  /// With what the code knows as settings, the best files only.
  std::vector<std::string> _config_files() const override;
  /// With what the code knows as errors, the most central files only.
  std::vector<std::string> _exception_files() const override;
  /// With what the index knows of contracts and of those who register with the product in force.
  std::vector<std::string> _extension_files() const override;
  /// What the index knows of the documents; gathered when it is first asked for.
  const DocumentEvidence& document_evidence() const;
  /// Who names what in the repository; gathered when it is first asked for, once for all pages.
  const CodeEvidence& code_evidence() const;
  /// What shows that files are settings; gathered when it is first asked for.
  const ScoreSheet& settings_evidence() const;
  /// What is about errors; gathered when it is first asked for.
  const ErrorEvidence& error_evidence() const;
  /// The types that one adds to the product by implementing them, by type.
  const std::vector<Contract>& contracts() const;
  /// What shows that one extends the product in a file.
  const ScoreSheet& extensions() const;

 private:
  const index::RepositoryIndex& index_;
  RepositoryHandle handle_;
  const Steering* steering_;
  FileParts parts_;
  RepositoryRoot root_;
  mutable std::once_flag documents_gathered_;
  mutable std::unique_ptr<const DocumentEvidence> documents_;
  mutable std::once_flag code_gathered_;
  mutable std::unique_ptr<const CodeEvidence> code_;
  mutable std::once_flag settings_gathered_;
  mutable std::unique_ptr<const ScoreSheet> settings_;
  mutable std::once_flag errors_gathered_;
  mutable std::unique_ptr<const ErrorEvidence> errors_;
  mutable std::once_flag contracts_found_;
  mutable std::unique_ptr<const std::vector<Contract>> contracts_;
  mutable std::once_flag extensions_found_;
  mutable std::unique_ptr<const ScoreSheet> extensions_;
  mutable std::once_flag edges_gathered_;
  mutable std::vector<FileEdge> planner_edges_;  // asked for again with each class of entry points
  std::vector<std::string> planner_paths_;       // ascending; asked for by nearly every detector
};

}  // namespace kestrix
