#include "kestrix/host/wiki_generator.h"

#include <algorithm>
#include <utility>

#include "kestrix/utils/path_filter.h"

namespace kestrix {

WikiGenerator::WikiGenerator(const index::RepositoryIndex& index, const std::filesystem::path& root)
    : index_(index), handle_(index), root_(root, &index) {
  for (const auto& file : index_.files()) {
    if (file.document) continue;
    std::string path = _norm(file.path);
    if (!is_test_path(path)) planner_paths_.push_back(std::move(path));
  }
}

bool WikiGenerator::is_planned(std::string_view path) const {
  return std::ranges::binary_search(planner_paths_, path);
}

std::vector<SourceFileRecord> WikiGenerator::_source_files() const {
  std::vector<SourceFileRecord> records;
  for (const auto& file : index_.files()) {
    if (!file.document) records.push_back({std::string(file.path)});
  }
  return records;
}

std::vector<DocumentRecord> WikiGenerator::_indexed_documents() const {
  std::vector<DocumentRecord> records;
  for (const auto& file : index_.files()) {
    if (file.document) records.push_back({std::string(file.path)});
  }
  return records;
}

std::vector<std::string> WikiGenerator::_decision_files() const {
  const DocumentEvidenceScope scope(document_evidence());
  return PageSourcesMixin::_decision_files();
}

const DocumentEvidence& WikiGenerator::document_evidence() const {
  std::call_once(documents_gathered_,
                 [this] { documents_ = std::make_unique<const DocumentEvidence>(index_); });
  return *documents_;
}

}  // namespace kestrix
