#include "kestrix/index/names/string_resolver.h"

#include <algorithm>

#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr FileId kSeveral = UINT32_MAX;
constexpr std::size_t kShortestTypeName = 6;
constexpr std::size_t kMostParts = 16;  // of the end of a path
constexpr std::size_t kMostNamed = 32;  // types of one name that are told apart

std::string_view without_extension(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  const std::size_t name = path.rfind('/') + 1;  // 0 without a folder
  return dot == std::string_view::npos || dot <= name ? path : path.substr(0, dot);
}

void add_ends(std::string_view path, FileId file, std::unordered_map<std::uint64_t, FileId>& ends) {
  for (std::size_t parts = 0; parts < kMostParts; ++parts) {
    const auto [entry, fresh] = ends.try_emplace(seeded_hash(path), file);
    if (!fresh && entry->second != file) entry->second = kSeveral;
    const std::size_t slash = path.find('/');
    if (slash == std::string_view::npos) return;
    path.remove_prefix(slash + 1);
  }
}

bool is_camel_case(std::string_view name) {
  const auto is_upper = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto is_lower = [](char c) { return c >= 'a' && c <= 'z'; };
  return std::ranges::count_if(name, is_upper) >= 2 && std::ranges::any_of(name, is_lower) &&
         is_upper(name.front());
}

}  // namespace

StringResolver::StringResolver(const IndexedFiles& files, const DeclarationTable& table)
    : files_(files), table_(table) {
  for (FileId file = 0; file < files.size(); ++file) {
    add_ends(files.path(file), file, ends_);
    add_ends(without_extension(files.path(file)), file, stems_);
  }
}

std::optional<NamedThing> StringResolver::resolve(std::string_view content,
                                                  std::string_view folder) const {
  if (const auto file = find_path(content, folder)) {
    return NamedThing{NamedThing::Kind::kFile, {*file, 0}, {}};
  }
  if (content.starts_with("::")) return find_named(content.substr(2), folder);
  if (content.find('#') != std::string_view::npos) return find_action(content);
  if (content.find('@') != std::string_view::npos) return find_method(content);
  if (content.find_first_of(".:\\") != std::string_view::npos) {
    auto found = find_dotted(content);
    if (!found && content.find('\\') != std::string_view::npos) found = find_class(content);
    return found;
  }
  return find_type(content);
}

std::optional<FileId> StringResolver::find_end(std::string_view end, bool stem) const {
  const auto& table = stem ? stems_ : ends_;
  const auto found = table.find(seeded_hash(end));
  if (found == table.end() || found->second == kSeveral) return std::nullopt;
  const std::string_view path = files_.path(found->second);
  const std::string_view whole = stem ? without_extension(path) : path;
  if (!whole.ends_with(end)) return std::nullopt;  // another text of that hash
  return found->second;
}

std::optional<FileId> StringResolver::find_path(std::string_view content,
                                                std::string_view folder) const {
  // "/users" is an address rather than a path.
  const bool has_folder = content.find('/', 1) != std::string_view::npos;
  if (const auto near = join_normal(folder, content); near && has_folder) {
    if (const auto file = files_.find(*near)) return file;
  }
  while (content.starts_with("./") || content.starts_with('/')) {
    content.remove_prefix(content.find('/') + 1);
  }
  const std::size_t dot = content.rfind('.');
  const bool has_extension = dot != std::string_view::npos && dot > 0 && content.size() - dot <= 12;
  if (content.empty() || (!has_folder && !has_extension)) return std::nullopt;
  if (const auto file = files_.find(content)) return file;
  if (!has_extension) return has_folder ? find_end(content, true) : std::nullopt;
  return find_end(content, false);
}

std::optional<NamedThing> StringResolver::find_dotted(std::string_view content) const {
  std::string path(content);
  std::size_t parts = 1;
  for (char& c : path) {
    if (c != '.' && c != ':' && c != '\\') continue;
    c = '/';
    ++parts;
  }
  if (path.find("//") != std::string::npos || path.front() == '/' || path.back() == '/') {
    return std::nullopt;
  }
  const bool attribute = content.find(':') != std::string_view::npos;
  for (std::string_view front = path; parts >= (attribute ? 1U : 2U);
       front = folder_of(front), --parts) {
    auto file = find_end(front, true);
    if (!file) file = find_end(std::string(front) + "/__init__", true);
    if (!file) continue;
    const std::string_view rest =
        std::string_view(path).substr(std::min(path.size(), front.size() + 1));
    if (rest.empty()) return NamedThing{NamedThing::Kind::kFile, {*file, 0}, {}};
    const auto top = table_.find_top(*file, rest.substr(0, rest.find('/')));
    if (!top) return std::nullopt;
    return NamedThing{NamedThing::Kind::kDeclaration, *top, {}};
  }
  return std::nullopt;
}

