#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "kestrix/workers/cluster/data_languages.h"
#include "kestrix/workers/cluster/data_signals.h"
#include "kestrix/workers/cluster/source_text.h"

namespace kestrix {

/// Looks at each place that a scan of one text found and counts what it really is. Places come in
/// ascending order. The text outlives the counter.
class DefinitionCounter {
 public:
  DefinitionCounter(std::string_view text, DataSyntax syntax) : text_(text), syntax_(syntax) {}

  void add(EvidenceKind kind, Stretch place);

  DataSignals signals() const;

 private:
  void add_ddl(Stretch place);
  void add_python_class(Stretch place);
  void add_column();
  void add_fields(Stretch place);
  void add_tagged_struct(Stretch place);
  void add_derive(Stretch place);

  std::string_view text_at(Stretch place) const;
  /// What stands between the parenthesis that ends `place` and the one that closes it; none when
  /// that is not near.
  std::optional<std::string_view> list_behind(Stretch place) const;
  const TripleQuoted* string_around(std::size_t at);

  std::string_view text_;
  DataSyntax syntax_;
  DataSignals signals_;
  bool dialect_ = false;         ///< a document said that it is a schema
  bool class_is_mapped_ = true;  ///< the latest class of the text counts as an entity already
  std::size_t block_end_ = 0;    ///< of the latest block that was looked into
  std::optional<std::vector<TripleQuoted>> strings_;
  std::size_t next_string_ = 0;
};

}  // namespace kestrix
