#include "kestrix/host/wiki_generator.h"

#include <algorithm>
#include <utility>

#include "kestrix/host/configuration/settings_host.h"
#include "kestrix/host/configuration/settings_signals.h"
#include "kestrix/host/data_models/data_evidence.h"
#include "kestrix/host/errors/error_host.h"
#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/host/examples/example_host.h"
#include "kestrix/host/extending/extension_signals.h"
#include "kestrix/host/flows/flow_edges.h"
#include "kestrix/utils/path_filter.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"

namespace kestrix {

namespace {

std::vector<index::DeclarationRef> contract_types(const std::vector<Contract>& contracts) {
  std::vector<index::DeclarationRef> types;
  types.reserve(contracts.size());
  for (const Contract& contract : contracts) types.push_back(contract.type);
  return types;
}

}  // namespace

WikiGenerator::WikiGenerator(const index::RepositoryIndex& index, const std::filesystem::path& root,
                             const Steering* steering)
    : index_(index),
      handle_(index, [this] { return contract_types(contracts()); }),
      steering_(steering),
      parts_(index, steering),
      root_(root, &index) {
  for (index::FileId file = 0; file < index_.files().size(); ++file) {
    if (parts_.is_production(file)) planner_paths_.push_back(_norm(index_.files()[file].path));
  }
}

WikiGenerator::~WikiGenerator() = default;

bool WikiGenerator::is_planned(std::string_view path) const {
  return std::ranges::binary_search(planner_paths_, path);
}

std::vector<std::string> WikiGenerator::nameable_paths() const {
  std::vector<std::string> paths;
  for (index::FileId file = 0; file < index_.files().size(); ++file) {
    if (parts_.is_nameable(file)) paths.push_back(_norm(index_.files()[file].path));
  }
  return paths;
}

std::vector<SourceFileRecord> WikiGenerator::_source_files() const {
  std::vector<SourceFileRecord> records;
  for (const std::string& path : planner_paths_) records.push_back({path});
  return records;
}

std::vector<std::string> WikiGenerator::_test_files() const {
  std::vector<std::string> tests;
  for (index::FileId file = 0; file < index_.files().size(); ++file) {
    if (parts_.is_test(file)) tests.push_back(_norm(index_.files()[file].path));
  }
  return tests;
}

std::vector<DocumentRecord> WikiGenerator::_indexed_documents() const {
  std::vector<DocumentRecord> records;
  for (const auto& file : index_.files()) {
    if (file.document) records.push_back({std::string(file.path)});
  }
  return records;
}

std::vector<std::string> WikiGenerator::_data_model_files() const {
  const DataPoints points = DataEvidence(code_evidence()).points();
  const DataPointsScope scope(points);
  return PageSourcesMixin::_data_model_files();
}

std::vector<std::string> WikiGenerator::_example_files() const {
  const TestEvidence evidence(*this, code_evidence());
  const ExampleChoice choice(evidence, code_evidence());
  return recipes::_example_files(ExampleHost{*this, choice});
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

const CodeEvidence& WikiGenerator::code_evidence() const {
  std::call_once(code_gathered_, [this] { code_ = std::make_unique<const CodeEvidence>(*this); });
  return *code_;
}

const ScoreSheet& WikiGenerator::settings_evidence() const {
  std::call_once(settings_gathered_, [this] {
    settings_ = std::make_unique<const ScoreSheet>(settings_sheet(code_evidence()));
  });
  return *settings_;
}

const ErrorEvidence& WikiGenerator::error_evidence() const {
  std::call_once(errors_gathered_, [this] {
    errors_ = std::make_unique<const ErrorEvidence>(error_evidence_of(code_evidence()));
  });
  return *errors_;
}

const std::vector<Contract>& WikiGenerator::contracts() const {
  std::call_once(contracts_found_, [this] {
    contracts_ = std::make_unique<const std::vector<Contract>>(contracts_of(code_evidence()));
  });
  return *contracts_;
}

const ScoreSheet& WikiGenerator::extensions() const {
  std::call_once(extensions_found_, [this] {
    extensions_ = std::make_unique<const ScoreSheet>(extension_sheet(code_evidence(), contracts()));
  });
  return *extensions_;
}

std::vector<FileEdge> WikiGenerator::_file_edges(const PathSet& paths) const {
  const auto is_asked = [&](const std::string& path) { return paths.contains(path); };
  if (paths.size() != planner_paths_.size() || !std::ranges::all_of(planner_paths_, is_asked)) {
    return PageSourcesMixin::_file_edges(paths);
  }
  std::call_once(edges_gathered_, [&] { planner_edges_ = PageSourcesMixin::_file_edges(paths); });
  std::vector<FileEdge> edges = planner_edges_;
  if (const auto* more = FlowEdgesScope::current()) {
    edges.insert(edges.end(), more->begin(), more->end());
  }
  return edges;
}

std::vector<std::string> WikiGenerator::_config_files() const {
  return recipes::_config_files(SettingsHost(*this, settings_evidence()));
}

std::vector<std::string> WikiGenerator::_exception_files() const {
  return recipes::_exception_files(ErrorHost(*this, error_evidence()));
}

std::vector<std::string> WikiGenerator::_extension_files() const {
  const ScoreSheet& sheet = extensions();
  ExtensionRankingScope::Scores scores;
  for (index::FileId file = 0; file < index_.files().size(); ++file) {
    const double score = sheet.score(file);
    if (score > 0) scores.emplace(index_.files()[file].path, score);
  }
  const ExtensionRankingScope scope(scores);
  return PageSourcesMixin::_extension_files();
}

}  // namespace kestrix
