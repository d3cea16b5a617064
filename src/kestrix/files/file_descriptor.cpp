#include "kestrix/files/file_descriptor.h"

#include <unistd.h>

#include <cerrno>

#include "kestrix/files/uninterrupted.h"

namespace kestrix::index {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    reset();
    fd_ = other.release();
  }
  return *this;
}

void FileDescriptor::reset() {
  const int before = errno;
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  errno = before;
}

bool read_up_to(const FileDescriptor& file, std::size_t size, std::string& bytes) {
  std::size_t filled = bytes.size();
  bytes.resize(size);
  while (filled < size) {
    const ssize_t count =
        uninterrupted([&] { return ::read(file.get(), bytes.data() + filled, size - filled); });
    if (count < 0) return false;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  bytes.resize(filled);
  return true;
}

}  // namespace kestrix::index
