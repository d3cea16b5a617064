#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "kestrix/utils/error.h"
#include "kestrix/utils/stop.h"

namespace kestrix::index {

/// Marks an SQLite file as this program's index ("KPSi").
inline constexpr std::int32_t kApplicationId = 0x4B505369;

/// What stands in the place of the index.
enum class PlaceContent {
  kNothing,          ///< no file, or an empty one
  kIndex,            ///< an index, of whatever version and in whatever condition
  kForeignDatabase,  ///< an SQLite file of another program
  kUntrusted,        ///< somebody else owns it, or may write to it
  kForeignFile,      ///< anything else, a link among them
};

/// Looks at the file without SQLite and follows no link. Throws `Error` when it cannot be read.
PlaceContent look_at(const std::filesystem::path& path);

struct OpenedFile {
  std::unique_ptr<SQLite::Database> database;
  bool writable;
};

/// How long to wait for other processes. The flag ends the wait at once.
struct Patience {
  std::chrono::milliseconds timeout = std::chrono::seconds(60);
  const StopFlag* stop = nullptr;
};

/// Lets the database wait for others' locks as told. `patience` must outlive the database.
void wait_with(const Patience& patience, SQLite::Database& database);

/// Opens the file for reading and writing, or for reading alone where it lies in a place that
/// cannot be written to. With `create` it is made where it is missing, for the user alone whatever
/// the umask. Nothing that the file says makes SQLite touch another one or run anything: no
/// triggers, no views, no other databases.
OpenedFile open_database(const std::filesystem::path& path, bool create, const Patience& patience);

/// What to throw for PlaceContent::kForeignDatabase.
Error foreign_database(const std::filesystem::path& path);

/// Throws what an SQLite failure with `path` means: `CorruptIndex`, or an `Error` with a remedy.
[[noreturn]] void raise(const std::filesystem::path& path, const SQLite::Exception& failure);

/// Tells a file from another one at the same path; all zero for no file.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;

  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

FileIdentity identity_of(const std::filesystem::path& path);

/// Removes a damaged index and its companions, unless another process has put a new one there.
void remove_database(const std::filesystem::path& path, const FileIdentity& damaged,
                     const Patience& patience);

}  // namespace kestrix::index
