#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kestrix/files/root_directory.h"
#include "kestrix/store/store.h"

namespace kestrix::index {

/// One file to be looked into.
struct ScanTask {
  std::string path;
  std::optional<FileRow> known;  ///< what the index has of it, if anything
};

enum class ScanOutcome {
  kVanished,   ///< there is no such file any more
  kUnchanged,  ///< the content is that of `known`: only the stamp differs
  kRead,       ///< the row and the facts are new
};

struct ScannedFile {
  ScanOutcome outcome = ScanOutcome::kRead;
  FileRow row;         ///< with the id of `known`, or none
  EncodedFacts facts;  ///< of a row that is parsed
  std::string notes;   ///< encoded; "" for none
};

/// Reads, classifies and parses one file. May be called from several threads. What is wrong with
/// the file itself goes into the row's traits.
ScannedFile scan_file(const RootDirectory& root, const ScanTask& task);

}  // namespace kestrix::index
