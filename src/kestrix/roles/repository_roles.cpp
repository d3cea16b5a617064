#include "kestrix/roles/repository_roles.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "kestrix/roles/folder_names.h"
#include "kestrix/roles/generated.h"
#include "kestrix/roles/test_data.h"
#include "kestrix/roles/test_paths.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::base_name;
using index::folder_of;
using Place = JudgedRepository::Place;

// What generators of clients leave at the top of what they made.
constexpr auto kClientMarks = std::to_array<std::string_view>(
    {".openapi-generator-ignore", ".openapi-generator/FILES", ".openapi-generator/VERSION",
     ".speakeasy/gen.lock", ".swagger-codegen-ignore", ".swagger-codegen/VERSION",
     "kiota-lock.json"});

// Roles that a folder's name suggests and that what lies in it may deny.
constexpr std::array kDeniable{Role::kVendored, Role::kGenerated, Role::kDocumentation};
// A site's folder that holds few documents is an application.
constexpr Place kDocumentsOf = 5;

template <class Map>
std::optional<typename Map::const_iterator> holder_of(const Map& folders, std::string_view path) {
  if (folders.empty()) return std::nullopt;
  auto found = folders.end();
  index::for_each_folder_up(folder_of(path), [&](std::string_view folder) {
    if (found == folders.end()) found = folders.find(folder);
  });
  return found == folders.end() ? std::nullopt : std::optional(found);
}

constexpr Role role_of(index::GitAttribute attribute) {
  switch (attribute) {
    case index::GitAttribute::kGenerated:
      return Role::kGenerated;
    case index::GitAttribute::kVendored:
      return Role::kVendored;
    default:
      return Role::kDocumentation;
  }
}

}  // namespace

// The roles of one file as they are found, with what shows them where that is asked for.
class RepositoryRoles::Judgement {
 public:
  explicit Judgement(std::vector<RoleEvidence>* told) : told_(told) {}

  Roles roles() const { return roles_; }

  void start(const PathSigns& signs) {
    roles_ = signs.roles();
    if (told_ != nullptr) *told_ = signs.evidence();
  }

  template <class... Pieces>
  void add(Role role, fmt::format_string<Pieces...> text, Pieces&&... pieces) {
    if (roles_.has(role)) return;
    roles_.add(role);
    if (told_ != nullptr) {
      told_->push_back({role, fmt::format(text, std::forward<Pieces>(pieces)...)});
    }
  }

  void remove(Role role) {
    if (!roles_.has(role)) return;
    roles_.remove(role);
    if (told_ != nullptr) {
      std::erase_if(*told_, [role](const auto& piece) { return piece.role == role; });
    }
  }

 private:
  Roles roles_;
  std::vector<RoleEvidence>* told_;
};

RepositoryRoles::RepositoryRoles(JudgedRepository repository)
    : repository_(std::move(repository)), bundles_(bundled_folders(repository_)) {
  read_paths();
  find_clients();
  find_used_data();
  find_reached();
  read_by_tests_ = code_that_tests_read(repository_);
  roles_.reserve(repository_.files.size());
  for (Place file = 0; file < repository_.files.size(); ++file) {
    Judgement judgement(nullptr);
    judge(file, judgement);
    roles_.push_back(judgement.roles());
  }
}

std::vector<RoleEvidence> RepositoryRoles::explain(Place file) const {
  std::vector<RoleEvidence> evidence;
  Judgement judgement(&evidence);
  judge(file, judgement);
  std::ranges::sort(evidence, {}, &RoleEvidence::role);
  return evidence;
}

// The folder that a sign names is the first of its kind from the top, so no two of them lie within
// each other, and each file is looked at once.
void RepositoryRoles::read_paths() {
  by_path_.reserve(repository_.files.size());
  for (const JudgedFile& file : repository_.files) {
    const PathSigns signs(file.path);
    by_path_.push_back(signs.roles());
    for (const Role role : kDeniable) {
      if (!signs.roles().has(role)) continue;
      const auto folder = signs.sign(role).folder;
      const auto known = refuted_.find(folder);
      const bool refuted = known != refuted_.end() ? known->second : refutes(folder);
      if (known == refuted_.end()) refuted_.emplace(folder, refuted);
      if (refuted) by_path_.back().remove(role);
    }
    firm_.push_back(by_path_.back());
    for (const Role role : kRoles) {
      if (firm_.back().has(role) && signs.sign(role).refutable) firm_.back().remove(role);
    }
  }
}

// "vendor" may be what the product deals in, "gen" a generator, "website" an application.
bool RepositoryRoles::refutes(std::string_view folder) const {
  const auto name = base_name(folder);
  const auto range = repository_.below(folder);
  const auto count = [&](auto holds) {
    const auto first = repository_.files.begin() + range.first;
    return static_cast<Place>(std::count_if(first, first + range.size(), holds));
  };
  if (ascii::equals(name, "vendor")) return depends_on_the_rest(repository_, range);
  if (ascii::equals(name, "gen") || ascii::equals(name, "autogen")) {
    return count([](const auto& file) { return file.written || has_generated_name(file.path); }) ==
           0;
  }
  return ascii::equals(name, "website") &&
         count([](const auto& file) { return file.document; }) * kDocumentsOf <
             repository_.count_code(range);
}

