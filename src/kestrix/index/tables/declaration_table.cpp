#include "kestrix/index/tables/declaration_table.h"

#include <algorithm>
#include <tuple>

#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

void DeclarationTable::add(FileId file, std::string_view encoded) {
  const auto decoded = decode_declarations(texts_.keep(encoded));
  ranges_[file] = {static_cast<std::uint32_t>(rows_.size()),
                   static_cast<std::uint32_t>(decoded.size())};
  rows_.insert(rows_.end(), decoded.begin(), decoded.end());
}

std::span<const DeclarationView> DeclarationTable::of(FileId file) const {
  return std::span(rows_).subspan(ranges_[file].first, ranges_[file].count);
}

// Namespaces are no holders: what they hold stands at the top.
std::uint32_t DeclarationTable::holder_of(std::span<const DeclarationView> rows,
                                          std::uint32_t place) const {
  std::uint32_t holder = rows[place].container;
  while (holder > 0 && rows[holder - 1].kind == DeclarationKind::kModule) {
    holder = rows[holder - 1].container;
  }
  return holder;
}

void DeclarationTable::order_by_file() const {
  by_file_.resize(rows_.size());
  for (FileId file = 0; file < ranges_.size(); ++file) {
    const auto rows = of(file);
    const auto mine = std::span(by_file_).subspan(ranges_[file].first, ranges_[file].count);
    for (std::uint32_t place = 0; place < rows.size(); ++place)
      mine[place] = {holder_of(rows, place), place};
    std::ranges::sort(mine, {}, [&](const Named& named) {
      const DeclarationView& row = rows[named.place];
      return std::tuple(named.holder, row.name, !is_type(row.kind), row.is_abstract, named.place);
    });
  }
}

std::span<const DeclarationTable::Named> DeclarationTable::named(FileId file, std::uint32_t holder,
                                                                 std::string_view name) const {
  std::call_once(by_file_once_, [this] { order_by_file(); });
  const auto rows = of(file);
  const auto mine =
      std::span(std::as_const(by_file_)).subspan(ranges_[file].first, ranges_[file].count);
  const auto key = [&](const Named& named) {
    return std::pair(named.holder, rows[named.place].name);
  };
  const auto found = std::ranges::equal_range(mine, std::pair(holder, name), {}, key);
  return {found.begin(), found.end()};
}

std::optional<DeclarationRef> DeclarationTable::find_top(FileId file, std::string_view name) const {
  const auto found = named(file, 0, name);
  if (found.empty()) return std::nullopt;
  return DeclarationRef{file, found.front().place};
}

std::vector<DeclarationRef> DeclarationTable::find_tops(FileId file, std::string_view name,
                                                        std::size_t most) const {
  std::vector<DeclarationRef> found;
  for (const Named& row : named(file, 0, name)) {
    if (found.size() == most) break;
    found.push_back({file, row.place});
  }
  return found;
}

std::optional<DeclarationRef> DeclarationTable::find_member(DeclarationRef holder,
                                                            std::string_view name) const {
  const auto rows = of(holder.file);
  const DeclarationView& type = rows[holder.place];
  const bool space = type.kind == DeclarationKind::kModule;
  // A namespace may be opened several times in a file.
  const auto holds = [&](const Named& named) {
    const std::uint32_t around = rows[named.place].container;
    return !space || (around > 0 && rows[around - 1].kind == DeclarationKind::kModule &&
                      rows[around - 1].name == type.name);
  };
  const auto all =
      named(holder.file, space ? holder_of(rows, holder.place) : holder.place + 1, name);
  const auto found = std::ranges::find_if(all, holds);
  if (found == all.end()) return std::nullopt;
  return DeclarationRef{holder.file, found->place};
}

void DeclarationTable::order_by_name() const {
  for (FileId file = 0; file < ranges_.size(); ++file) {
    const auto rows = of(file);
    for (std::uint32_t place = 0; place < rows.size(); ++place) {
      if (!rows[place].exported || holder_of(rows, place) != 0) continue;
      by_name_.emplace_back(seeded_hash(rows[place].name), DeclarationRef{file, place});
    }
  }
  std::ranges::sort(by_name_);
}

std::vector<DeclarationRef> DeclarationTable::find_all(std::string_view name,
                                                       std::size_t most) const {
  std::call_once(by_name_once_, [this] { order_by_name(); });
  const std::uint64_t hash = seeded_hash(name);
  const auto [first, last] =
      std::ranges::equal_range(by_name_, hash, {}, [](const auto& entry) { return entry.first; });
  std::vector<DeclarationRef> found;
  for (auto entry = first; entry != last; ++entry) {
    if ((*this)[entry->second].name != name) continue;
    const bool known = !found.empty() && found.back().file == entry->second.file;
    if (known) {
      const bool better = (*this)[found.back()].is_abstract && !(*this)[entry->second].is_abstract;
      if (better) found.back() = entry->second;
      continue;
    }
    if (found.size() == most) return {};
    found.push_back(entry->second);
  }
  return found;
}

std::vector<DeclarationRef> DeclarationTable::find_each(std::string_view name,
                                                        std::size_t most) const {
  std::call_once(by_name_once_, [this] { order_by_name(); });
  const auto entries = std::ranges::equal_range(by_name_, seeded_hash(name), {},
                                                [](const auto& entry) { return entry.first; });
  std::vector<DeclarationRef> found;
  if (entries.size() > most) return found;
  for (const auto& [hash, at] : entries) {
    if ((*this)[at].name == name) found.push_back(at);
  }
  return found;
}

}  // namespace kestrix::index
