#include "kestrix/store/store_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

#include "kestrix/files/root_directory.h"
#include "kestrix/files/uninterrupted.h"
#include "kestrix/store/corrupt_index.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMagic("SQLite format 3\0", 16);
constexpr std::size_t kHeaderBytes = 100;
constexpr std::size_t kApplicationIdOffset = 68;
// More than what is taken from the largest file that is parsed. What is longer was planted.
constexpr int kLongestRow = 16 << 20;
constexpr auto kPoll = std::chrono::milliseconds(20);
constexpr std::array<std::string_view, 3> kCompanions{"-wal", "-shm", "-journal"};
constexpr std::string_view kRemedy = "choose another place with --index";

std::string read_header(const fs::path& path, int fd) {
  std::string header(kHeaderBytes, '\0');
  const ssize_t size = ::pread(fd, header.data(), header.size(), 0);
  if (size < 0)
    throw Error(fmt::format("{}: {}", path.native(), std::generic_category().message(errno)));
  header.resize(static_cast<std::size_t>(size));
  return header;
}

std::int32_t application_id(std::string_view header) {
  std::uint32_t id = 0;
  for (const char byte : header.substr(kApplicationIdOffset, 4)) {
    id = id << 8U | static_cast<unsigned char>(byte);
  }
  return static_cast<std::int32_t>(id);
}

PlaceContent content_of(std::string_view header) {
  if (header.empty()) return PlaceContent::kNothing;
  if (!header.starts_with(kMagic) || header.size() < kHeaderBytes) {
    return PlaceContent::kForeignFile;
  }
  return application_id(header) == kApplicationId ? PlaceContent::kIndex
                                                  : PlaceContent::kForeignDatabase;
}

fs::path companion(const fs::path& path, std::string_view suffix) {
  return path.native() + std::string(suffix);
}

