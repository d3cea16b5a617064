#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace kestrix::program {

/// A directory of its own for one test, gone with the object.
class FreshDirectory {
 public:
  FreshDirectory();
  FreshDirectory(const FreshDirectory&) = delete;
  FreshDirectory& operator=(const FreshDirectory&) = delete;
  ~FreshDirectory();

  const std::filesystem::path& path() const { return path_; }
  /// Writes a file below the directory, and the directories above it.
  void write(const std::filesystem::path& relative, const std::string& text) const;

 private:
  std::filesystem::path path_;
};

std::string read_file(const std::filesystem::path& path);

/// How the real program ended and what it wrote.
struct Ended {
  int code = 0;  ///< 128 and the signal's number when one ended it
  std::string out;
  std::string err;
};

/// The real program, with its working directory and its cache in a fresh directory.
class ProgramUnderTest {
 public:
  const FreshDirectory& directory() const { return directory_; }
  const std::filesystem::path& path() const { return directory_.path(); }

  Ended run(const std::vector<std::string>& arguments) const;
  /// The same with standard output open on an existing file descriptor.
  Ended run_into(int out, const std::vector<std::string>& arguments) const;
  /// Starts it, sends it the signal after a moment, and waits.
  Ended run_and_signal(int signal, const std::vector<std::string>& arguments) const;

  std::map<std::string, std::string> environment{{"PATH", "/usr/bin:/bin"}};

 private:
  pid_t start(int out, const std::vector<std::string>& arguments) const;
  Ended finish(pid_t process) const;

  FreshDirectory directory_;
  FreshDirectory outputs_;
};

}  // namespace kestrix::program
