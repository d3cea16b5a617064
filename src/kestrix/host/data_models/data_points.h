#pragma once

#include <string_view>
#include <unordered_map>

#include "kestrix/text/seeded_hash.h"

namespace kestrix {

/// How much speaks for each file that belongs among those that define the data, by path. The others
/// have no entry.
using DataPoints = std::unordered_map<std::string_view, double, SeededHash>;

/// While it lives, `data_model_files` ranks by the points, on the thread that made it. The rule's
/// signature has room for texts alone.
class DataPointsScope {
 public:
  explicit DataPointsScope(const DataPoints& points);
  DataPointsScope(const DataPointsScope&) = delete;
  DataPointsScope& operator=(const DataPointsScope&) = delete;
  ~DataPointsScope();

  /// The points that are in force on this thread; null without any.
  static const DataPoints* current();

 private:
  const DataPoints* before_;
};

}  // namespace kestrix
