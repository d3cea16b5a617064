#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/facts/data_signals.h"
#include "kestrix/host/data_models/file_origin.h"
#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {

/// Whether the signals make a file one that defines data: DDL, a mapped class or a schema alone do,
/// data classes in twos.
bool defines_data(const DataSignals& signals);

/// How strong the evidence is: stored definitions weigh more than exchanged ones, and those more
/// than plain data classes.
std::uint64_t strength(const DataSignals& signals);

struct DataFile {
  DataOrigin origin;
  double points;  ///< 0 where only the text speaks
  DataSignals signals;
  std::string path;
};

/// Keeps the best of a stream of files: by origin, then by points, then by strength, then by mapped
/// members, then by path. Holds at most twice as many as it keeps.
class DataRanking {
 public:
  explicit DataRanking(std::size_t kept) : kept_(kept) {}

  /// Adds a file; one that defines no data is passed over.
  void add(std::string_view path, const DataSignals& signals);
  /// Adds one for which more speaks than its own text.
  void add(std::string_view path, const DataSignals& signals, double points);

  /// Whether no file of a farther origin can be among the best any more.
  bool is_settled(DataOrigin origin) const;

  /// The best files, best first.
  std::vector<DataFile> best() const;
  /// How many of the files that were added define data.
  std::uint64_t found() const { return found_; }

 private:
  using Entry = DataFile;

  static bool before(const Entry& a, const Entry& b);

  std::size_t kept_;
  std::uint64_t found_ = 0;
  std::vector<Entry> entries_;
};

/// What `data_model_files` answers, with the signals that decided. Files of a farther origin are
/// not read once the nearer ones fill the answer. Where points are in force and any file has some,
/// those files alone are ranked, by their points.
DataRanking rank_data_models(const PathTexts& texts);

}  // namespace kestrix
