#include "kestrix/index/file_roles.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "kestrix/roles/licence.h"
#include "kestrix/roles/repository_roles.h"
#include "kestrix/roles/test_paths.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr auto kTestAnnotations =
    std::to_array<std::string_view>({"fact", "theory", "property", "scenario"});

bool names_test(std::string_view name) {
  const bool starts = name.size() >= 4 && ascii::equals(name.substr(0, 4), "test");
  return starts || ascii::ends_with(name, "test") || ascii::ends_with(name, "tests") ||
         ascii::ends_with(name, "spec");
}

bool marks_test(std::string_view annotation) {
  const auto name = annotation.substr(annotation.find_last_of(".:") + 1);
  return names_test(name) || std::ranges::any_of(kTestAnnotations, [name](auto known) {
           return ascii::equals(name, known);
         });
}

bool holds_tests(const RepositoryIndex& index, FileId file) {
  return std::ranges::any_of(index.declarations(file),
                             [](const auto& one) { return names_test(one.name); }) ||
         std::ranges::any_of(index.references_from(file), [](const auto& to) {
           return to.role == Role::kAnnotates && marks_test(to.name);
         });
}

void take_edges(const RepositoryIndex& index, JudgedRepository& repository) {
  repository.targets.resize(index.files().size());
  repository.dependents.resize(index.files().size());
  for (const IndexedEdge& edge : index.edges()) {
    if (edge.evidence == EdgeEvidence::kString) continue;
    ++repository.dependents[edge.target];
    // That it has a name in common with another file makes nothing its user.
    if (edge.evidence == EdgeEvidence::kImport) {
      repository.targets[edge.source].push_back(edge.target);
    }
  }
}

void take_notes(const RepositoryIndex& index, JudgedRepository& repository) {
  index.for_each_noted([&](FileId file) {
    const auto path = index.files()[file].path;
    const bool attributes = base_name(path) == ".gitattributes";
    if (!attributes && !is_licence_path(path)) return;
    FileNotes notes = index.notes(file);
    if (attributes)
      repository.attributes.add(folder_of(path), notes.attributes);
    else
      repository.licences.push_back({file, std::move(notes.holders)});
  });
}

JudgedRepository judged(const RepositoryIndex& index) {
  JudgedRepository repository;
  repository.files.reserve(index.files().size());
  for (FileId place = 0; place < index.files().size(); ++place) {
    const IndexedFile& file = index.files()[place];
    const bool in_tests = test_sign(file.path).kind == TestSign::Kind::kFolder;
    repository.files.push_back({file.path, file.language, file.document, file.generated,
                                !index.declarations(place).empty(),
                                in_tests && holds_tests(index, place)});
  }
  take_edges(index, repository);
  take_notes(index, repository);
  return repository;
}

}  // namespace

std::vector<Roles> roles_of_files(const RepositoryIndex& index) {
  return RepositoryRoles(judged(index)).all();
}

std::vector<RoleEvidence> explain_roles(const RepositoryIndex& index, FileId file) {
  return RepositoryRoles(judged(index)).explain(file);
}

}  // namespace kestrix::index
