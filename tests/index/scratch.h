#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kestrix::index {

/// A directory of its own for one test, gone with it.
class Scratch {
 public:
  Scratch() {
    std::string name = (std::filesystem::temp_directory_path() / "kestrix-XXXXXX").native();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = std::filesystem::canonical(name);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(std::string_view relative) const { return path_ / relative; }

  void write(std::string_view relative, std::string_view text = "") const {
    const auto path = path_ / relative;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }

  std::string read(std::string_view relative) const {
    std::ifstream file(path_ / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void remove(std::string_view relative) const { std::filesystem::remove_all(path_ / relative); }

  /// Runs a shell command in the directory, with no settings of the user's; its output.
  std::string run(const std::string& command) const {
    const std::string whole = "cd '" + path_.native() + "' && export HOME='" + path_.native() +
                              "/.home' GIT_CONFIG_NOSYSTEM=1 && unset XDG_CONFIG_HOME && " + "{ " +
                              command + "\n} > .out 2> .err";
    if (std::system(whole.c_str()) != 0) ADD_FAILURE() << command << ": " << read(".err");
    std::string output = read(".out");
    remove(".out");
    remove(".err");
    return output;
  }

 private:
  std::filesystem::path path_;
};

/// Runs a body that must meet with the limits of permissions, as an unprivileged user where the
/// tests run as root. New files may be made in the scratch directory's repo/.
template <class Body>
void as_nobody(const Scratch& scratch, const Body& body) {
  std::filesystem::permissions(scratch.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(scratch / "repo", std::filesystem::perms(0777));
  const pid_t child = ::fork();
  if (child == 0) {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) ::_exit(2);
    try {
      body();
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
    ::_exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0) << "see above";
}

}  // namespace kestrix::index
