#include "kestrix/store/store.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/signals_codec.h"
#include "kestrix/store/store_file.h"

namespace kestrix::index {
namespace {

constexpr int kSchemaVersion = 6;
constexpr std::int64_t kMaxInteger = std::numeric_limits<std::int64_t>::max();

struct Table {
  std::string_view name;
  const char* sql;  ///< as SQLite keeps it
};

// By name. What is written here, to the letter, is what a file must hold to be believed.
constexpr std::array kTables{
    Table{"declarations",
          "CREATE TABLE declarations (file INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
    Table{"edges", "CREATE TABLE edges (source INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
    Table{"facts", "CREATE TABLE facts (file INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
    Table{"file",
          "CREATE TABLE file (id INTEGER PRIMARY KEY, path TEXT NOT NULL, language TEXT NOT NULL,"
          " traits INTEGER NOT NULL, size INTEGER NOT NULL, modified INTEGER NOT NULL,"
          " changed INTEGER NOT NULL, inode INTEGER NOT NULL, hash BLOB NOT NULL,"
          " unresolved INTEGER NOT NULL, roles INTEGER NOT NULL, data BLOB NOT NULL)"},
    Table{"mentions", "CREATE TABLE mentions (file INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
    Table{"notes", "CREATE TABLE notes (file INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
    Table{"refs", "CREATE TABLE refs (source INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
    Table{"setting",
          "CREATE TABLE setting (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID"},
    Table{"skipped",
          "CREATE TABLE skipped (reason TEXT PRIMARY KEY, count INTEGER NOT NULL) WITHOUT ROWID"},
    Table{"symbols", "CREATE TABLE symbols (file INTEGER PRIMARY KEY, bytes BLOB NOT NULL)"},
};

// How many steps of SQLite's machine pass between two looks at the flag.
constexpr int kStepsBetweenLooks = 10'000;

// The rows of one SELECT. It reads columns with SQLite's own functions: an object for each value
// would double the time that a large table takes.
class Rows {
 public:
  Rows(SQLite::Database& database, const char* sql) : handle_(database.getHandle()) {
    sqlite3_stmt* prepared = nullptr;
    const int code = sqlite3_prepare_v2(handle_, sql, -1, &prepared, nullptr);
    statement_.reset(prepared);
    if (code != SQLITE_OK) throw SQLite::Exception(handle_, code);
  }

  bool next() {
    const int code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) throw SQLite::Exception(handle_, code);
    return code == SQLITE_ROW;
  }

  /// Holds until `next`.
  std::string_view text(int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, size);
  }

  std::int64_t integer(int column) { return sqlite3_column_int64(statement_.get(), column); }

  template <class Number>
  Number number(int column, std::int64_t most = std::numeric_limits<Number>::max()) {
    const auto value = integer(column);
    if (value < 0 || value > most) throw CorruptIndex("a number in the index is out of range");
    return static_cast<Number>(value);
  }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  sqlite3* handle_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

ContentHash content_hash_of(std::string_view bytes) {
  ContentHash hash{};
  if (bytes.size() != hash.size()) throw CorruptIndex("a hash of another size");
  std::ranges::copy(bytes, hash.begin());
  return hash;
}

FileRow read_file_row(Rows& rows) {
  FileRow row;
  row.id = rows.integer(0);
  row.path = rows.text(1);
  row.language = rows.text(2);
  row.traits = Traits(rows.number<std::uint32_t>(3));
  row.stamp = {rows.integer(4), rows.integer(5), rows.integer(6),
               static_cast<std::uint64_t>(rows.integer(7))};
  row.hash = content_hash_of(rows.text(8));
  row.unresolved = rows.number<std::uint32_t>(9);
  row.roles = rows.number<std::uint16_t>(10);
  row.data = decode_signals(rows.text(11));
  return row;
}

}  // namespace

Store Store::open_or_create(const std::filesystem::path& path, const Patience& patience) {
  switch (look_at(path)) {
    case PlaceContent::kForeignDatabase:
      throw foreign_database(path);
    case PlaceContent::kForeignFile:
      throw Error(fmt::format("{}: not an index; it is left as it is", path.native()));
    case PlaceContent::kUntrusted:
      throw Error(
          fmt::format("{}: another user may have written the index; choose another place "
                      "with --index",
                      path.native()));
    default:
      return {path, open_database(path, true, patience), patience};
  }
}

Store Store::open_existing(const std::filesystem::path& path, const Patience& patience) {
  if (look_at(path) != PlaceContent::kIndex) {
    throw Error(fmt::format("{}: there is no index", path.native()));
  }
  return {path, open_database(path, false, patience), patience};
}

Store::Store(std::filesystem::path path, OpenedFile file, const Patience& patience)
    : path_(std::move(path)),
      patience_(std::make_unique<Patience>(patience)),
      database_(std::move(file.database)),
      writable_(file.writable) {
  wait_with(*patience_, *database_);
  sqlite3_progress_handler(
      database_->getHandle(), kStepsBetweenLooks,
      [](void* held) { return stop_requested(static_cast<Patience*>(held)->stop) ? 1 : 0; },
      patience_.get());
}

template <class Operation>
auto Store::guarded(Operation operation) {
  try {
    return operation();
  } catch (const SQLite::Exception& failure) {
    check_stop(patience_->stop);
    raise(path_, failure);
  }
}

Store::Schema Store::schema() {
  return guarded([&] {
    Rows rows(*database_,
              "SELECT type, name, tbl_name, sql FROM sqlite_schema ORDER BY name, type");
    std::size_t count = 0;
    for (; rows.next(); ++count) {
      if (count == kTables.size()) return Schema::kOther;
      const Table& table = kTables[count];
      if (rows.text(0) != "table" || rows.text(1) != table.name || rows.text(2) != table.name ||
          rows.text(3) != table.sql) {
        return Schema::kOther;
      }
    }
    const auto version = database_->execAndGet("PRAGMA user_version").getInt();
    if (count == 0) return Schema::kNone;
    return count == kTables.size() && version == kSchemaVersion ? Schema::kOurs : Schema::kOther;
  });
}

void Store::begin_read() { run("BEGIN"); }

void Store::end_read() { run("COMMIT"); }

std::string Store::setting(const std::string& name) {
  return guarded([&]() -> std::string {
    SQLite::Statement query(*database_, "SELECT value FROM setting WHERE name = ?");
    query.bindNoCopy(1, name);
    return query.executeStep() ? query.getColumn(0).getString() : std::string();
  });
}

SkipCounts Store::skip_counts() {
  return guarded([&] {
    SkipCounts counts;
    Rows rows(*database_, "SELECT reason, count FROM skipped");
    while (rows.next()) counts.add(rows.text(0), rows.number<std::uint64_t>(1, kMaxInteger));
    return counts;
  });
}

std::vector<FileRow> Store::files() {
  return guarded([&] {
    std::vector<FileRow> files;
    Rows rows(*database_,
              "SELECT id, path, language, traits, size, modified, changed, inode, hash, "
              "unresolved, roles,"
              " data"
              " FROM file");
    while (rows.next()) files.push_back(read_file_row(rows));
    if (!std::ranges::is_sorted(files, {}, &FileRow::path)) {
      std::ranges::sort(files, {}, &FileRow::path);
    }
    const auto twice = std::ranges::adjacent_find(files, {}, &FileRow::path);
    if (twice != files.end()) throw CorruptIndex("a path stands in the index twice");
    return files;
  });
}

std::optional<std::string> Store::facts(std::int64_t file) {
  return bytes_of("SELECT bytes FROM facts WHERE file = ?", file);
}

std::string Store::mentions(std::int64_t file) {
  return bytes_of("SELECT bytes FROM mentions WHERE file = ?", file).value_or("");
}

std::string Store::declarations(std::int64_t file) {
  return bytes_of("SELECT bytes FROM declarations WHERE file = ?", file).value_or("");
}

std::optional<std::string> Store::bytes_of(const std::string& sql, std::int64_t file) {
  return guarded([&]() -> std::optional<std::string> {
    auto& query = statement(sql);
    query.bind(1, file);
    if (!query.executeStep()) return std::nullopt;
    return query.getColumn(0).getString();
  });
}

int Store::data_version() {
  return guarded([&] { return database_->execAndGet("PRAGMA data_version").getInt(); });
}

void Store::each_facts(const TakeBytes& take) { each_bytes("SELECT file, bytes FROM facts", take); }

void Store::each_symbols(const TakeBytes& take) {
  each_bytes("SELECT file, bytes FROM symbols ORDER BY file", take);
}

void Store::each_declarations(const TakeBytes& take) {
  each_bytes("SELECT file, bytes FROM declarations ORDER BY file", take);
}

void Store::each_references(const TakeBytes& take) {
  each_bytes("SELECT source, bytes FROM refs ORDER BY source", take);
}

void Store::each_notes(const TakeBytes& take) {
  each_bytes("SELECT file, bytes FROM notes ORDER BY file", take);
}

void Store::each_edges(const TakeBytes& take) {
  each_bytes("SELECT source, bytes FROM edges ORDER BY source", take);
}

void Store::each_bytes(const char* sql, const TakeBytes& take) {
  guarded([&] {
    Rows rows(*database_, sql);
    while (rows.next()) take(rows.integer(0), rows.text(1));
  });
}

void Store::begin_write() {
  if (!writable_) {
    throw Error(
        fmt::format("{}: the index is out of date and cannot be written; choose another "
                    "place with --index",
                    path_.native()));
  }
  run("PRAGMA cache_size = -8192");  // reading goes through each table once, writing to and fro
  run("BEGIN IMMEDIATE");
}

void Store::create_tables() {
  guarded([&] {
    for (const Table& table : kTables) database_->exec(table.sql);
    database_->exec(fmt::format("PRAGMA user_version = {}", kSchemaVersion));
  });
}

void Store::clear_tables() {
  guarded([&] {
    for (const Table& table : kTables) database_->exec(fmt::format("DELETE FROM {}", table.name));
  });
}

void Store::set_setting(const std::string& name, const std::string& value) {
  guarded([&] {
    auto& insert = statement("INSERT OR REPLACE INTO setting VALUES (?, ?)");
    insert.bindNoCopy(1, name);
    insert.bindNoCopy(2, value);
    insert.exec();
  });
}

void Store::set_skip_counts(const SkipCounts& counts) {
  guarded([&] {
    database_->exec("DELETE FROM skipped");
    for (const auto& [reason, count] : counts) {
      auto& insert = statement("INSERT INTO skipped VALUES (?, ?)");
      insert.bindNoCopy(1, reason);
      insert.bind(2, static_cast<std::int64_t>(count));
      insert.exec();
    }
  });
}

void Store::put_file(const FileRow& row) {
  guarded([&] {
    auto& insert =
        statement("INSERT OR REPLACE INTO file VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    const std::string data = encode_signals(row.data);
    insert.bind(1, row.id);
    insert.bindNoCopy(2, row.path);
    insert.bindNoCopy(3, row.language);
    insert.bind(4, row.traits.bits());
    insert.bind(5, row.stamp.size);
    insert.bind(6, row.stamp.modified_ns);
    insert.bind(7, row.stamp.changed_ns);
    insert.bind(8, static_cast<std::int64_t>(row.stamp.inode));
    insert.bindNoCopy(9, row.hash.data(), static_cast<int>(row.hash.size()));
    insert.bind(10, row.unresolved);
    insert.bind(11, int{row.roles});
    insert.bindNoCopy(12, data.data(), static_cast<int>(data.size()));
    insert.exec();
  });
}

void Store::remove_file(std::int64_t file) {
  remove_facts(file);
  put_notes(file, {});
  put_edges(file, {});
  put_references(file, {});
  remove("DELETE FROM file WHERE id = ?", file);
}

void Store::put_facts(std::int64_t file, const EncodedFacts& facts) {
  const auto put = [&](const std::string& sql, const std::string& bytes) {
    if (!bytes.empty()) put_bytes(sql, file, bytes);
  };
  put_bytes("INSERT INTO facts VALUES (?, ?)", file, facts.facts);
  put("INSERT INTO symbols VALUES (?, ?)", facts.symbols);
  put("INSERT INTO declarations VALUES (?, ?)", facts.declarations);
  put("INSERT INTO mentions VALUES (?, ?)", facts.mentions);
}

void Store::remove_facts(std::int64_t file) {
  remove("DELETE FROM facts WHERE file = ?", file);
  remove("DELETE FROM symbols WHERE file = ?", file);
  remove("DELETE FROM declarations WHERE file = ?", file);
  remove("DELETE FROM mentions WHERE file = ?", file);
}

void Store::put_notes(std::int64_t file, const std::string& notes) {
  if (notes.empty())
    remove("DELETE FROM notes WHERE file = ?", file);
  else
    put_bytes("INSERT OR REPLACE INTO notes VALUES (?, ?)", file, notes);
}

void Store::put_edges(std::int64_t source, const std::string& edges) {
  if (edges.empty())
    remove("DELETE FROM edges WHERE source = ?", source);
  else
    put_bytes("INSERT OR REPLACE INTO edges VALUES (?, ?)", source, edges);
}

void Store::put_references(std::int64_t source, const std::string& references) {
  if (references.empty())
    remove("DELETE FROM refs WHERE source = ?", source);
  else
    put_bytes("INSERT OR REPLACE INTO refs VALUES (?, ?)", source, references);
}

void Store::put_bytes(const std::string& sql, std::int64_t file, const std::string& bytes) {
  guarded([&] {
    auto& insert = statement(sql);
    insert.bind(1, file);
    insert.bindNoCopy(2, bytes.data(), static_cast<int>(bytes.size()));
    insert.exec();
  });
}

void Store::remove(const std::string& sql, std::int64_t file) {
  guarded([&] {
    auto& remove = statement(sql);
    remove.bind(1, file);
    remove.exec();
  });
}

void Store::commit() { run("COMMIT"); }

SQLite::Statement& Store::statement(const std::string& sql) {
  auto& prepared = statements_[sql];
  if (!prepared) prepared = std::make_unique<SQLite::Statement>(*database_, sql);
  prepared->reset();
  return *prepared;
}

void Store::run(const char* sql) {
  guarded([&] { database_->exec(sql); });
}

}  // namespace kestrix::index
