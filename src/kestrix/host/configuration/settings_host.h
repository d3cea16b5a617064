#pragma once

#include <string>
#include <vector>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/wiki_generator.h"

namespace kestrix {

/// The generator as the recipe of the configuration page sees it: of the files that are named like
/// settings or lie in a folder for them, those that the code shows to be settings, the best ones.
class SettingsHost {
 public:
  using Path = std::string;
  using PathSet = kestrix::PathSet;

  SettingsHost(const WikiGenerator& generator, const ScoreSheet& sheet);

  std::vector<SourceFileRecord> _source_files() const { return records_; }

 private:
  std::vector<SourceFileRecord> records_;
};

}  // namespace kestrix
