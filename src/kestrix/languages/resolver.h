#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/facts/facts.h"

namespace kestrix::index {

/// A file's place in the path table: paths ascend by bytes, so ids order files as their paths do.
using FileId = std::uint32_t;

/// The indexed files as resolvers see them. Frozen while imports are resolved; safe to read from
/// several threads.
class FileTable {
 public:
  virtual ~FileTable() = default;

  virtual std::size_t size() const = 0;
  virtual std::string_view path(FileId id) const = 0;
  virtual std::optional<FileId> find(std::string_view path) const = 0;
  /// Whether a file that is no text (a picture) stands at the path; it is not in the table.
  virtual bool has_binary(std::string_view /*path*/) const { return false; }
  /// Facts of a parsed file, without its symbols; empty facts for a file that was only recorded.
  virtual const FileFacts& facts(FileId id) const = 0;
  /// Name of the file's language as in the language table, "" when it has none.
  virtual std::string_view language(FileId id) const = 0;
  /// Text of an indexed file (a tsconfig.json, a go.mod …), "" when it cannot be read. Never
  /// reaches outside the repository.
  virtual std::string read(FileId id) const = 0;
};

/// One file's dependency on another, found in its facts.
struct Dependency {
  FileId target;
  double weight;  ///< 1 for the import plus the uses of what it names

  friend bool operator==(const Dependency&, const Dependency&) = default;
};

/// The name under which a file hands on what it is as a whole ("module.exports = …").
inline constexpr std::string_view kSoleExport = "=";

/// What a name of a file stands for, because an import, an include or its package says so. Views
/// live as long as the resolver and the table.
struct Binding {
  std::string_view local;  ///< the name here, "a.b" for a module's; "*": all of the target's
  FileId target = 0;
  std::string_view name{};      ///< what the target calls it; "": the file itself, as a module
  std::string_view exported{};  ///< the name by which this file hands it on, "*" for all; "" for no

  friend bool operator==(const Binding&, const Binding&) = default;
};

struct Resolution {
  std::vector<Dependency> dependencies;  ///< any order, a target may repeat: weights are summed
  std::vector<Binding> bindings;         ///< any order; of several for one name the first counts
  std::uint32_t unresolved = 0;          ///< imports that looked local and led nowhere
  bool limited = false;                  ///< something was left out, for it would take too much
};

/// Turns the imports of one file into files. Built once for each refresh from the whole table
/// (roots, package maps, project files), then only read, from several threads.
class Resolver {
 public:
  virtual ~Resolver() = default;
  virtual Resolution resolve(FileId file) const = 0;
};

using ResolverFactory = std::unique_ptr<Resolver> (*)(const FileTable&);

}  // namespace kestrix::index
