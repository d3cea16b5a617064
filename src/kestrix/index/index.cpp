#include "kestrix/index/index.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>
#include <utility>

#include "kestrix/index/left_out.h"
#include "kestrix/index/name_pattern.h"
#include "kestrix/languages/language.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/edge_codec.h"
#include "kestrix/store/facts_codec.h"
#include "kestrix/store/notes_codec.h"
#include "kestrix/store/signals_codec.h"
#include "kestrix/store/store.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kLongestQualifiedName = 400;

}  // namespace

// Fills an index from a store, table by table.
class RepositoryIndex::Loader {
 public:
  Loader(RepositoryIndex& index, Store& store) : index_(index), store_(store) {}

  void load(std::span<const FileRow> rows) {
    load_files(rows);
    load_symbols();
    load_edges();
    load_declarations();
    load_references();
    load_notes();
    load_skip_counts();
    index_.digest_ = digest_.value();
  }

 private:
  void load_files(std::span<const FileRow> rows) {
    for (const FileRow& row : rows) {
      sum_up(row);
      count_traits(row.traits);
      if (!row.traits.is_text()) continue;
      ids_.emplace(row.id, static_cast<FileId>(index_.files_.size()));
      index_.files_.push_back(
          {index_.texts_.keep(row.path), language_name(row.language),
           row.traits.has(Trait::kDocument),
           row.traits.has(Trait::kGenerated) || row.traits.has(Trait::kMinified), Roles(row.roles),
           row.stamp, row.data});
      if (!row.language.empty()) count_language(row);
    }
  }

  void sum_up(const FileRow& row) {
    digest_.add(row.path);
    digest_.add(row.language);
    digest_.add(encode_signals(row.data));
    for (const std::int64_t number :
         {row.id, row.stamp.size, row.stamp.modified_ns, row.stamp.changed_ns}) {
      digest_.add(static_cast<std::uint64_t>(number));
    }
    for (const std::uint64_t number :
         {row.stamp.inode, std::uint64_t{row.unresolved}, std::uint64_t{row.traits.bits()}}) {
      digest_.add(number);
    }
    digest_.add(row.hash);
  }

  void load_skip_counts() {
    index_.skipped_ = store_.skip_counts();
    for (const auto& [reason, count] : index_.skipped_) {
      digest_.add(reason);
      digest_.add(count);
    }
    for (const auto& [reason, count] : file_skips_) index_.skipped_.add(reason, count);
  }

  // The name in the language table lives as long as the program.
  static std::string_view language_name(std::string_view name) {
    if (name.empty()) return {};
    const Language* language = language_named(name);
    if (language == nullptr) throw CorruptIndex("a file's language does not exist");
    return language->name;
  }

  void count_language(const FileRow& row) {
    LanguageCounts& counts = index_.languages_[language_name(row.language)];
    ++counts.files;
    counts.unresolved += row.unresolved;
  }

  void count_traits(const Traits& traits) {
    for (const auto reason : reasons_of(traits)) file_skips_.add(reason);
  }

  FileId id_of(std::int64_t row) const {
    const auto found = ids_.find(row);
    if (found == ids_.end()) throw CorruptIndex("the index speaks of a file that it has not");
    return found->second;
  }

  void load_symbols() {
    store_.each_symbols([&](std::int64_t row, std::string_view bytes) {
      const FileId file = id_of(row);
      sum_up(file, bytes);
      for (const SymbolView& symbol : decode_symbols(index_.texts_.keep(bytes))) {
        index_.symbols_.push_back({symbol.kind, symbol.name, symbol.signature, file, symbol.line});
      }
    });
    if (!std::ranges::is_sorted(index_.symbols_, {}, &IndexedSymbol::file)) {
      std::ranges::stable_sort(index_.symbols_, {}, &IndexedSymbol::file);
    }
  }

  void load_notes() {
    store_.each_notes([&](std::int64_t row, std::string_view bytes) {
      const auto found = ids_.find(row);
      if (found == ids_.end()) throw CorruptIndex("notes of a file that the index has not");
      sum_up(found->second, bytes);
      index_.notes_.emplace_back(found->second, index_.texts_.keep(bytes));
    });
    std::ranges::sort(index_.notes_);
  }

