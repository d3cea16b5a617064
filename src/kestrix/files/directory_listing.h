#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/files/root_directory.h"

namespace kestrix::index {

enum class EntryKind { kFile, kDirectory, kSymbolicLink, kSpecial };

struct DirectoryEntry {
  std::string name;
  EntryKind kind;
  FileStamp stamp;  ///< of a file; all zero for anything else
};

/// A directory below the root, with its entries in no order.
struct DirectoryListing {
  std::string path;  ///< "" for the root
  std::vector<DirectoryEntry> entries;

  std::string path_of(std::string_view name) const;
  /// Null when there is none of that name.
  const DirectoryEntry* find(std::string_view name) const;
};

/// Lists a directory and takes its files' stamps. None when it cannot be listed; errno says why.
std::optional<DirectoryListing> list_directory(const RootDirectory& root, std::string path);

}  // namespace kestrix::index
