#include "kestrix/host/data_models/data_classes.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kestrix/text/ascii.h"
#include "kestrix/host/data_models/data_languages.h"
#include "kestrix/host/data_models/ddl.h"
#include "kestrix/host/data_models/definition_counter.h"

namespace kestrix {
namespace {

using Matches = std::array<re2::StringPiece, kMostEvidence + 2>;

RE2::Options options() {
  RE2::Options options;
  options.set_encoding(RE2::Options::EncodingLatin1);
  options.set_log_errors(false);
  return options;
}

std::string joined(std::span<const Evidence> evidence) {
  std::string pattern = std::string("(?m)(") + kDdlStart + ")";
  for (const auto& e : evidence) pattern.append("|(").append(e.pattern).append(")");
  return pattern;
}

}  // namespace

/// One pass over a text finds the start of every kind of evidence; what was found is then looked at
/// more closely, in place.
class DataLanguage {
 public:
  explicit DataLanguage(const DataLanguageRow& row) : row_(row) {}

  const DataLanguageRow& row() const { return row_; }

  DataSignals count(std::string_view text) const {
    const re2::StringPiece input(text.data(), text.size());
    const RE2& pattern = compiled();
    DefinitionCounter counter(text, row_.syntax);
    Matches found;
    const int groups = static_cast<int>(row_.evidence.size()) + 2;
    for (std::size_t at = 0;
         pattern.Match(input, at, text.size(), RE2::UNANCHORED, found.data(), groups);) {
      const auto begin = static_cast<std::size_t>(found[0].data() - text.data());
      counter.add(kind_of(found), {begin, begin + found[0].size()});
      at = std::max(begin + found[0].size(), at + 1);
      if (at > text.size()) break;
    }
    return counter.signals();
  }

 private:
  EvidenceKind kind_of(const Matches& found) const {
    if (found[1].data() != nullptr) return EvidenceKind::kDdl;
    std::size_t group = 2;
    while (found[group].data() == nullptr) ++group;
    return row_.evidence[group - 2].kind;
  }

  // Few repositories need every language, and compiling one takes longer than reading many files.
  const RE2& compiled() const {
    std::call_once(once_, [this] { pattern_.emplace(joined(row_.evidence), options()); });
    return *pattern_;
  }

  const DataLanguageRow& row_;
  mutable std::once_flag once_;
  mutable std::optional<RE2> pattern_;
};

const DataLanguage* data_language_of(std::string_view path) {
  static const auto languages = [] {
    std::vector<std::unique_ptr<DataLanguage>> made;
    for (const auto& row : data_languages()) made.push_back(std::make_unique<DataLanguage>(row));
    return made;
  }();
  const auto name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return nullptr;
  const auto extension = name.substr(dot + 1);
  for (const auto& language : languages) {
    const auto& extensions = language->row().extensions;
    if (std::ranges::any_of(extensions,
                            [extension](auto e) { return ascii::equals(extension, e); })) {
      return language.get();
    }
  }
  return nullptr;
}

DataSignals count_definitions(const DataLanguage& language, std::string_view text) {
  return language.count(text);
}

}  // namespace kestrix
