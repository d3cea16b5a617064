#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/extending/contracts.h"

namespace kestrix {

/// What shows that one extends the product in a file: contracts, what lists their implementations
/// or takes them in, and what loads code by name.
ScoreSheet extension_sheet(const CodeEvidence& evidence, std::span<const Contract> contracts);

/// While it lives, `extension_files` ranks by these scores, too, on the thread that made it: files
/// with a score come first, the highest before others. The rule's signature has room for counts
/// alone.
class ExtensionRankingScope {
 public:
  using Scores = std::map<std::string, double, std::less<>>;

  explicit ExtensionRankingScope(const Scores& scores);
  ExtensionRankingScope(const ExtensionRankingScope&) = delete;
  ExtensionRankingScope& operator=(const ExtensionRankingScope&) = delete;
  ~ExtensionRankingScope();

  /// The scores in force on this thread; null without any.
  static const Scores* current();

 private:
  const Scores* before_;
};

}  // namespace kestrix
