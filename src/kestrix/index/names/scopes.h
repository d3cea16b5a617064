#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "kestrix/index/tables/indexed_files.h"
#include "kestrix/languages/language.h"

namespace kestrix::index {

/// Whether it makes all names of its target known, rather than those of a type in it.
bool is_wildcard(const Binding& binding);

class Scopes;

/// The files that one file reaches by wildcards, the nearest first, at its front the file itself.
class Reached {
 public:
  explicit Reached(std::size_t files) : known_(files) {}

  /// At most about so many; those who hand on what they know are followed.
  void close_over(const Scopes& scopes, FileId start, std::size_t most);
  bool contains(FileId file) const { return known_[file] && file != files_.front(); }
  const std::vector<FileId>& files() const { return files_; }
  /// Whether there are more.
  bool is_cut() const { return is_cut_; }

 private:
  void insert(FileId file) {
    if (!known_[file]) files_.push_back(file);
    known_[file] = true;
  }

  std::vector<bool> known_;
  std::vector<FileId> files_;
  bool is_cut_ = false;
};

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

  /// A file all of whose names another one knows, by a wildcard import or an include.
  struct Wildcard {
    FileId target;
    bool handed_on;  ///< those who know the file know the target, too
  };
  /// Each target once, in the order of the file.
  const std::vector<Wildcard>& wildcards(FileId file) const { return exports(file).wildcards; }
  /// Whether the file hands on single names.
  bool hands_on_names(FileId file) const { return exports(file).names; }
  /// What the file hands on under the name; null when nothing.
  const Binding* handed_on(FileId file, std::string_view name) const;

 private:
  // What bindings say to others, gathered once for all who ask.
  struct Exports {
    std::vector<Wildcard> wildcards;
    std::vector<FileId> all;              // of which it hands on all names
    std::vector<const Binding*> by_name;  // that are handed on
    bool names = false;
  };
  struct Slot {
    std::once_flag once;
    Resolution resolution;
    std::once_flag exports_once;
    Exports exports;
    std::once_flag barrel_once;
    Barrel barrel;
  };
  struct LazyResolver {
    std::once_flag once;
    std::unique_ptr<Resolver> resolver;
  };

  const Resolver& resolver_of(FileId file) const;
  const Exports& exports(FileId file) const;
  Exports gather_exports(FileId file) const;
  Barrel gather_barrel(FileId file) const;

  const IndexedFiles& files_;
  std::unique_ptr<Slot[]> slots_;
  mutable std::map<ResolverFactory, LazyResolver> resolvers_;
};

}  // namespace kestrix::index
