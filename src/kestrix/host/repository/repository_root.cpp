#include "kestrix/host/repository/repository_root.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "kestrix/definitions/definition_scan.h"
#include "kestrix/files/file_reading.h"
#include "kestrix/text/decoding.h"
#include "kestrix/workers/wiki/page_sources/constants.h"

namespace kestrix {
namespace {

constexpr std::size_t kLongestCharacter = 4;
constexpr std::size_t kLongestMark = 3;

std::size_t bytes_for(std::size_t max_chars) {
  const auto most = (kNoCharLimit - kLongestMark) / kLongestCharacter;
  return std::max(std::min(max_chars, most) * kLongestCharacter + kLongestMark, kBinaryWindow);
}

// Else the detector would be answered from the disk, and slowly.
static_assert(DETECTOR_READ_CHARS == kMostScannedChars);

}  // namespace

RepositoryRoot::RepositoryRoot(index::RootDirectory directory, const index::RepositoryIndex* index)
    : RepoRoot(directory.path()), directory_(std::move(directory)), index_(index) {}

Text RepositoryRoot::text(const std::string& below, ReadTextOptions options) const {
  const auto file = index_ == nullptr ? std::nullopt : index_->find(below);
  const bool is_known = file && options.max_chars == kMostScannedChars;
  return Text([this, below, options] { return read(below, options.max_chars); },
              is_known ? std::optional(index_->files()[*file].data) : std::nullopt);
}

std::string RepositoryRoot::read(const std::string& below, std::size_t max_chars) const {
  auto content = index::read_file(directory_, below, bytes_for(max_chars));
  return decode_text(std::move(content.bytes), max_chars);
}

}  // namespace kestrix
