#include "kestrix/host/queries/why.h"

#include <fcntl.h>
#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "kestrix/files/root_directory.h"
#include "kestrix/utils/error.h"

namespace kestrix {
namespace {

bool place_in(WhyAnswer& answer, std::string_view list, const std::vector<Pick>& picks) {
  const auto found = std::ranges::find(picks, answer.path, &Pick::path);
  if (found == picks.end()) return false;
  answer.list = list;
  answer.rank = static_cast<std::size_t>(found - picks.begin()) + 1;
  answer.reasons = found->reasons;
  answer.above.assign(picks.begin(), found);
  return true;
}

bool place_on_page(WhyAnswer& answer, const PageAnswer& page) {
  if (place_in(answer, "files", page.files) || place_in(answer, "further", page.further)) {
    return true;
  }
  answer.above = page.files;
  return false;
}

bool place_on_flows(WhyAnswer& answer, const FlowsAnswer& flows) {
  for (const FlowClass& flow : flows.classes) {
    if (!place_in(answer, "files", flow.files) && !place_in(answer, "further", flow.further)) {
      continue;
    }
    answer.entry_points = flow.entry_points;
    return true;
  }
  return false;
}

bool is_there(const WikiGenerator& generator, std::string_view path) {
  const index::RootDirectory root(generator.repo_root().path());
  return static_cast<bool>(root.open(path, O_PATH | O_NOFOLLOW | O_CLOEXEC));
}

// What holds for every page of a scope; "" when the file is one that the page could list.
std::string outside_of_scope(const WikiGenerator& generator, PageScope scope,
                             std::string_view path) {
  const auto file = generator.indexed().find(path);
  if (!file) return "not in the index: the repository's ignore rules or its content leave it out";
  const FileParts& parts = generator.parts();
  const bool document = generator.indexed().files()[*file].document;
  switch (scope) {
    case PageScope::kDocuments:
      return document ? "" : "no document, and the page lists documents";
    case PageScope::kTests:
      if (document) return "a document, and the page lists tests";
      if (parts.is_test(*file)) return "";
      if (parts.is_production(*file)) {
        return "a production file by its path, and the page lists tests";
      }
      return parts.explain(*file) + ", and the page lists tests";
    case PageScope::kSource:
      if (document) return "a document, and the page lists source files";
      if (parts.is_production(*file)) return "";
      return parts.explain(*file) + ", and the page lists what configures the product";
    case PageScope::kProduction:
      if (document) return "a document, and the page lists production files";
      if (parts.is_production(*file)) return "";
      if (parts.is_test(*file)) {
        return "a test file by its path, and the page lists production files";
      }
      return parts.explain(*file) + ", and the page lists production files";
  }
  return "";
}

}  // namespace

WhyAnswer why(const WikiGenerator& generator, const Page& page, std::string_view path) {
  WhyAnswer answer;
  answer.page = page.name;
  answer.path = _norm(path);
  const bool known = generator.indexed().find(answer.path).has_value();
  if (answer.path.empty() || (!known && !is_there(generator, answer.path))) {
    throw Error(fmt::format("{}: no such file in the repository", path));
  }
  const bool placed = page.answer == nullptr ? place_on_flows(answer, answer_flows(generator))
                                             : place_on_page(answer, answer_page(generator, page));
  if (placed) return answer;
  std::string missing = outside_of_scope(generator, page.scope, answer.path);
  if (missing.empty()) missing = page.why_not(generator, answer.path);
  if (!missing.empty()) answer.missing.push_back(std::move(missing));
  return answer;
}

}  // namespace kestrix
