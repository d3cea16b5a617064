#pragma once

#include <cstddef>
#include <string>
#include <utility>

namespace kestrix::index {

/// Owns an open file descriptor, or none (-1).
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { reset(); }

  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }
  /// Closes it; errno stays what it was.
  void reset();
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

/// Reads on from where the descriptor stands, until `bytes` holds `size` or the file ends. False on
/// failure; errno says why.
bool read_up_to(const FileDescriptor& file, std::size_t size, std::string& bytes);

}  // namespace kestrix::index