void RepositoryRoles::find_clients() {
  const Place code = repository_.count_code(repository_.below(""));
  for (const JudgedFile& file : repository_.files) {
    const auto mark = std::ranges::find_if(kClientMarks, [&](std::string_view known) {
      return file.path.ends_with(known) && file.path.size() > known.size() &&
             file.path[file.path.size() - known.size() - 1] == '/';
    });
    if (mark == kClientMarks.end()) continue;
    const auto folder = file.path.substr(0, file.path.size() - mark->size() - 1);
    if (holder_of(clients_, folder)) continue;
    const bool is_most = repository_.count_code(repository_.below(folder)) * 2 >= code;
    if (!is_most) clients_.try_emplace(folder, *mark);
  }
}

void RepositoryRoles::find_used_data() {
  const auto& files = repository_.files;
  used_data_.resize(files.size());
  for (Place source = 0; source < files.size(); ++source) {
    for (const Place target : repository_.targets[source]) {
      if (!by_path_[target].has(Role::kTestData)) continue;
      const PathSigns signs(files[target].path);
      const auto folder = signs.sign(Role::kTestData).folder;
      if (!index::is_below(files[source].path, folder)) used_data_[target] = true;
    }
  }
}

void RepositoryRoles::find_reached() {
  const auto& files = repository_.files;
  const auto may_be_product = [&](Place file) {
    return firm_[file].empty() && !files[file].written && !holder_of(bundles_, files[file].path);
  };
  reached_.resize(files.size());
  std::vector<Place> waiting;
  for (Place file = 0; file < files.size(); ++file) {
    // What stands at the top may be a recipe of the build.
    const bool sure = files[file].is_code() && by_path_[file].empty() &&
                      files[file].path.find('/') != std::string_view::npos && may_be_product(file);
    if (sure) waiting.push_back(file);
    reached_[file] = sure;
  }
  while (!waiting.empty()) {
    const Place source = waiting.back();
    waiting.pop_back();
    for (const Place target : repository_.targets[source]) {
      if (reached_[target] || !may_be_product(target)) continue;
      reached_[target] = true;
      waiting.push_back(target);
    }
  }
}

void RepositoryRoles::judge(Place file, Judgement& judgement) const {
  const JudgedFile& judged = repository_.files[file];
  if (!by_path_[file].empty()) judge_path(file, judgement);
  if (judged.written) {
    judgement.add(Role::kGenerated, "its text is a program's work");
  }
  judge_neighbours(file, judgement);
  if (!repository_.attributes.empty()) judge_attributes(judged.path, judgement);
}

void RepositoryRoles::judge_path(Place file, Judgement& judgement) const {
  const auto path = repository_.files[file].path;
  const PathSigns signs(path);
  judgement.start(signs);
  for (const Role role : kDeniable) {
    if (!by_path_[file].has(role)) judgement.remove(role);
  }
  if (used_data_[file]) judgement.remove(Role::kTestData);
  if (signs.roles().has(Role::kTest) && !signs.sign(Role::kTest).folder.empty()) {
    const bool named = test_sign(base_name(path)).kind != TestSign::Kind::kNone;
    const JudgedFile& judged = repository_.files[file];
    const bool data = !named && !judged.is_code() && !judged.document && is_data_path(path);
    if (data) judgement.add(Role::kTestData, "data in a folder of tests");
  }
  if (!reached_[file]) return;
  for (const Role role : kRoles) {
    if (signs.roles().has(role) && signs.sign(role).refutable) judgement.remove(role);
  }
}

void RepositoryRoles::judge_neighbours(Place file, Judgement& judgement) const {
  const auto path = repository_.files[file].path;
  if (const auto bundle = holder_of(bundles_, path)) {
    judgement.add(Role::kVendored, "below {}/: {}", (*bundle)->first, (*bundle)->second);
  }
  if (is_versioned_script(path)) judgement.add(Role::kVendored, "a version in a script's name");
  if (const auto client = holder_of(clients_, path)) {
    judgement.add(Role::kGenerated, "below {}/, which holds {}", (*client)->first,
                  (*client)->second);
  }
  if (read_by_tests_[file]) {
    judgement.add(Role::kTestData,
                  "in a folder of tests, without tests, and nothing depends on it");
  }
}

void RepositoryRoles::judge_attributes(std::string_view path, Judgement& judgement) const {
  const auto given = repository_.attributes.of(path);
  for (std::size_t at = 0; at < given.size(); ++at) {
    const Role role = role_of(static_cast<index::GitAttribute>(at));
    if (!given[at] || (given[at]->of_kind && role != Role::kGenerated)) continue;
    if (given[at]->on)
      judgement.add(role, "{} in {}:{}", index::kGitAttributeNames[at],
                    index::join(given[at]->folder, ".gitattributes"), given[at]->line);
    else
      judgement.remove(role);
  }
}

}  // namespace kestrix
