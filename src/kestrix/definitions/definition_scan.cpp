#include "kestrix/definitions/definition_scan.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "kestrix/definitions/ddl.h"
#include "kestrix/definitions/definition_counter.h"

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

EvidenceKind kind_of(const Matches& found, std::span<const Evidence> evidence) {
  if (found[1].data() != nullptr) return EvidenceKind::kDdl;
  std::size_t group = 2;
  while (found[group].data() == nullptr) ++group;
  return evidence[group - 2].kind;
}

}  // namespace

std::string_view scanned_part(std::string_view text) {
  if (text.size() <= kMostScannedChars) return text;
  std::size_t chars = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U;
    if (begins && ++chars > kMostScannedChars) return text.substr(0, at);
  }
  return text;
}

struct DefinitionScan::State {
  std::once_flag once;
  std::optional<RE2> pattern;
};

DefinitionScan::DefinitionScan(const DataLanguage& language)
    : language_(language), state_(std::make_unique<State>()) {
  if (language.evidence.size() > kMostEvidence) throw std::length_error("too much evidence");
}

DefinitionScan::~DefinitionScan() = default;

DataSignals DefinitionScan::signals(std::string_view text) const {
  std::call_once(state_->once,
                 [this] { state_->pattern.emplace(joined(language_.evidence), options()); });
  text = scanned_part(text);
  const re2::StringPiece input(text.data(), text.size());
  DefinitionCounter counter(text, language_.syntax);
  Matches found;
  const int groups = static_cast<int>(language_.evidence.size()) + 2;
  for (std::size_t at = 0;
       at <= text.size() &&
       state_->pattern->Match(input, at, text.size(), RE2::UNANCHORED, found.data(), groups);) {
    const auto begin = static_cast<std::size_t>(found[0].data() - text.data());
    counter.add(kind_of(found, language_.evidence), {begin, begin + found[0].size()});
    at = std::max(begin + found[0].size(), at + 1);
  }
  return counter.signals();
}

}  // namespace kestrix
