#pragma once

#include <vector>

#include "kestrix/index/names/method_sets.h"
#include "kestrix/index/names/scopes.h"
#include "kestrix/index/names/string_resolver.h"
#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/index/tables/indexed_files.h"
#include "kestrix/store/reference_codec.h"

namespace kestrix::index {

/// Makes references of the mentions of files. Safe to use from several threads.
class ReferenceBuilder {
 public:
  ReferenceBuilder(const IndexedFiles& files, const Scopes& scopes, const DeclarationTable& table)
      : files_(files),
        scopes_(scopes),
        table_(table),
        strings_(files, table),
        method_sets_(files, table) {}

  struct Use {
    FileId target;
    std::uint32_t count;
    bool string;  ///< only strings name it
  };
  struct Built {
    std::vector<StoredReference> references;
    std::vector<Use> uses;  ///< of other files, in no order
    bool limited = false;   ///< names were left out, for they would take too much
  };

  Built build(FileId file) const;

 private:
  const IndexedFiles& files_;
  const Scopes& scopes_;
  const DeclarationTable& table_;
  void add_satisfied(FileId file, Built& built) const;

  StringResolver strings_;
  MethodSets method_sets_;
};

}  // namespace kestrix::index
