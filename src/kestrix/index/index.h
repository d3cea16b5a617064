#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/facts/data_signals.h"
#include "kestrix/facts/file_notes.h"
#include "kestrix/files/root_directory.h"
#include "kestrix/files/skip_counts.h"
#include "kestrix/index/repository.h"
#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/roles/role.h"
#include "kestrix/store/edge_codec.h"
#include "kestrix/store/reference_codec.h"
#include "kestrix/store/text_blocks.h"

namespace kestrix::index {

class Store;
struct FileRow;

/// A text file of the index. Binary and unreadable files are only counted.
struct IndexedFile {
  std::string_view path;      ///< relative to the repository's root
  std::string_view language;  ///< "" when no language reads it
  bool document = false;      ///< prose; all other files are source
  bool generated = false;     ///< made by a program, or minified
  Roles roles{};              ///< what it is to the repository; none: the product
  FileStamp stamp{};          ///< when it was read; a size below zero: not to be trusted
  DataSignals data{};         ///< what its first `kMostScannedChars` characters define
};

struct IndexedSymbol {
  SymbolKind kind;
  std::string_view name;
  std::string_view signature;
  FileId file;
  std::uint32_t line;
};

struct IndexedEdge {
  FileId source;
  FileId target;
  double weight;
  EdgeEvidence evidence = EdgeEvidence::kImport;
};

/// Who names what. A target outside of the repository has no file.
struct IndexedReference {
  FileId source = 0;
  std::uint32_t line = 0;  ///< the first one's
  std::uint32_t count = 0;
  std::uint32_t within = 0;  ///< the source's declaration that holds it, from one; 0: none
  FileId target = kOutside;
  std::uint32_t declaration = 0;  ///< of the target, from one; 0: the file itself
  std::string_view name{};  ///< of what lies outside, or of a file's part that it does not declare
  Role role = Role::kUses;

  static constexpr FileId kOutside = UINT32_MAX;
};

struct LanguageCounts {
  std::uint64_t files = 0;
  std::uint64_t unresolved = 0;  ///< imports that looked local and led nowhere
};

/// What `page-sources index` prints.
struct Statistics {
  std::uint64_t files = 0;  ///< documents and source files
  std::uint64_t documents = 0;
  std::uint64_t sources = 0;
  std::uint64_t generated = 0;
  std::uint64_t edges = 0;
  std::map<SymbolKind, std::uint64_t> symbols;           ///< by kind
  std::map<std::string_view, LanguageCounts> languages;  ///< by name; views into the index
  SkipCounts skipped;
};

/// The handle of an index: one complete state of it, held in memory.
///
/// All views that it hands out are valid as long as it lives. Immutable; safe to use from several
/// threads. Files ascend by the bytes of their paths, and a file's place is its id; symbols come in
/// the order of their files and then of their source, and a symbol's id is its place, counted from
/// one. So the same files give the same ids, however the index came to be.
class RepositoryIndex {
 public:
  /// Reads the store within the caller's transaction; `rows` are all of its files, ascending by
  /// path.
  static std::unique_ptr<RepositoryIndex> load(Store& store, std::span<const FileRow> rows);
  /// Sums up all that was read. What was stored and what is read must have the same.
  std::string digest() const;
  /// Gives each file its roles. Only before anyone else sees the index.
  void set_roles(std::span<const Roles> roles);

  std::span<const IndexedFile> files() const { return files_; }
  std::span<const IndexedSymbol> symbols() const { return symbols_; }
  std::span<const IndexedEdge> edges() const { return edges_; }  ///< by source, then target
  /// By source; of one source by target, declaration, name, role and holder. What lies outside of
  /// the repository comes first.
  std::span<const IndexedReference> references() const { return references_; }
  std::span<const IndexedReference> references_from(FileId source) const;
  /// What the reference names, with what it stands in: "Type.member"; "" for a whole file.
  std::string name_of(const IndexedReference& reference) const;
  /// The same of a declaration.
  std::string name_of(DeclarationRef declaration) const;
  /// The declarations of one file, in source order.
  std::span<const DeclarationView> declarations(FileId file) const {
    return declarations_->of(file);
  }
  const DeclarationTable& declarations() const { return *declarations_; }
  std::optional<FileId> find(std::string_view path) const;
  /// The edges that lead from one file.
  std::span<const IndexedEdge> edges_from(FileId source) const;
  /// What was noted of a file, decoded at each call; empty for most files.
  FileNotes notes(FileId file) const;
  /// Calls `visit(FileId)` for each file of which something was noted, ascending.
  template <class Visit>
  void for_each_noted(Visit visit) const {
    for (const auto& [file, bytes] : notes_) visit(file);
  }
  Statistics statistics() const;

  // As `Repository` has them.
  SymbolSearch search_symbols(std::string_view pattern, SymbolSearchOptions options) const {
    return search_symbols(std::span(&pattern, 1), options);
  }
  SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const;
  std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const;
  FileGraph graph_among(std::span<const std::string_view> paths) const;

 private:
  class Loader;

  RepositoryIndex() = default;

  TextBlocks texts_;  // what the views point into
  std::vector<IndexedFile> files_;
  std::vector<IndexedSymbol> symbols_;
  using EncodedNotes = std::pair<FileId, std::string_view>;
  std::vector<EncodedNotes> notes_;  // by file
  std::vector<IndexedEdge> edges_;
  std::vector<std::uint32_t> first_edge_;  // by file, and one behind the last
  std::vector<IndexedReference> references_;
  std::vector<std::uint32_t> first_reference_;
  std::unique_ptr<DeclarationTable> declarations_;
  std::uint64_t digest_ = 0;
  SkipCounts skipped_;
  std::map<std::string_view, LanguageCounts> languages_;
};

}  // namespace kestrix::index
