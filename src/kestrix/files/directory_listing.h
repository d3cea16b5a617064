#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/files/root_directory.h"
#include "kestrix/utils/stop.h"

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

/// Lists a directory and takes its files' stamps; of a file whose stamp cannot be taken it is zero.
/// None when the directory cannot be listed; errno says why. Throws `Error` where descriptors or
/// memory run out, and `StopRequest` soon after the flag is set.
std::optional<DirectoryListing> list_directory(const RootDirectory& root, std::string path,
                                               const StopFlag* stop = nullptr);

}  // namespace kestrix::index
