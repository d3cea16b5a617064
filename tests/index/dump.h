#pragma once

#include <fmt/format.h>

#include <string>

#include "kestrix/index/index.h"

namespace kestrix::index {

/// All that an index holds, as text.
inline std::string dump(const RepositoryIndex& index) {
  std::string text;
  for (const IndexedFile& file : index.files()) {
    text += fmt::format("file {} {} {} {} {}\n", file.path, file.language, file.document,
                        file.generated, file.roles.bits());
  }
  for (const IndexedSymbol& symbol : index.symbols()) {
    text += fmt::format("symbol {} {} {} {}:{}\n", to_string(symbol.kind), symbol.name,
                        symbol.signature, index.files()[symbol.file].path, symbol.line);
  }
  for (const IndexedEdge& edge : index.edges()) {
    text += fmt::format("edge {} {} {} {}\n", edge.source, edge.target, edge.weight,
                        to_string(edge.evidence));
  }
  for (FileId file = 0; file < index.files().size(); ++file) {
    for (const DeclarationView& as : index.declarations(file)) {
      text += fmt::format("declaration {} {} {}:{}-{} in {} {} {} {} {} {} {} {}\n",
                          to_string(as.kind), as.name, file, as.line, as.last_line, as.container,
                          as.exported, as.is_abstract, static_cast<int>(as.shape), as.size,
                          as.fields, as.methods, as.abstract_methods);
    }
  }
  for (const IndexedReference& to : index.references()) {
    text += fmt::format("reference {}:{} in {} {} {} {} {} {}\n", to.source, to.line, to.within,
                        to_string(to.role), to.target, to.declaration, index.name_of(to), to.count);
  }
  const Statistics statistics = index.statistics();
  for (const auto& [language, counts] : statistics.languages) {
    text += fmt::format("unresolved {} {}\n", language, counts.unresolved);
  }
  for (const auto& [reason, count] : statistics.skipped)
    text += fmt::format("{}: {}\n", reason, count);
  return text;
}

}  // namespace kestrix::index
