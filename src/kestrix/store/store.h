#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/facts/data_signals.h"
#include "kestrix/files/root_directory.h"
#include "kestrix/files/skip_counts.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/store_file.h"
#include "kestrix/utils/stop.h"

namespace kestrix::index {

/// What a file is, as far as its text tells.
enum class Trait : std::uint32_t {
  kDocument = 1U << 0U,    ///< prose
  kGenerated = 1U << 1U,   ///< made by a program
  kMinified = 1U << 2U,    ///< not parsed for that
  kLarge = 1U << 3U,       ///< not parsed for that
  kGaveUp = 1U << 4U,      ///< parsing took too much
  kBinary = 1U << 5U,      ///< seen, but not part of the index
  kUnreadable = 1U << 6U,  ///< seen, but not part of the index
  kParsed = 1U << 7U,      ///< there are facts of it
  kConsulted = 1U << 8U,   ///< resolvers read its text: a project file
  kCrowded = 1U << 9U,     ///< it declares or names more than is kept
  kEntangled = 1U << 10U,  ///< not all is found of what its imports and names lead to
};

class Traits {
 public:
  Traits() = default;
  explicit Traits(std::uint32_t bits) : bits_(bits) {}

  void set(Trait trait, bool on = true) {
    const auto bit = static_cast<std::uint32_t>(trait);
    bits_ = on ? bits_ | bit : bits_ & ~bit;
  }
  bool has(Trait trait) const { return (bits_ & static_cast<std::uint32_t>(trait)) != 0; }
  bool is_text() const { return !has(Trait::kBinary) && !has(Trait::kUnreadable); }
  std::uint32_t bits() const { return bits_; }

  friend bool operator==(const Traits&, const Traits&) = default;

 private:
  std::uint32_t bits_ = 0;
};

/// A row of the store. Ids are the store's own, in no order.
struct FileRow {
  std::int64_t id = 0;
  std::string path;
  std::string language;  ///< name of the language that reads it, "" for none
  Traits traits;
  FileStamp stamp;  ///< a size below zero: read it again, whatever it looks like
  ContentHash hash{};
  std::uint32_t unresolved = 0;  ///< imports that looked local and led nowhere
  std::uint16_t roles = 0;       ///< bits of what a text file is to the repository
  DataSignals data{};            ///< what its text defines
};

/// What is stored of a parsed file, each part encoded.
struct EncodedFacts {
  std::string facts;    ///< what resolvers read of every file
  std::string symbols;  ///< "" when there are none; so are the next two
  std::string declarations;
  std::string mentions;  ///< what is read of a file only when it is resolved
};

/// The index's SQLite file.
///
/// Readers see the last complete state while a writer is at work: the file uses a write-ahead log.
/// One transaction holds all changes of a refresh, so a process that is killed leaves the state
/// before it. Failures are thrown as `Error`, which names the file; `CorruptIndex` when the file is
/// this program's and damaged. Whatever it does ends soon after the flag of its `Patience` is set.
/// Not for use by several threads at once.
class Store {
 public:
  /// Opens the file for a refresh and creates it where there is none. A file that is not this
  /// program's is refused, and never changed.
  static Store open_or_create(const std::filesystem::path& path, const Patience& patience);

  /// Opens an existing file for reading, also where nothing can be written.
  static Store open_existing(const std::filesystem::path& path, const Patience& patience);

  const std::filesystem::path& path() const { return path_; }

  /// Whether begin_write can succeed here at all.
  bool writable() const { return writable_; }

  /// What the tables, views, triggers and indexes of the file are. Nothing else may be asked of one
  /// that is not ours.
  enum class Schema { kNone, kOurs, kOther };
  Schema schema();

  // Reading. One transaction keeps all reads in one state.
  void begin_read();
  void end_read();
  std::string setting(const std::string& name);  ///< "" when it was never set
  SkipCounts skip_counts();
  std::vector<FileRow> files();  ///< ascending by path
  /// The encoded facts of one file; none when it was not parsed.
  std::optional<std::string> facts(std::int64_t file);
  /// The encoded mentions or declarations of one file; "" when it has none.
  std::string mentions(std::int64_t file);
  std::string declarations(std::int64_t file);
  /// Changes whenever another connection has written.
  int data_version();

  // What is encoded, file by file, for all files that have some; the order is that of their ids.
  // Views that are handed over hold until the function returns.
  using TakeBytes = std::function<void(std::int64_t file, std::string_view bytes)>;
  void each_facts(const TakeBytes& take);
  void each_symbols(const TakeBytes& take);
  void each_declarations(const TakeBytes& take);
  void each_notes(const TakeBytes& take);
  void each_edges(const TakeBytes& take);       ///< by source
  void each_references(const TakeBytes& take);  ///< by source

  // Writing, between begin_write and commit. Destroying the store takes back what is not committed.
  /// Waits for another writer; throws `Error` when it takes too long.
  void begin_write();
  void create_tables();  ///< where there are none
  void clear_tables();   ///< of a schema that is ours
  void set_setting(const std::string& name, const std::string& value);
  void set_skip_counts(const SkipCounts& counts);
  void put_file(const FileRow& row);
  void remove_file(std::int64_t file);
  void put_facts(std::int64_t file, const EncodedFacts& facts);
  void remove_facts(std::int64_t file);
  void put_notes(std::int64_t file, const std::string& notes);  ///< "" for none
  void put_edges(std::int64_t source, const std::string& edges);
  void put_references(std::int64_t source, const std::string& references);
  void commit();

 private:
  Store(std::filesystem::path path, OpenedFile file, const Patience& patience);

  template <class Operation>
  auto guarded(Operation operation);
  std::optional<std::string> bytes_of(const std::string& sql, std::int64_t file);
  void each_bytes(const char* sql, const TakeBytes& take);
  void put_bytes(const std::string& sql, std::int64_t file, const std::string& bytes);
  void remove(const std::string& sql, std::int64_t file);
  SQLite::Statement& statement(const std::string& sql);
  void run(const char* sql);

  std::filesystem::path path_;
  std::unique_ptr<Patience> patience_;  // stays where it is: the database calls back
  std::unique_ptr<SQLite::Database> database_;
  std::unordered_map<std::string, std::unique_ptr<SQLite::Statement>> statements_;
  bool writable_ = true;
};

}  // namespace kestrix::index
