#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/host/errors/error_signals.h"
#include "kestrix/host/wiki_generator.h"

namespace kestrix {

/// The symbols of a repository as the recipe of the errors page sees them: of the exception classes
/// those that the code knows as errors, whatever they are called.
class ErrorSymbols {
 public:
  ErrorSymbols(const index::RepositoryIndex& index, const ErrorEvidence& evidence);

  SymbolSearch search_symbols(std::span<const std::string_view> patterns,
                              SymbolSearchOptions options) const;
  std::unordered_map<SymbolId, std::string> get_file_paths_batch(
      std::span<const Symbol> symbols) const {
    return index_.get_file_paths_batch(symbols);
  }

 private:
  const index::RepositoryIndex& index_;
  std::vector<SymbolId> ids_;
};

/// The generator as that recipe sees it: of the files that define errors, the most central ones.
class ErrorHost {
 public:
  using Path = std::string;
  using PathSet = kestrix::PathSet;

  ErrorHost(const WikiGenerator& generator, const ErrorEvidence& evidence);

  const ErrorSymbols& repository() const { return symbols_; }
  std::vector<std::string> _planner_paths() const { return paths_; }

 private:
  ErrorSymbols symbols_;
  std::vector<std::string> paths_;
};

/// The places of the error types that the page's rule is given, by production file.
std::map<std::string, std::vector<Place>, std::less<>> error_places(const WikiGenerator& generator,
                                                                    const ErrorEvidence& evidence);

}  // namespace kestrix