std::string frozen_uri(const fs::path& path) {
  std::string uri = "file:";
  const fs::path absolute = fs::absolute(path);
  for (const char c : absolute.native()) {
    const bool plain = c == '/' || c == '.' || c == '-' || c == '_' || (c >= '0' && c <= '9') ||
                       (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (plain)
      uri += c;
    else
      uri += fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return uri + "?immutable=1";
}

// Nothing that a file could say counts before this.
void harden(SQLite::Database& database) {
  sqlite3* handle = database.getHandle();
  for (const int off : {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
                        SQLITE_DBCONFIG_TRUSTED_SCHEMA}) {
    sqlite3_db_config(handle, off, 0, nullptr);
  }
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, kLongestRow);
}

// Reading needs a place for the log's index beside the file. Without one, and as long as no log
// holds part of the content, the file can be read as it stands.
OpenedFile open_frozen(const fs::path& path, const SQLite::Exception& failure) {
  std::error_code missing;
  const auto log_bytes = fs::file_size(companion(path, "-wal"), missing);
  if (!missing && log_bytes > 0) raise(path, failure);
  auto database = std::make_unique<SQLite::Database>(frozen_uri(path),
                                                     SQLite::OPEN_READONLY | SQLite::OPEN_URI);
  harden(*database);
  return {std::move(database), false};
}

// Calls `done` until it is, or patience ends.
template <class Done>
bool wait_until(const Patience& patience, Done done) {
  const auto deadline = std::chrono::steady_clock::now() + patience.timeout;
  while (!done()) {
    check_stop(patience.stop);
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(kPoll);
  }
  return true;
}

// Two processes that find no index, or the same damage, take turns.
class DirectoryLock {
 public:
  DirectoryLock(const fs::path& directory, const Patience& patience)
      : fd_(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const auto locked = [&] {
      return ::flock(fd_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    };
    if (fd_ && !wait_until(patience, locked)) {
      throw Error(fmt::format("{}: another process holds its lock", directory.native()));
    }
  }

 private:
  FileDescriptor fd_;
};

// A link in the place of a companion would keep SQLite from opening the index. Its name is ours.
void remove_stray_links(const fs::path& path) {
  for (const std::string_view suffix : kCompanions) {
    std::error_code ignored;
    if (fs::is_symlink(companion(path, suffix), ignored))
      fs::remove(companion(path, suffix), ignored);
  }
}

// SQLite would leave the mode to the umask. The companions get the mode of the file.
void make_file(const fs::path& path) {
  const FileDescriptor made(
      ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
}

// Links on the way to the folder are the user's; one in the place of the file is not followed.
fs::path without_links_above(const fs::path& path) {
  std::error_code failure;
  const fs::path absolute = fs::absolute(path);
  fs::path folder = fs::canonical(absolute.parent_path(), failure);
  return failure ? absolute : folder / absolute.filename();
}

bool is_ours(SQLite::Database& database) {
  return database.execAndGet("PRAGMA application_id").getInt() == kApplicationId;
}

bool has_log(SQLite::Database& database) {
  return database.execAndGet("PRAGMA journal_mode").getString() == "wal";
}

// What the library says counts, not the first bytes: where a process was killed while it made them,
// they are taken back as soon as the file is read.
void mark_as_index(const fs::path& path, SQLite::Database& database, const Patience& patience) {
  if (is_ours(database) && has_log(database)) return;
  const DirectoryLock lock(fs::absolute(path).parent_path(), patience);
  if (!is_ours(database)) {
    const bool is_empty = database.execAndGet("PRAGMA page_count").getInt() == 0;
    if (!is_empty) throw foreign_database(path);
    database.exec(fmt::format("PRAGMA application_id = {}", kApplicationId));
  }
  database.exec("PRAGMA journal_mode = WAL");
}

OpenedFile open_for_writing(const fs::path& path, bool create, const Patience& patience) {
  if (create) make_file(path);
  remove_stray_links(path);
  auto database = std::make_unique<SQLite::Database>(
      without_links_above(path),
      SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW);
  harden(*database);
  wait_with(patience, *database);
  const bool writable = sqlite3_db_readonly(database->getHandle(), "main") == 0;
  if (create && writable) mark_as_index(path, *database, patience);
  // Nothing waits for the disk: what a failing machine leaves behind is checked as it is read, and
  // the worst that can come is a rebuild.
  database->exec("PRAGMA synchronous = OFF; PRAGMA cache_size = -1024");
  database->execAndGet("SELECT count(*) FROM sqlite_schema");
  return {std::move(database), writable};
}

// Whoever may write to the file decides what it answers. Root may anyway.
bool is_trusted(const struct stat& status) {
  const bool others_write = (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
  return !others_write && (status.st_uid == ::geteuid() || status.st_uid == 0);
}

}  // namespace

void wait_with(const Patience& patience, SQLite::Database& database) {
  const auto wait = [](void* held, int times) {
    const auto& how = *static_cast<const Patience*>(held);
    if (stop_requested(how.stop) || times * kPoll >= how.timeout) return 0;
    std::this_thread::sleep_for(kPoll);
    return 1;
  };
  sqlite3_busy_handler(database.getHandle(), wait, const_cast<Patience*>(&patience));
}

PlaceContent look_at(const fs::path& path) {
  const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC;
  const FileDescriptor file(::open(path.c_str(), flags));
  if (!file && errno == ENOENT) return PlaceContent::kNothing;
  if (!file && errno == ELOOP) return PlaceContent::kForeignFile;
  struct stat status {};
  const auto look = [&] { return ::fstat(file.get(), &status); };
  if (!file || uninterrupted(look) != 0) {
    throw Error(fmt::format("{}: {}", path.native(), std::generic_category().message(errno)));
  }
  if (!S_ISREG(status.st_mode)) return PlaceContent::kForeignFile;
  const PlaceContent content = content_of(read_header(path, file.get()));
  const bool may_be_ours = content == PlaceContent::kIndex || content == PlaceContent::kNothing;
  return may_be_ours && !is_trusted(status) ? PlaceContent::kUntrusted : content;
}

OpenedFile open_database(const fs::path& path, bool create, const Patience& patience) {
  try {
    return open_for_writing(path, create, patience);
  } catch (const SQLite::Exception& failure) {
    check_stop(patience.stop);
    const int code = failure.getErrorCode();
    const bool place_is_closed = code == SQLITE_CANTOPEN || code == SQLITE_READONLY;
    std::error_code ignored;
    if (!place_is_closed || !fs::exists(path, ignored)) raise(path, failure);
    return open_frozen(path, failure);
  }
}

Error foreign_database(const fs::path& path) {
  return Error(fmt::format("{}: a database of another program, not an index", path.native()));
}

void raise(const fs::path& path, const SQLite::Exception& failure) {
  switch (failure.getErrorCode()) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR:  // our statements are right: it is the schema that is not
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
    case SQLITE_FORMAT:
    case SQLITE_TOOBIG:
      throw CorruptIndex(fmt::format("{}: the index is damaged", path.native()));
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw Error(fmt::format("{}: the index is in use by another process", path.native()));
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
      throw Error(fmt::format("{}: the index cannot be written; {}", path.native(), kRemedy));
    default:
      throw Error(fmt::format("{}: {}", path.native(), failure.what()));
  }
}

FileIdentity identity_of(const fs::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return {};
  return {status.st_dev, status.st_ino};
}

void remove_database(const fs::path& path, const FileIdentity& damaged, const Patience& patience) {
  const DirectoryLock lock(fs::absolute(path).parent_path(), patience);
  if (identity_of(path) != damaged) return;
  for (const std::string_view suffix : {"-wal", "-shm", "-journal", ""}) {
    std::error_code failure;
    fs::remove(companion(path, suffix), failure);
    if (failure) throw Error(fmt::format("{}: {}", path.native(), failure.message()));
  }
}

}  // namespace kestrix::index
