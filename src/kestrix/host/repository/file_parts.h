#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/settings/steering.h"
#include "kestrix/index/index.h"
#include "kestrix/roles/role.h"

namespace kestrix {

/// What the files of a repository are to its pages: the roles that the index knows them by, unless
/// the settings in force give one.
///
/// Another project's files, generated ones and samples stand aside, so that they never come before
/// the product. But what most of a repository's code is, is its product: a collection of samples
/// shows its samples. Immutable; made in time linear in the files.
class FileParts {
 public:
  /// Both must outlive the object; `steering` may be null.
  FileParts(const index::RepositoryIndex& index, const Steering* steering);

  /// The roles but those that stand for the product here.
  Roles roles(index::FileId file) const { return roles_[file]; }

  /// Whether a user may name it as an entry point: a source that is no test.
  bool is_nameable(index::FileId file) const { return is_in(file, kNameable); }
  /// Whether pages about the product may be written from it.
  bool is_production(index::FileId file) const { return is_in(file, kProduction); }
  /// Whether it is a test that can show how the product is used: no data that tests read.
  bool is_test(index::FileId file) const { return is_in(file, kTests); }
  /// Whether it is the product itself, without its migrations, tools and archives.
  bool is_product(index::FileId file) const {
    return roles_[file].empty() && !index_.files()[file].document;
  }

  /// Why a file is none of the product, with its evidence: "vendored: below vendor/"; "" for one
  /// that is.
  std::string explain(index::FileId file) const;

 private:
  enum Part : unsigned char { kNameable = 1, kProduction = 2, kTests = 4 };

  static unsigned char parts_of(std::string_view path, Roles roles);
  bool is_in(index::FileId file, Part part) const { return (parts_[file] & part) != 0; }
  const index::RepositoryIndex& index_;
  const Steering* steering_;
  std::vector<Roles> roles_;
  std::vector<unsigned char> parts_;
};

}  // namespace kestrix
