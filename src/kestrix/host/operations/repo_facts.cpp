#include "kestrix/workers/wiki/repo_facts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "kestrix/text/decoding.h"

namespace kestrix {
namespace {

constexpr std::size_t kLongestCharacter = 4;
constexpr std::size_t kLongestMark = 3;

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }

  int get() const { return fd_; }

 private:
  int fd_;
};

// A link is not followed, and a pipe or device that took the file's place is neither waited for
// nor read.
Descriptor open_regular(const std::filesystem::path& path) {
  const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
  return Descriptor(::open(path.c_str(), flags));
}

std::size_t bytes_for(std::size_t max_chars) {
  const auto most = (kNoCharLimit - kLongestMark) / kLongestCharacter;
  return std::max(std::min(max_chars, most) * kLongestCharacter + kLongestMark, kBinaryWindow);
}

// Fills `out` to at most its size; a file that shrank gives less.
bool read_fully(int fd, std::string& out) {
  std::size_t filled = 0;
  while (filled < out.size()) {
    const auto got = ::read(fd, out.data() + filled, out.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  out.resize(filled);
  return true;
}

std::string read_bytes(const std::filesystem::path& path, std::size_t max_bytes) {
  const Descriptor file = open_regular(path);
  struct stat info {};
  if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
  std::string bytes(std::min(static_cast<std::size_t>(info.st_size), max_bytes), '\0');
  return read_fully(file.get(), bytes) ? bytes : std::string();
}

std::string read_chars(const std::filesystem::path& path, std::size_t max_chars) {
  return decode_text(read_bytes(path, bytes_for(max_chars)), max_chars);
}

}  // namespace

std::string _norm(std::string_view path) {
  std::string normal;
  normal.reserve(path.size());
  while (!path.empty()) {
    const auto slash = std::min(path.find('/'), path.size());
    const auto piece = path.substr(0, slash);
    path.remove_prefix(std::min(slash + 1, path.size()));
    if (piece.empty() || piece == ".") continue;
    if (!normal.empty()) normal += '/';
    normal.append(piece);
  }
  return normal;
}

Text _read_text(const std::filesystem::path& path, ReadTextOptions options) {
  return Text([path, options] { return read_chars(path, options.max_chars); });
}

}  // namespace kestrix