  void sum_up(FileId file, std::string_view bytes) {
    digest_.add(std::uint64_t{file});
    digest_.add(bytes);
  }

  void load_edges() {
    store_.each_edges([&](std::int64_t row, std::string_view bytes) {
      const FileId source = id_of(row);
      sum_up(source, bytes);
      for (const StoredEdge& edge : decode_edges(bytes)) {
        index_.edges_.push_back({source, id_of(edge.target), edge.weight, edge.evidence});
      }
    });
    const auto ends = [](const IndexedEdge& edge) { return std::pair(edge.source, edge.target); };
    if (!std::ranges::is_sorted(index_.edges_, {}, ends)) {
      std::ranges::sort(index_.edges_, {}, ends);
    }
    index_.first_edge_ = first_places(index_.edges_);
  }

  // Where the rows of each file begin, and one behind the last.
  template <class Row>
  std::vector<std::uint32_t> first_places(const std::vector<Row>& rows) const {
    std::vector<std::uint32_t> first(index_.files_.size() + 1, 0);
    for (const Row& row : rows) ++first[row.source + 1];
    std::partial_sum(first.begin(), first.end(), first.begin());
    return first;
  }

  void load_declarations() {
    index_.declarations_ = std::make_unique<DeclarationTable>(index_.files_.size());
    store_.each_declarations([&](std::int64_t row, std::string_view bytes) {
      const FileId file = id_of(row);
      sum_up(file, bytes);
      index_.declarations_->add(file, bytes);
    });
  }

  void load_references() {
    store_.each_references([&](std::int64_t row, std::string_view bytes) {
      const FileId source = id_of(row);
      sum_up(source, bytes);
      for (const ReferenceView& to : decode_references(index_.texts_.keep(bytes))) {
        add_reference(source, to);
      }
    });
    if (!std::ranges::is_sorted(index_.references_, {}, &IndexedReference::source)) {
      std::ranges::stable_sort(index_.references_, {}, &IndexedReference::source);
    }
    index_.first_reference_ = first_places(index_.references_);
    for (FileId file = 0; file < index_.files_.size(); ++file) order_references(file);
  }

  // Rows are stored in the order of the store's ids, which tells nothing.
  void order_references(FileId file) {
    const auto first = index_.first_reference_[file];
    const auto mine =
        std::span(index_.references_).subspan(first, index_.first_reference_[file + 1] - first);
    const auto place = [](const IndexedReference& to) {
      return std::tuple(to.target + 1, to.declaration, to.name, to.role, to.within);
    };
    if (!std::ranges::is_sorted(mine, {}, place)) std::ranges::sort(mine, {}, place);
  }

  void add_reference(FileId source, const ReferenceView& to) {
    const bool outside = to.target == 0;
    const FileId target = outside ? IndexedReference::kOutside : id_of(to.target);
    const auto known = [&](FileId file, std::uint32_t place) {
      return place <= index_.declarations_->of(file).size();
    };
    if (!known(source, to.within) ||
        (outside ? to.declaration != 0 : !known(target, to.declaration))) {
      throw CorruptIndex("a reference to a declaration that is not there");
    }
    index_.references_.push_back(
        {source, to.line, to.count, to.within, target, to.declaration, to.name, to.role});
  }

  RepositoryIndex& index_;
  Store& store_;
  std::unordered_map<std::int64_t, FileId> ids_;
  SkipCounts file_skips_;
  Digest digest_;
};

std::unique_ptr<RepositoryIndex> RepositoryIndex::load(Store& store,
                                                       std::span<const FileRow> rows) {
  std::unique_ptr<RepositoryIndex> index(new RepositoryIndex);
  Loader(*index, store).load(rows);
  return index;
}

// The roles are made from all the rest, so they are summed up last.
std::string RepositoryIndex::digest() const {
  Digest sum;
  sum.add(digest_);
  for (const IndexedFile& file : files_) sum.add(std::uint64_t{file.roles.bits()});
  return fmt::format("{:016x}", sum.value());
}

void RepositoryIndex::set_roles(std::span<const Roles> roles) {
  for (FileId file = 0; file < files_.size(); ++file) files_[file].roles = roles[file];
}

