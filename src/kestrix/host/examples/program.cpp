#include "kestrix/host/examples/program.h"

#include <algorithm>
#include <vector>

#include "kestrix/languages/frameworks.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr double kOfProgram = 0.5;
constexpr std::size_t kHandlersOfApplication = 3;

bool starts(const CodeEvidence& code, FileId file) {
  const auto language = code.index().files()[file].language;
  return code.is_product(file) &&
         std::ranges::any_of(code.index().declarations(file), [&](const auto& row) {
           return row.kind == index::DeclarationKind::kFunction && row.container == 0 &&
                  index::known_as(language, index::Known::kMain, row.name) != nullptr;
         });
}

bool is_at(const index::IndexedFile& file, index::Known place) {
  return std::ranges::any_of(index::framework_names(file.language), [&](const auto& row) {
    return row.known == place && index::Wildmatch(row.name).matches(file.path);
  });
}

// A library may bring a program along, further down.
bool is_near_top(std::string_view path) { return std::ranges::count(path, '/') <= 1; }

}  // namespace

bool is_application(const CodeEvidence& code) {
  const auto files = code.index().files();
  std::size_t handlers = 0;
  for (FileId file = 0; file < files.size(); ++file) {
    if (!code.is_product(file)) continue;
    if (is_near_top(files[file].path) && is_at(files[file], index::Known::kStartPath)) return true;
    handlers += is_at(files[file], index::Known::kHandlerPath) ? 1 : 0;
    if (handlers == kHandlersOfApplication) return true;
  }
  return false;
}

bool is_program(const CodeEvidence& code) {
  const auto& index = code.index();
  std::vector<bool> reached(index.files().size());
  std::vector<FileId> open;
  for (FileId file = 0; file < reached.size(); ++file) {
    reached[file] = starts(code, file);
    if (reached[file]) open.push_back(file);
  }
  while (!open.empty()) {
    const FileId file = open.back();
    open.pop_back();
    for (const auto& edge : index.edges_from(file)) {
      if (!reached[edge.target]) open.push_back(edge.target);
      reached[edge.target] = true;
    }
  }
  double all = 0;
  double from_start = 0;
  for (FileId file = 0; file < reached.size(); ++file) {
    if (!code.is_product(file) || index.declarations(file).empty()) continue;
    ++all;
    from_start += reached[file] ? 1 : 0;
  }
  return from_start > kOfProgram * all;
}

}  // namespace kestrix
