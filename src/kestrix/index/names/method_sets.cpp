#include "kestrix/index/names/method_sets.h"

#include <algorithm>

#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr unsigned kDeepestEmbedding = 32;
constexpr std::size_t kMostMethods = 1'000;    // of one type, embedded ones among them
constexpr std::size_t kMostCompared = 50'000;  // methods, where one type is tried on interfaces

// Interfaces of the standard library that others are made of.
struct KnownMethod {
  std::string_view contract;
  std::string_view name;
  std::uint32_t parameters;
};
constexpr KnownMethod kKnown[] = {
    {"io.Closer", "Close", 0},      {"io.Reader", "Read", 1},      {"io.Writer", "Write", 1},
    {"io.ReadCloser", "Read", 1},   {"io.ReadCloser", "Close", 0}, {"io.WriteCloser", "Write", 1},
    {"io.WriteCloser", "Close", 0}, {"io.ReadWriter", "Read", 1},  {"io.ReadWriter", "Write", 1},
    {"fmt.Stringer", "String", 0},  {"error", "Error", 0},         {"http.Handler", "ServeHTTP", 2},
    {"sort.Interface", "Len", 0},   {"sort.Interface", "Less", 2}, {"sort.Interface", "Swap", 2},
};

bool add_known(std::string_view contract,
               std::vector<std::pair<std::string_view, std::uint32_t>>& methods) {
  bool known = false;
  for (const KnownMethod& method : kKnown) {
    if (method.contract != contract) continue;
    methods.emplace_back(method.name, method.parameters);
    known = true;
  }
  return known;
}

void sort_distinct_methods(std::vector<std::pair<std::string_view, std::uint32_t>>& methods) {
  std::ranges::sort(methods);
  methods.erase(std::unique(methods.begin(), methods.end()), methods.end());
}

}  // namespace

void MethodSets::gather(FileId file) const {
  const auto rows = table_.of(file);
  const Package package = folder_of(files_.path(file));
  for (std::uint32_t place = 0; place < rows.size(); ++place) {
    const DeclarationView& row = rows[place];
    if (row.container == 0 && is_type(row.kind)) {
      Type& type = types_[{package, row.name}];
      type.at = {file, place};
      type.contract = row.kind == DeclarationKind::kInterface;
    } else if (row.kind == DeclarationKind::kMethod) {
      const std::size_t dot = row.name.find('.');  // of a type that another file declares
      const std::string_view owner = row.container > 0               ? rows[row.container - 1].name
                                     : dot == std::string_view::npos ? std::string_view()
                                                                     : row.name.substr(0, dot);
      const std::string_view name =
          row.container > 0 ? row.name : row.name.substr(std::min(row.name.size(), dot + 1));
      if (!owner.empty()) types_[{package, owner}].methods.emplace_back(name, row.size);
    }
  }
}

// NOLINTNEXTLINE(misc-no-recursion): kDeepestEmbedding at most
void MethodSets::embed(Package package, Type& type, unsigned depth) const {
  if (type.state != State::kPlain || type.at.file >= files_.size()) return;
  const auto rows = table_.of(type.at.file);
  if (type.at.place >= rows.size()) return;
  type.state = State::kOpen;
  for (const std::string_view base : rows[type.at.place].bases()) {
    if (add_known(base, type.methods)) continue;
    const auto found = types_.find({package, base});
    if (found != types_.end() && depth > 0) embed(package, found->second, depth - 1);
    // What leads in a circle stays open.
    const bool fits = found != types_.end() && found->second.state == State::kWhole &&
                      type.methods.size() + found->second.methods.size() <= kMostMethods;
    type.complete &= fits && found->second.complete;
    if (!fits) continue;
    const Methods& more = found->second.methods;
    type.methods.insert(type.methods.end(), more.begin(), more.end());
  }
  sort_distinct_methods(type.methods);
  type.state = State::kWhole;
}

void MethodSets::gather() const {
  for (FileId file = 0; file < files_.size(); ++file) {
    if (files_.language(file) == "go") gather(file);
  }
  for (auto& [key, type] : types_) embed(key.first, type, kDeepestEmbedding);
  std::map<Method, std::size_t> common;
  for (auto& [key, type] : types_) {
    sort_distinct_methods(type.methods);
    for (const Method& method : type.methods) ++common[method];
  }
  for (const auto& [key, type] : types_) {
    if (!type.contract || !type.complete || type.methods.empty()) continue;
    const auto rarest =
        std::ranges::min_element(type.methods, {}, [&](const Method& m) { return common.at(m); });
    contracts_[*rarest].push_back(&type);
  }
}

std::vector<DeclarationRef> MethodSets::contracts_of(const Type& type, bool& cut) const {
  std::vector<DeclarationRef> found;
  std::size_t compared = 0;
  for (const Method& method : type.methods) {
    const auto candidates = contracts_.find(method);
    if (candidates == contracts_.end()) continue;
    for (const Type* contract : candidates->second) {
      compared += contract->methods.size() + type.methods.size();
      const bool enough = compared > kMostCompared || found.size() == kMostContracts;
      cut |= enough;
      if (enough) break;
      if (std::ranges::includes(type.methods, contract->methods)) found.push_back(contract->at);
    }
  }
  std::ranges::sort(found);
  return found;
}

MethodSets::Found MethodSets::of(FileId file) const {
  Found found;
  if (files_.language(file) != "go") return found;
  std::call_once(once_, [this] { gather(); });
  const Package package = folder_of(files_.path(file));
  const auto rows = table_.of(file);
  for (std::uint32_t place = 0; place < rows.size(); ++place) {
    if (rows[place].container != 0 || !is_type(rows[place].kind)) continue;
    const auto type = types_.find({package, rows[place].name});
    if (type == types_.end() || type->second.contract) continue;
    for (const DeclarationRef contract : contracts_of(type->second, found.cut))
      found.satisfied.push_back({place, contract});
  }
  return found;
}

}  // namespace kestrix::index
