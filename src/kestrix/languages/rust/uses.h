#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// The use declarations of each file, by the names that they bind and hand on. A file's are ordered
/// when one first asks. Safe to use from several threads.
class RustUses {
 public:
  explicit RustUses(const FileTable& files);

  struct Use {
    const ImportFact* import;
    const ImportedName* name;
    std::size_t place;  ///< among all of the file
  };
  /// In the order of the file; "*" for those of all names.
  std::span<const Use> binding(FileId file, std::string_view name) const;
  std::span<const Use> handing_on(FileId file, std::string_view name) const;

 private:
  struct Slot {
    std::once_flag once;
    std::vector<Use> by_bound;
    std::vector<Use> by_exported;
  };

  const Slot& slot(FileId file) const;

  const FileTable& files_;
  std::unique_ptr<Slot[]> slots_;
};

}  // namespace kestrix::index
