#include "kestrix/files/directory_listing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

#include "kestrix/files/shortage.h"
#include "kestrix/files/uninterrupted.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{32} << 10;

EntryKind kind_of_mode(mode_t mode) {
  if (S_ISREG(mode)) return EntryKind::kFile;
  if (S_ISDIR(mode)) return EntryKind::kDirectory;
  return S_ISLNK(mode) ? EntryKind::kSymbolicLink : EntryKind::kSpecial;
}

bool is_self_or_parent(std::string_view name) { return name == "." || name == ".."; }

void add_entry(int directory, const char* name, unsigned char type, DirectoryListing& listing) {
  if (is_self_or_parent(name)) return;
  EntryKind kind = type == DT_DIR ? EntryKind::kDirectory : EntryKind::kSymbolicLink;
  FileStamp stamp;
  if (type != DT_DIR && type != DT_LNK) {
    struct stat status {};
    const auto look = [&] { return ::fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW); };
    if (uninterrupted(look) == 0) {
      kind = kind_of_mode(status.st_mode);
      stamp = stamp_of(status);
    } else {
      if (errno == ENOENT) return;  // gone again
      check_shortage(listing.path_of(name), errno);
      kind = EntryKind::kFile;
    }
  }
  listing.entries.push_back({name, kind, stamp});
}

// The system call itself: a stream would ask for flags and status of each directory again.
bool add_entries(int directory, DirectoryListing& listing, const StopFlag* stop) {
  alignas(dirent64) std::array<char, kBufferBytes> buffer;  // NOLINT(*-member-init): filled below
  for (;;) {
    const ssize_t filled =
        uninterrupted([&] { return ::getdents64(directory, buffer.data(), buffer.size()); });
    if (filled <= 0) return filled == 0;
    for (std::size_t at = 0; at < static_cast<std::size_t>(filled);) {
      const auto* item = reinterpret_cast<const dirent64*>(buffer.data() + at);
      check_stop(stop);
      add_entry(directory, item->d_name, item->d_type, listing);
      at += item->d_reclen;
    }
  }
}

}  // namespace

std::string DirectoryListing::path_of(std::string_view name) const {
  std::string whole;
  whole.reserve(path.size() + 1 + name.size());
  whole.append(path);
  if (!path.empty()) whole += '/';
  return whole.append(name);
}

const DirectoryEntry* DirectoryListing::find(std::string_view name) const {
  const auto found = std::ranges::find(entries, name, &DirectoryEntry::name);
  return found == entries.end() ? nullptr : &*found;
}

std::optional<DirectoryListing> list_directory(const RootDirectory& root, std::string path,
                                               const StopFlag* stop) {
  const FileDescriptor directory = root.open(path, O_RDONLY | O_DIRECTORY | O_NONBLOCK);
  DirectoryListing listing{std::move(path), {}};
  if (!directory) return std::nullopt;
  if (!add_entries(directory.get(), listing, stop)) {
    check_shortage(listing.path, errno);
    return std::nullopt;
  }
  return listing;
}

}  // namespace kestrix::index