std::optional<FileId> RepositoryIndex::find(std::string_view path) const {
  const auto found = std::ranges::lower_bound(files_, path, {}, &IndexedFile::path);
  if (found == files_.end() || found->path != path) return std::nullopt;
  return static_cast<FileId>(found - files_.begin());
}

std::span<const IndexedEdge> RepositoryIndex::edges_from(FileId source) const {
  const auto first = first_edge_[source];
  return std::span(edges_).subspan(first, first_edge_[source + 1] - first);
}

std::span<const IndexedReference> RepositoryIndex::references_from(FileId source) const {
  const auto first = first_reference_[source];
  return std::span(references_).subspan(first, first_reference_[source + 1] - first);
}

std::string RepositoryIndex::name_of(const IndexedReference& reference) const {
  if (reference.declaration == 0) return std::string(reference.name);
  return name_of(DeclarationRef{reference.target, reference.declaration - 1});
}

std::string RepositoryIndex::name_of(DeclarationRef declaration) const {
  const auto rows = declarations_->of(declaration.file);
  std::string name(rows[declaration.place].name);
  for (std::uint32_t holder = rows[declaration.place].container; holder > 0;
       holder = rows[holder - 1].container) {
    name.insert(0, ".").insert(0, rows[holder - 1].name);
    if (name.size() > kLongestQualifiedName) break;
  }
  return name;
}

FileNotes RepositoryIndex::notes(FileId file) const {
  const auto found = std::ranges::lower_bound(notes_, file, {}, &EncodedNotes::first);
  if (found == notes_.end() || found->first != file) return {};
  return decode_notes(found->second);
}

Statistics RepositoryIndex::statistics() const {
  Statistics statistics;
  statistics.files = files_.size();
  for (const IndexedFile& file : files_) {
    ++(file.document ? statistics.documents : statistics.sources);
    if (file.generated) ++statistics.generated;
  }
  for (const IndexedSymbol& symbol : symbols_) ++statistics.symbols[symbol.kind];
  statistics.edges = edges_.size();
  statistics.languages = languages_;
  statistics.skipped = skipped_;
  return statistics;
}

SymbolSearch RepositoryIndex::search_symbols(std::span<const std::string_view> patterns,
                                             SymbolSearchOptions options) const {
  const std::vector<NamePattern> wanted(patterns.begin(), patterns.end());
  SymbolSearch found;
  for (std::size_t place = 0; place < symbols_.size(); ++place) {
    const IndexedSymbol& symbol = symbols_[place];
    if (symbol.kind != options.kind) continue;
    const auto matches = [&](const NamePattern& pattern) { return pattern.matches(symbol.name); };
    if (std::ranges::none_of(wanted, matches)) continue;
    ++found.total;
    if (found.symbols.size() >= options.limit) continue;
    found.symbols.push_back({static_cast<SymbolId>(place + 1), std::string(symbol.name),
                             std::string(symbol.signature)});
  }
  found.truncated = found.total > std::ssize(found.symbols);
  return found;
}

std::unordered_map<SymbolId, std::string> RepositoryIndex::get_file_paths_batch(
    std::span<const Symbol> symbols) const {
  std::unordered_map<SymbolId, std::string> paths;
  paths.reserve(symbols.size());
  for (const Symbol& symbol : symbols) {
    if (symbol.id < 1 || symbol.id > std::ssize(symbols_)) continue;
    const IndexedSymbol& known = symbols_[static_cast<std::size_t>(symbol.id - 1)];
    paths.try_emplace(symbol.id, files_[known.file].path);
  }
  return paths;
}

FileGraph RepositoryIndex::graph_among(std::span<const std::string_view> paths) const {
  std::vector<bool> wanted(files_.size());
  for (const std::string_view path : paths) {
    if (const auto file = find(path)) wanted[*file] = true;
  }
  FileGraph graph;
  for (FileId file = 0; file < files_.size(); ++file) {
    if (!wanted[file]) continue;
    graph.files.push_back(files_[file].path);
    for (const IndexedEdge& edge : edges_from(file)) {
      if (!wanted[edge.target]) continue;
      graph.edges.push_back({files_[file].path, files_[edge.target].path, edge.weight});
    }
  }
  return graph;
}

}  // namespace kestrix::index
