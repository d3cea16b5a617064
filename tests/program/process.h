#pragma once

#include <chrono>
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
  long peak_kib = 0;  ///< the most memory that it held at a time
};

/// The real program, with its working directory and its cache in a fresh directory.
class ProgramUnderTest {
 public:
  const FreshDirectory& directory() const { return directory_; }
  const std::filesystem::path& path() const { return directory_.path(); }

  Ended run(const std::vector<std::string>& arguments) const;
  /// The same with standard output open on an existing file descriptor.
  Ended run_into(int out, const std::vector<std::string>& arguments) const;
  /// Starts several at once and waits for all.
  std::vector<Ended> run_together(const std::vector<std::vector<std::string>>& runs) const;
  /// Starts it, sends it the signal after a moment, and waits.
  Ended run_and_signal(int signal, const std::vector<std::string>& arguments,
                       std::chrono::milliseconds moment = std::chrono::milliseconds(30)) const;

  std::map<std::string, std::string> environment{{"PATH", "/usr/bin:/bin"}};
  /// Commands of a shell that run before the program in its process: limits, a trap.
  std::string before;

 private:
  pid_t start(int out, const std::vector<std::string>& arguments, int number = 0) const;
  Ended finish(pid_t process, int number = 0) const;
  std::filesystem::path output(const char* stream, int number) const;

  FreshDirectory directory_;
  FreshDirectory outputs_;
};

}  // namespace kestrix::program
