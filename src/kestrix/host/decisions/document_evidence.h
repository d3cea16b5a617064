#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/facts/document_facts.h"
#include "kestrix/index/index.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {

/// What the index knows of one document. Views into the index; the lists ascend.
struct DocumentView {
  index::DocumentFacts facts;
  std::vector<std::string_view> sources;  ///< source files that it names, as it writes them
  std::vector<std::string_view> folders;  ///< folders of source files, likewise
  std::vector<std::string_view> types;
  std::vector<std::string_view> linked_from;  ///< documents
  std::vector<std::string_view> named_in;     ///< source files
  std::uint64_t content = 0;                  ///< equal for copies

  std::size_t names() const { return sources.size() + folders.size() + types.size(); }
};

/// What the documents of an index say and who points to them. Immutable; safe to use from several
/// threads.
class DocumentEvidence {
 public:
  /// Linear in what was noted of the documents, and in the files and symbols. `index` must outlive
  /// the object.
  explicit DocumentEvidence(const index::RepositoryIndex& index);

  DocumentEvidence(const DocumentEvidence&) = delete;
  DocumentEvidence& operator=(const DocumentEvidence&) = delete;

  /// Null for a path that is no document of the index, or one that was too large to be read.
  const DocumentView* of(std::string_view path) const;

  /// Whether another document, of a shorter or lesser path, has the very same text.
  bool is_copy(std::string_view path) const;

 private:
  std::unordered_map<std::string_view, DocumentView, SeededHash> documents_;
  std::unordered_map<std::uint64_t, std::string_view> originals_;  // by content
};

/// While it lives, `decision_docs` judges by the evidence, too, on the thread that made it. The
/// rule's signature has room for paths alone.
class DocumentEvidenceScope {
 public:
  explicit DocumentEvidenceScope(const DocumentEvidence& evidence);
  DocumentEvidenceScope(const DocumentEvidenceScope&) = delete;
  DocumentEvidenceScope& operator=(const DocumentEvidenceScope&) = delete;
  ~DocumentEvidenceScope();

  /// The evidence that is in force on this thread; null without any.
  static const DocumentEvidence* current();

 private:
  const DocumentEvidence* before_;
};

}  // namespace kestrix
