#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/host/page_answer.h"

namespace kestrix {

/// One thing that shows that a file belongs on a page.
///
/// A row of the page's table of signals. What is counted is worth `weight` for the first and less
/// for each further one, so that many small things do not outdo a great one.
struct Signal {
  std::string_view kind;  ///< of its reason
  double weight;
  std::string_view one;  ///< "is thrown in {} file", "{}" being the count
  std::string_view many;
  /// Two repositories without anything in common in which it finds what a maintainer would name.
  std::string_view helped;
};

/// Adds up what the signals say of each file, and keeps why.
class ScoreSheet {
 public:
  explicit ScoreSheet(const CodeEvidence& evidence) : evidence_(evidence) {}

  /// `count` of what the signal counts, seen at `at`; nothing when it is 0. `detail` stands behind
  /// the signal's text.
  void add(index::FileId file, const Signal& signal, std::uint64_t count,
           std::vector<Place> at = {}, std::string detail = {});
  /// Makes a file's score smaller: it mirrors something, or serves something else.
  void scale(index::FileId file, double factor) { entries_[file].factor *= factor; }

  double score(index::FileId file) const;
  struct Scored {
    double points;
    index::FileId file;
  };
  /// All files that score, best first, then by path.
  std::vector<Scored> ranked() const;
  /// The reasons of a file, the strongest first.
  std::vector<Reason> reasons(index::FileId file) const;
  /// The product files that score the most, best first, none of `files`: at most `room`, none below
  /// `least`, none below `share` of the best score.
  std::vector<Pick> further(const std::vector<Pick>& files, std::size_t room, double least,
                            double share) const;

 private:
  struct Item {
    double points;
    Reason reason;
  };
  struct Entry {
    std::vector<Item> items;
    double factor = 1;
  };

  const CodeEvidence& evidence_;
  std::map<index::FileId, Entry> entries_;
};

/// Puts the reasons of the sheet before those that a file of the rule has already.
void add_reasons(const ScoreSheet& sheet, const CodeEvidence& evidence, std::vector<Pick>& files);

}  // namespace kestrix
