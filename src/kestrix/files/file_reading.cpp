#include "kestrix/files/file_reading.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "kestrix/files/shortage.h"
#include "kestrix/files/uninterrupted.h"
#include "kestrix/text/decoding.h"

namespace kestrix::index {
namespace {

constexpr int kReading = O_RDONLY | O_NONBLOCK | O_NOCTTY;

ReadStatus status_of(int error) {
  const bool gone = error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENXIO;
  return gone ? ReadStatus::kVanished : ReadStatus::kUnreadable;
}

FileBytes failed(ReadStatus status) {
  FileBytes nothing;
  nothing.status = status;
  return nothing;
}

FileBytes unreadable(std::string_view path) {
  check_shortage(path, errno);
  return failed(ReadStatus::kUnreadable);
}

struct ReadPlan {
  std::size_t limit;
  std::size_t head;  // what is read of a file that is larger
  bool stop_at_binary = false;
};

FileBytes read_descriptor(std::string_view path, const FileDescriptor& file, ReadPlan plan) {
  if (!file) return failed(status_of(errno));
  struct stat status {};
  const auto look = [&](struct stat& to) {
    return uninterrupted([&] { return ::fstat(file.get(), &to); }) == 0;
  };
  if (!look(status)) return unreadable(path);
  if (!S_ISREG(status.st_mode)) return failed(ReadStatus::kVanished);
  FileBytes result;
  result.stamp = stamp_of(status);
  const auto size = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
  result.truncated = size > plan.limit;
  const std::size_t limit = result.truncated ? plan.head : plan.limit;
  // One byte more than the file should hold, so that its growing shows.
  const std::size_t all = std::min(size, limit) + 1;
  bool good = read_up_to(file, std::min(all, kBinaryWindow), result.bytes);
  const bool stop = plan.stop_at_binary && is_binary(result.bytes);
  if (good && !stop && result.bytes.size() < all) good = read_up_to(file, all, result.bytes);
  if (!good) return unreadable(path);
  if (result.bytes.size() > limit) result.bytes.resize(limit);
  struct stat after {};
  result.changed = !look(after) || stamp_of(after) != result.stamp;
  return result;
}

}  // namespace

FileBytes read_file(const RootDirectory& root, std::string_view path, std::size_t limit) {
  return read_descriptor(path, root.open(path, kReading), {limit, limit});
}

FileBytes read_source(const RootDirectory& root, std::string_view path, std::size_t head) {
  return read_descriptor(path, root.open(path, kReading),
                         {kMaxParsedBytes, std::max(head, kBinaryWindow), true});
}

FileBytes read_users_file(const std::filesystem::path& path, std::size_t limit) {
  const FileDescriptor file(::open(path.c_str(), kReading | O_CLOEXEC));
  if (!file) check_shortage(path.native(), errno);
  return read_descriptor(path.native(), file, {limit, limit});
}

std::string whole_text(FileBytes content) {
  return content.truncated ? std::string() : std::move(content.bytes);
}

}  // namespace kestrix::index
