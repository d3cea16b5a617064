#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/data_models/data_signals.h"

namespace kestrix {

/// Whether the signals make a file one that defines data: DDL, a mapped class or a schema alone do,
/// data classes in twos.
bool defines_data(const DataSignals& signals);

/// How strong the evidence is: stored definitions weigh more than exchanged ones, and those more
/// than plain data classes.
std::uint64_t strength(const DataSignals& signals);

/// Keeps the best of a stream of files: by origin, then by strength, then by mapped members, then
/// by path. Holds at most twice as many as it keeps.
class DataRanking {
 public:
  explicit DataRanking(std::size_t kept) : kept_(kept) {}

  /// Adds a file; one that defines no data is passed over.
  void add(std::string_view path, const DataSignals& signals);

  /// Whether no file of a farther origin can be among the best any more.
  bool is_settled(DataOrigin origin) const;

  /// The paths of the best files, best first.
  std::vector<std::string> best() const;

 private:
  struct Entry {
    DataSignals signals;
    std::string path;
  };

  static bool before(const Entry& a, const Entry& b);

  std::size_t kept_;
  std::vector<Entry> entries_;
};

}  // namespace kestrix
