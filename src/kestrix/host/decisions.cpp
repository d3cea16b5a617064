#include <fmt/format.h>

#include <algorithm>

#include "kestrix/host/decisions/design_documents.h"
#include "kestrix/host/decisions/hinting_documents.h"
#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"

namespace kestrix {
namespace {

// So much of a text is asked for reasons.
constexpr std::size_t kMostCharsRead = 65536;

std::vector<std::string> all_documents(const WikiGenerator& generator) {
  std::vector<std::string> documents;
  for (const DocumentRecord& record : generator._indexed_documents()) {
    documents.push_back(_norm(required_path(record)));
  }
  return documents;
}

bool is_others(const WikiGenerator& generator, std::string_view path) {
  const auto& index = generator.code_evidence().index();
  const auto file = index.find(path);
  return file && index.files()[*file].roles.has(Role::kVendored);
}

std::vector<std::string> documents_of_own(const WikiGenerator& generator) {
  auto documents = all_documents(generator);
  std::erase_if(documents, [&](const auto& path) { return is_others(generator, path); });
  return documents;
}

// All that the rule would take, the current ones first, as the detector orders them.
std::vector<Pick> all_design_documents(const WikiGenerator& generator) {
  auto picks = rank_design_documents(all_documents(generator), &generator.document_evidence());
  std::ranges::stable_partition(picks,
                                [](const Pick& pick) { return !is_archived_path(pick.path); });
  return picks;
}

Reason archived() { return {"archived_document", "archived", 0, {}}; }

std::vector<Reason> reasons_of(Pick pick) {
  if (is_archived_path(pick.path)) pick.reasons.push_back(archived());
  return std::move(pick.reasons);
}

}  // namespace

PageAnswer decisions_answer(const WikiGenerator& generator) {
  auto all = all_design_documents(generator);
  PageAnswer answer;
  answer.total = all.size();
  for (std::string& path : generator._decision_files()) {
    const auto found = std::ranges::find(all, path, &Pick::path);
    std::vector<Reason> reasons;
    if (found != all.end()) reasons = reasons_of(*found);
    answer.files.push_back({std::move(path), std::move(reasons)});
  }
  const auto read = [&](std::string_view path) {
    const ReadTextOptions options{.max_chars = kMostCharsRead};
    return _read_text({&generator.repo_root(), std::string(path)}, options).str();
  };
  answer.further = hinting_documents(documents_of_own(generator), generator.document_evidence(),
                                     answer.files, read);
  finish(answer, "no decision records, no design documents");
  return answer;
}

std::string decisions_why_not(const WikiGenerator& generator, std::string_view path) {
  const auto all = all_design_documents(generator);
  const auto found = std::ranges::find(all, path, &Pick::path);
  if (found == all.end()) {
    return "neither an entry of a series, nor in a folder of design documents, nor called like "
           "one, nor prose that names the code";
  }
  return fmt::format("{} of {}: {}", found - all.begin() + 1,
                     counted(all.size(), "design document", "design documents"),
                     found->reasons.front().text);
}

}  // namespace kestrix