// "Controller@method", where the controller may stand in a namespace.
std::optional<NamedThing> StringResolver::find_method(std::string_view content) const {
  const std::size_t mark = content.find('@');
  const std::string_view type = content.substr(0, mark);
  auto found = type.find('\\') == std::string_view::npos ? find_type(type) : find_class(type);
  if (!found) return std::nullopt;
  const auto method = table_.find_member(found->at, content.substr(mark + 1));
  if (!method) return std::nullopt;
  found->at = *method;
  return found;
}

// Of "Space\\Type" the only type of that name, if its folder is called like the space.
std::optional<NamedThing> StringResolver::find_class(std::string_view content) const {
  const std::size_t last = content.rfind('\\');
  const auto all = table_.find_all(content.substr(last + 1), 1);
  if (all.size() != 1 || !is_type(table_[all.front()].kind)) return std::nullopt;
  std::string_view space = content.substr(0, last);
  while (space.ends_with('\\')) space.remove_suffix(1);
  space = space.substr(space.rfind('\\') + 1);  // 0 without one
  const std::string_view folder = base_name(folder_of(files_.path(all.front().file)));
  if (!std::ranges::equal(folder, space, {}, ascii::lower, ascii::lower)) return std::nullopt;
  return NamedThing{NamedThing::Kind::kDeclaration, all.front(), {}};
}

// Routes of several web frameworks name a controller and its method.
std::optional<NamedThing> StringResolver::find_action(std::string_view content) const {
  if (content.starts_with('/')) content.remove_prefix(1);
  const std::size_t mark = content.find('#');
  if (mark == 0 || content.find('#', mark + 1) != std::string_view::npos) return std::nullopt;
  const std::string name = std::string(content.substr(0, mark)) + "_controller";
  auto file = find_end("controllers/" + name, true);
  if (!file) file = find_end(name, true);
  if (!file) return std::nullopt;
  return NamedThing{NamedThing::Kind::kFile, {*file, 0}, std::string(content.substr(mark + 1))};
}

// "A::B": the only type of that name, else the one in that namespace, else the one beside the file.
std::optional<NamedThing> StringResolver::find_named(std::string_view name,
                                                     std::string_view folder) const {
  const std::size_t joint = name.rfind("::");
  const std::string_view last = joint == std::string_view::npos ? name : name.substr(joint + 2);
  std::vector<DeclarationRef> types;
  for (const DeclarationRef at : table_.find_all(last, kMostNamed)) {
    if (is_type(table_[at].kind)) types.push_back(at);
  }
  const auto only = [&](auto fits) -> std::optional<NamedThing> {
    const auto one = std::ranges::find_if(types, fits);
    if (one == types.end() || std::find_if(one + 1, types.end(), fits) != types.end()) return {};
    return NamedThing{NamedThing::Kind::kDeclaration, *one, {}};
  };
  if (types.size() == 1) return only([](DeclarationRef) { return true; });
  if (joint != std::string_view::npos) {
    return only([&](DeclarationRef at) { return stands_in(at, name.substr(0, joint)); });
  }
  return only([&](DeclarationRef at) { return folder_of(files_.path(at.file)) == folder; });
}

bool StringResolver::stands_in(DeclarationRef at, std::string_view space) const {
  const auto rows = table_.of(at.file);
  std::uint32_t around = table_[at].container;
  while (!space.empty()) {
    const std::size_t joint = space.rfind("::");
    const std::string_view last = joint == std::string_view::npos ? space : space.substr(joint + 2);
    if (around == 0 || rows[around - 1].name != last) return false;
    around = rows[around - 1].container;
    space = space.substr(0, joint == std::string_view::npos ? 0 : joint);
  }
  return true;
}

std::optional<NamedThing> StringResolver::find_type(std::string_view content) const {
  if (content.size() < kShortestTypeName || !is_camel_case(content)) return std::nullopt;
  const auto all = table_.find_all(content, 1);
  if (all.size() != 1 || !is_type(table_[all.front()].kind)) return std::nullopt;
  return NamedThing{NamedThing::Kind::kDeclaration, all.front(), {}};
}

}  // namespace kestrix::index
