#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "kestrix/definitions/evidence.h"
#include "kestrix/facts/data_signals.h"

namespace kestrix {

/// How much of a text is looked at, in characters, and how many bytes of a file that takes at most.
inline constexpr std::size_t kMostScannedChars = 400'000;
inline constexpr std::size_t kMostScannedBytes = 4 * kMostScannedChars + 3;

/// The first `kMostScannedChars` characters of a text in UTF-8.
std::string_view scanned_part(std::string_view text);

/// Finds the definitions of data in texts of one language. Usable from several threads.
///
/// One pass over a text finds the start of every kind of evidence; what was found is then looked at
/// more closely, in place.
class DefinitionScan {
 public:
  /// `language` must outlive the object. What it says is compiled when a first text comes: few
  /// repositories need every language, and compiling one takes longer than reading many files.
  explicit DefinitionScan(const DataLanguage& language);
  DefinitionScan(const DefinitionScan&) = delete;
  DefinitionScan& operator=(const DefinitionScan&) = delete;
  ~DefinitionScan();

  const DataLanguage& language() const { return language_; }

  /// What the scanned part of `text` defines: DDL in every language,
  /// and the data classes, mapped classes or schema definitions of this one. Linear in the text.
  /// Whether a program made the text is left open.
  DataSignals signals(std::string_view text) const;

 private:
  struct State;

  const DataLanguage& language_;
  std::unique_ptr<State> state_;
};

}  // namespace kestrix
