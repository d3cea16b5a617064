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
constexpr std::uint32_t kLinkKind = 0120000;
constexpr std::uint32_t kExtended = 0x4000;
constexpr std::uint32_t kStage = 0x3000;
// Of the further flags.
constexpr std::uint32_t kSkipWorkTree = 0x4000;
constexpr std::uint32_t kIntentToAdd = 0x2000;
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
  IndexReader(std::string_view content, std::string_view prefix, std::size_t id_bytes,
              bool with_states)
      : content_(content), prefix_(prefix), id_bytes_(id_bytes), with_states_(with_states) {}

  GitIndexPaths read() {
    version_ = number_at(content_, 4, 4);
    if (!content_.starts_with(kSignature) || version_ < 2 || version_ > 4) throw Damaged{};
    at_ = kHeaderBytes;
    const auto count = number_at(content_, 8, 4);
    for (std::uint32_t entry = 0; entry < count; ++entry) read_entry();
    read_extensions();
    for (auto* paths : {&paths_.files, &paths_.submodules, &paths_.left_out}) {
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
    const bool taken = take(list_of(kind));
    const bool is_file = kind != kSubmoduleKind && kind != kDirectoryKind;
    if (with_states_ && taken && is_file) paths_.states.push_back(state_at(begin));
  }

  // A directory stands for files that a sparse checkout leaves out.
  std::vector<std::string>& list_of(std::uint32_t kind) {
    if (kind == kDirectoryKind) return paths_.left_out;
    return kind == kSubmoduleKind ? paths_.submodules : paths_.files;
  }

  TrackedState state_at(std::size_t begin) const {
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    const auto number = [&](std::size_t offset) { return number_at(content_, begin + offset, 4); };
    const std::uint32_t flags = number_at(content_, begin + kStatBytes + id_bytes_, 2);
    const bool extended = (flags & kExtended) != 0;
    const std::uint32_t further =
        extended ? number_at(content_, begin + kStatBytes + id_bytes_ + 2, 2) : 0;
    TrackedState state{.modified_ns = number(8) * kNanoseconds + number(12),
                       .changed_ns = number(0) * kNanoseconds + number(4),
                       .size = number(36),
                       .is_link = (number(kModeOffset) & kKindMask) == kLinkKind,
                       .left_out = (further & kSkipWorkTree) != 0,
                       .is_unmerged = (flags & kStage) != 0 || (further & kIntentToAdd) != 0};
    std::copy_n(content_.begin() + static_cast<std::ptrdiff_t>(begin + kStatBytes), state.id.size(),
                state.id.begin());
    return state;
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

  bool take(std::vector<std::string>& paths) const {
    if (!path_.starts_with(prefix_)) return false;
    const auto path = std::string_view(path_).substr(prefix_.size());
    if (!paths.empty() && paths.back() == path) return false;
    paths.emplace_back(path);
    return true;
  }

  // An extension that begins with a small letter must be understood: "sdir" is (directories of a
  // sparse checkout), "link" is the other half of a split index.
  void read_extensions() {
    while (at_ + 8 + id_bytes_ <= content_.size()) {
      const std::string_view name = content_.substr(at_, 4);
      if (name.front() >= 'a' && name.front() <= 'z' && name != "sdir") throw Damaged{};
      // The tree's own count of entries comes first; a change leaves -1 there.
      if (name == "TREE")
        paths_.is_a_tree = content_.substr(at_ + 8, 1) == std::string_view("\0", 1) &&
                           content_.substr(at_ + 9, 1) != "-";
      at_ += 8 + std::size_t{number_at(content_, at_ + 4, 4)};
    }
    if (at_ + id_bytes_ != content_.size()) throw Damaged{};
  }

  std::string_view content_;
  std::string_view prefix_;
  std::size_t id_bytes_;
  bool with_states_;
  std::uint32_t version_ = 0;
  std::size_t at_ = 0;
  std::string path_;
  std::size_t path_bytes_ = 0;  // of all paths so far
  GitIndexPaths paths_;
};

}  // namespace

std::optional<GitIndexPaths> read_git_index(std::string_view content, std::string_view prefix,
                                            std::size_t id_bytes, bool with_states) {
  try {
    return IndexReader(content, prefix, id_bytes, with_states).read();
  } catch (const Damaged&) {
    return std::nullopt;
  }
}

}  // namespace kestrix::index
