#include <fmt/format.h>

#include <algorithm>

#include "kestrix/host/design_documents.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"

namespace kestrix {
namespace {

std::vector<std::string> all_design_documents(const WikiGenerator& generator) {
  std::vector<std::string> documents;
  for (const DocumentRecord& record : generator._indexed_documents()) {
    documents.push_back(_norm(required_path(record)));
  }
  const auto count = static_cast<std::ptrdiff_t>(documents.size());
  return current_first(rank_design_documents(documents), count);
}

Reason rank_of(std::size_t rank, std::size_t total, std::string_view path) {
  const bool archived = is_archived_path(path);
  return {archived ? "archived_document" : "design_document",
          fmt::format("{} of {}, the newest first{}", rank + 1,
                      counted(total, "design document", "design documents"),
                      archived ? "; archived" : ""),
          0,
          {}};
}

}  // namespace

PageAnswer decisions_answer(const WikiGenerator& generator) {
  const auto all = all_design_documents(generator);
  PageAnswer answer;
  answer.total = all.size();
  for (std::string& path : generator._decision_files()) {
    const Reason rank = rank_of(answer.files.size(), all.size(), path);
    answer.files.push_back({std::move(path), {rank}});
  }
  finish(answer, "no decision records, no design documents");
  return answer;
}

std::string decisions_why_not(const WikiGenerator& generator, std::string_view path) {
  const auto all = all_design_documents(generator);
  const auto found = std::ranges::find(all, path);
  if (found == all.end()) {
    return "neither in a folder of design documents, nor called like one, nor one of a numbered "
           "series";
  }
  return rank_of(static_cast<std::size_t>(found - all.begin()), all.size(), path).text;
}

}  // namespace kestrix
