#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kestrix/index/names/name_resolver.h"
#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/index/tables/indexed_files.h"

namespace kestrix::index {

/// Finds what whole strings name: a file by its path or the unambiguous end of one, a dotted module
/// with what it declares ("a.b.C", "a.b:attr", "A\B\C"), "controller#action", "Type@method", a type
/// whose name is the repository's only one; behind "::" ("::A::B") what is known to be a type's
/// name. What more than one thing answers names nothing. Immutable.
class StringResolver {
 public:
  StringResolver(const IndexedFiles& files, const DeclarationTable& table);

  /// `folder` is that of the file which holds the string.
  std::optional<NamedThing> resolve(std::string_view content, std::string_view folder) const;

 private:
  std::optional<FileId> find_path(std::string_view content, std::string_view folder) const;
  std::optional<NamedThing> find_dotted(std::string_view content) const;
  std::optional<NamedThing> find_method(std::string_view content) const;
  std::optional<NamedThing> find_class(std::string_view content) const;
  std::optional<NamedThing> find_action(std::string_view content) const;
  std::optional<NamedThing> find_named(std::string_view name, std::string_view folder) const;
  bool stands_in(DeclarationRef at, std::string_view space) const;
  std::optional<NamedThing> find_type(std::string_view content) const;
  std::optional<FileId> find_end(std::string_view end, bool stem) const;

  const IndexedFiles& files_;
  const DeclarationTable& table_;
  // By the hash of each end of a path ("b/c.py" of "a/b/c.py"), and of each without its extension.
  std::unordered_map<std::uint64_t, FileId> ends_;
  std::unordered_map<std::uint64_t, FileId> stems_;
};

}  // namespace kestrix::index
