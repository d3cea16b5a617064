#include "kestrix/host/repository_root.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "kestrix/files/file_reading.h"
#include "kestrix/text/decoding.h"

namespace kestrix {
namespace {

constexpr std::size_t kLongestCharacter = 4;
constexpr std::size_t kLongestMark = 3;

std::size_t bytes_for(std::size_t max_chars) {
  const auto most = (kNoCharLimit - kLongestMark) / kLongestCharacter;
  return std::max(std::min(max_chars, most) * kLongestCharacter + kLongestMark, kBinaryWindow);
}

}  // namespace

RepositoryRoot::RepositoryRoot(index::RootDirectory directory)
    : RepoRoot(directory.path()), directory_(std::move(directory)) {}

Text RepositoryRoot::text(const std::string& below, ReadTextOptions options) const {
  return Text([this, below, options] { return read(below, options.max_chars); });
}

std::string RepositoryRoot::read(const std::string& below, std::size_t max_chars) const {
  auto content = index::read_file(directory_, below, bytes_for(max_chars));
  return decode_text(std::move(content.bytes), max_chars);
}

}  // namespace kestrix
