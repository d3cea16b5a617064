#include "capi/answers/references.h"

#include <algorithm>
#include <tuple>

#include "kestrix/text/wildmatch.h"

namespace kestrix {
namespace {

using index::IndexedReference;

class Globs {
 public:
  explicit Globs(std::span<const std::string> patterns) {
    for (const std::string& pattern : patterns) globs_.emplace_back(pattern);
  }

  bool empty() const { return globs_.empty(); }
  bool match(std::string_view text) const {
    return std::ranges::any_of(globs_, [text](const auto& glob) { return glob.matches(text); });
  }

 private:
  std::vector<index::Wildmatch> globs_;
};

bool is_shown(const IndexedReference& reference, bool self) {
  return self || reference.source != reference.target || reference.role == index::Role::kExtends ||
         reference.role == index::Role::kImplements;
}

auto key(const FoundReference& row) { return std::tie(row.source, row.role, row.target, row.name); }

void join(std::vector<FoundReference>& rows) {
  std::ranges::sort(rows, {},
                    [](const auto& row) { return std::tuple_cat(key(row), std::tie(row.line)); });
  std::size_t kept = 0;
  for (std::size_t at = 0; at < rows.size(); ++at) {
    if (kept > 0 && key(rows[kept - 1]) == key(rows[at])) {
      rows[kept - 1].count += rows[at].count;
    } else {
      if (kept != at) rows[kept] = std::move(rows[at]);
      ++kept;
    }
  }
  rows.resize(kept);
  std::ranges::sort(rows);
}

}  // namespace

std::vector<FoundReference> find_references(const index::RepositoryIndex& index,
                                            const ReferenceQuery& query) {
  const Globs to(query.to);
  const Globs from(query.from);
  std::vector<FoundReference> rows;
  for (const IndexedReference& reference : index.references()) {
    const std::string_view role = to_string(reference.role);
    if (!query.roles.empty() && std::ranges::find(query.roles, role) == query.roles.end()) continue;
    if (!is_shown(reference, query.self)) continue;
    const std::string_view source = index.files()[reference.source].path;
    if (!from.empty() && !from.match(source)) continue;
    const bool outside = reference.target == IndexedReference::kOutside;
    FoundReference row{
        .source = source,
        .line = reference.line,
        .role = reference.role,
        .target = outside ? std::string_view() : index.files()[reference.target].path,
        .name = index.name_of(reference),
        .count = reference.count};
    if (!to.empty() && !to.match(row.target) && !to.match(row.name)) continue;
    rows.push_back(std::move(row));
  }
  join(rows);
  return rows;
}

}  // namespace kestrix
