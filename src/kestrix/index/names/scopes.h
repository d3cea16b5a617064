#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "kestrix/index/tables/indexed_files.h"
#include "kestrix/languages/language.h"

namespace kestrix::index {

/// What the imports of each file lead to, resolved when one first asks. Safe to use from several
/// threads; references that it hands out live as long as it does.
class Scopes {
 public:
  explicit Scopes(const IndexedFiles& files);

  /// Whether a resolver reads the file's language.
  bool covers(FileId file) const;
  const Resolution& of(FileId file) const;
  /// The bindings of a file by their local names; of several for one name the first one counts.
  const std::vector<Binding>& bindings(FileId file) const;

  /// The files whose names a file hands on, all of them as "export *" does.
  struct Barrel {
    std::vector<FileId> files{};  ///< ascending; not the file itself
    std::vector<FileId> named{};  ///< of those some that hand on single names, too; ascending
  };
  const Barrel& barrel(FileId file) const;

 private:
  struct Slot {
    std::once_flag once;
    Resolution resolution;
    std::once_flag barrel_once;
    Barrel barrel;
  };
  struct LazyResolver {
    std::once_flag once;
    std::unique_ptr<Resolver> resolver;
  };

  const Resolver& resolver_of(FileId file) const;
  Barrel gather_barrel(FileId file) const;

  const IndexedFiles& files_;
  std::unique_ptr<Slot[]> slots_;
  mutable std::map<ResolverFactory, LazyResolver> resolvers_;
};

}  // namespace kestrix::index
