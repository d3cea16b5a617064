#include "kestrix/git/git_index.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kestrix::index {
namespace {

constexpr std::string_view kSignature = "DIRC";
constexpr std::size_t kHeaderBytes = 12;
constexpr std::size_t kStatBytes = 40;
constexpr std::size_t kModeOffset = 24;
constexpr std::uint32_t kKindMask = 0170000;
constexpr std::uint32_t kSubmoduleKind = 0160000;
constexpr std::uint32_t kDirectoryKind = 0040000;
constexpr std::uint32_t kExtended = 0x4000;
// Version 4 lets each path repeat the one before it. Real paths stay below the size of the index;
// made-up ones could take its square.
constexpr std::size_t kMostExpansion = 4;

struct Damaged {};

std::uint32_t number_at(std::string_view bytes, std::size_t at, std::size_t size) {
  if (at + size > bytes.size()) throw Damaged{};
  std::uint32_t number = 0;
  for (const char byte : bytes.substr(at, size)) {
    number = number << 8U | static_cast<unsigned char>(byte);
  }
  return number;
}

class IndexReader {
 public:
  IndexReader(std::string_view content, std::string_view prefix, std::size_t id_bytes)
      : content_(content), prefix_(prefix), id_bytes_(id_bytes) {}

  GitIndexPaths read() {
    version_ = number_at(content_, 4, 4);
    if (!content_.starts_with(kSignature) || version_ < 2 || version_ > 4) throw Damaged{};
    at_ = kHeaderBytes;
    const auto count = number_at(content_, 8, 4);
    for (std::uint32_t entry = 0; entry < count; ++entry) read_entry();
    read_extensions();
    for (auto* paths : {&paths_.files, &paths_.submodules}) {
      if (!std::ranges::is_sorted(*paths)) throw Damaged{};
    }
    return std::move(paths_);
  }

 private:
  void read_entry() {
    const std::size_t begin = at_;
    const std::uint32_t kind = number_at(content_, at_ + kModeOffset, 4) & kKindMask;
    at_ += kStatBytes + id_bytes_;
    const std::uint32_t flags = number_at(content_, at_, 2);
    at_ += (flags & kExtended) != 0 ? 4 : 2;
    read_path();
    // Up to version 3 entries are filled up with NULs to a multiple of eight bytes.
    if (version_ < 4) at_ = begin + (at_ - 1 - begin) / 8 * 8 + 8;
    // A directory stands for files that a sparse checkout leaves out.
    if (kind != kDirectoryKind) take(kind == kSubmoduleKind ? paths_.submodules : paths_.files);
  }

  // Version 4 writes how much of the last path to take off, and what to put on.
  void read_path() {
    if (version_ < 4)
      path_.clear();
    else
      path_.resize(path_.size() - std::min(read_offset(), path_.size()));
    const auto end = content_.find('\0', std::min(at_, content_.size()));
    if (end == content_.npos) throw Damaged{};
    path_.append(content_.substr(at_, end - at_));
    at_ = end + 1;
    path_bytes_ += path_.size();
    if (path_bytes_ > kMostExpansion * content_.size()) throw Damaged{};
  }

  std::size_t read_offset() {
    std::size_t offset = 0;
    for (int bytes = 0; bytes < 5; ++bytes) {
      const auto byte = number_at(content_, at_++, 1);
      offset = (bytes == 0 ? 0 : offset + 1) << 7U | (byte & 0x7FU);
      if (byte < 0x80) return offset;
    }
    throw Damaged{};
  }

  void take(std::vector<std::string>& paths) const {
    if (!path_.starts_with(prefix_)) return;
    const auto path = std::string_view(path_).substr(prefix_.size());
    if (paths.empty() || paths.back() != path) paths.emplace_back(path);
  }

  // An extension that begins with a small letter must be understood: "sdir" is (directories of a
  // sparse checkout), "link" is the other half of a split index.
  void read_extensions() {
    while (at_ + 8 + id_bytes_ <= content_.size()) {
      const std::string_view name = content_.substr(at_, 4);
      if (name.front() >= 'a' && name.front() <= 'z' && name != "sdir") throw Damaged{};
      at_ += 8 + std::size_t{number_at(content_, at_ + 4, 4)};
    }
    if (at_ + id_bytes_ != content_.size()) throw Damaged{};
  }

  std::string_view content_;
  std::string_view prefix_;
  std::size_t id_bytes_;
  std::uint32_t version_ = 0;
  std::size_t at_ = 0;
  std::string path_;
  std::size_t path_bytes_ = 0;  // of all paths so far
  GitIndexPaths paths_;
};

}  // namespace

std::optional<GitIndexPaths> read_git_index(std::string_view content, std::string_view prefix,
                                            std::size_t id_bytes) {
  try {
    return IndexReader(content, prefix, id_bytes).read();
  } catch (const Damaged&) {
    return std::nullopt;
  }
}

}  // namespace kestrix::index
