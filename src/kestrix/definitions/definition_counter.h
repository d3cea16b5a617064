#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/definitions/evidence.h"
#include "kestrix/definitions/source_text.h"
#include "kestrix/facts/data_signals.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {

/// What a Python class makes of the classes that have it as a base.
enum class ClassSort { kPlain, kRecord, kValidated, kMapped };

/// Looks at each place that a scan of one text found and counts what it really is. Places come in
/// ascending order. The text outlives the counter.
class DefinitionCounter {
 public:
  DefinitionCounter(std::string_view text, DataSyntax syntax)
      : text_(text), syntax_(syntax), block_bytes_left_(kBlockBytes + 4 * text.size()) {}

  void add(EvidenceKind kind, Stretch place);

  DataSignals signals() const;

 private:
  // Blocks may lie within blocks: what is read of them all stays linear in the text.
  static constexpr std::size_t kBlockBytes = std::size_t{64} << 10;

  std::string_view block_behind(Stretch head);
  bool uses_mongoose();
  void add_ddl(Stretch place);
  void add_python_class(Stretch place);
  void add_mapping();
  void add_fields(Stretch place);
  void add_tagged_struct(Stretch place);
  void add_derive(Stretch place);

  bool is_quoted_code(std::size_t at);
  bool is_documentation(std::size_t at);
  const TripleQuoted* string_around(std::size_t at);
  ClassSort sort_of_base(std::string_view base) const;

  std::string_view text_;
  DataSyntax syntax_;
  DataSignals signals_;
  bool dialect_ = false;         ///< a document said that it is a schema
  bool class_is_mapped_ = true;  ///< the latest class of the text counts as an entity already
  std::size_t block_end_ = 0;    ///< of the latest block that was looked into
  std::unordered_map<std::string_view, ClassSort, SeededHash> classes_;  ///< of the text, by name
  std::optional<std::vector<TripleQuoted>> strings_;
  std::size_t next_string_ = 0;
  TemplateLiterals literals_{text_};
  CommentLines comments_{text_};
  std::optional<bool> uses_mongoose_;
  std::size_t block_bytes_left_;  ///< how much may still be looked into for single definitions
};

}  // namespace kestrix
