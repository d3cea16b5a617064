#include "kestrix/host/flows/classes/family_signs.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "kestrix/text/sorting.h"

namespace kestrix {
namespace {

using index::FileId;

constexpr double kLeastAlike = 0.6;
constexpr std::size_t kPartOfMembers = 5;

std::string_view stem_of(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  return name.substr(0, name.rfind('.'));
}

}  // namespace

bool leads(const CodeEvidence& evidence, const Naming& naming) {
  return naming.names && !naming.derives && evidence.is_product(naming.from) &&
         evidence.is_product(naming.to);
}

bool is_base(const CodeEvidence& evidence, FileId file) {
  const auto declarations = evidence.index().declarations(file);
  std::set<FileId> derived;
  std::size_t types = 0;
  std::size_t bases = 0;
  for (std::uint32_t place = 0; place < declarations.size(); ++place) {
    if (!is_type(declarations[place].kind)) continue;
    const std::size_t before = derived.size();
    for (const auto subtype : evidence.subtypes({file, place})) {
      if (subtype.file != file) derived.insert(subtype.file);
    }
    ++types;
    bases += derived.size() > before ? 1U : 0U;
  }
  return derived.size() > 1 && bases * 2 >= types;
}

bool is_base_of(const CodeEvidence& evidence, FileId file, std::span<const FileId> members) {
  if (!is_base(evidence, file)) return false;
  std::set<FileId> derived;
  const std::size_t count = evidence.index().declarations(file).size();
  for (std::uint32_t place = 0; place < count; ++place) {
    for (const auto subtype : evidence.subtypes({file, place})) derived.insert(subtype.file);
  }
  std::erase_if(derived, [&](FileId each) {
    return each == file || !std::ranges::binary_search(members, each);
  });
  return derived.empty() || derived.size() * kPartOfMembers >= members.size();
}

bool is_mostly(const CodeEvidence& evidence, FileId file,
               const std::set<index::DeclarationRef>& types) {
  const auto declarations = evidence.index().declarations(file);
  std::size_t all = 0;
  std::size_t found = 0;
  for (std::uint32_t place = 0; place < declarations.size(); ++place) {
    if (types.contains({file, place})) ++found;
    const auto& row = declarations[place];
    all += row.container == 0 &&
                   (index::is_type(row.kind) || row.kind == index::DeclarationKind::kFunction)
               ? 1U
               : 0U;
  }
  return found > 0 && found * 2 >= all;
}

bool have_a_sign(const CodeEvidence& evidence, std::span<const FileId> members) {
  static constexpr RoleSet kSigns{index::Role::kExtends, index::Role::kImplements,
                                  index::Role::kAnnotates, index::Role::kConstructs,
                                  index::Role::kCalls};
  std::map<index::DeclarationRef, std::size_t> signs;
  for (const FileId file : members) {
    std::set<index::DeclarationRef> own;
    for (const auto& to : evidence.index().references_from(file)) {
      if (to.declaration == 0 || to.target == file || !kSigns.has(to.role)) continue;
      own.insert({to.target, to.declaration - 1});
    }
    for (const auto sign : own) ++signs[sign];
  }
  return std::ranges::any_of(signs, [&](const auto& entry) {
    const auto count = static_cast<double>(entry.second);
    return count >= kLeastAlike * static_cast<double>(members.size()) &&
           count >=
               kLeastAlike * static_cast<double>(evidence.files_naming(entry.first, kSigns).size());
  });
}

bool is_field_elsewhere(const CodeEvidence& evidence, FileId file,
                        std::span<const FileId> members) {
  for (const std::uint32_t at : evidence.references_to(file)) {
    const auto& to = evidence.reference(at);
    if (to.role != index::Role::kType || to.within == 0 || !evidence.is_product(to.source))
      continue;
    if (std::ranges::binary_search(members, to.source)) continue;
    const auto kind = evidence[{to.source, to.within - 1}].kind;
    if (index::is_type(kind) || kind == index::DeclarationKind::kField) return true;
  }
  return false;
}

bool has_own_interface(const CodeEvidence& evidence, FileId file, std::span<const FileId> members) {
  for (const auto& to : evidence.index().references_from(file)) {
    if (!kSubtyping.has(to.role) || to.declaration == 0 || to.target == file) continue;
    if (std::ranges::binary_search(members, to.target)) continue;
    const index::DeclarationRef base{to.target, to.declaration - 1};
    if (evidence.is_product(base.file) && evidence.subtypes(base).size() == 1) return true;
  }
  return false;
}

bool defines_data(const CodeEvidence& evidence, FileId file) {
  const DataSignals& data = evidence.index().files()[file].data;
  return data.entities > 0 || data.tables > 0 || data.schema_file;
}

std::vector<FileId> where_they_act(const CodeEvidence& evidence, const NamingGraph& graph,
                                   std::vector<FileId> files) {
  for (FileId& file : files) {
    if (!is_header(evidence.path(file))) continue;
    const std::string_view stem = stem_of(evidence.path(file));
    for (const Naming& by : graph.to(file)) {
      const std::string_view path = evidence.path(by.from);
      if (is_header(path) || stem_of(path) != stem || !evidence.is_product(by.from)) continue;
      file = by.from;
      break;
    }
  }
  sort_distinct(files);
  return files;
}

bool is_header(std::string_view path) {
  static constexpr std::array<std::string_view, 4> kEndings{".h", ".hh", ".hpp", ".hxx"};
  return std::ranges::any_of(kEndings, [path](auto ending) { return path.ends_with(ending); });
}

}  // namespace kestrix
