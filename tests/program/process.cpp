#include "tests/program/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace kestrix::program {
namespace {

void check(int failure, const char* what) {
  if (failure != 0) throw std::system_error(failure, std::generic_category(), what);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> all;
  all.reserve(texts.size() + 1);
  for (auto& text : texts) all.push_back(text.data());
  all.push_back(nullptr);
  return all;
}

class FileActions {
 public:
  FileActions() { check(posix_spawn_file_actions_init(&actions_), "init"); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

  void write_to(int fd, const std::filesystem::path& file) {
    const int flags = O_WRONLY | O_CREAT | O_TRUNC;
    check(posix_spawn_file_actions_addopen(&actions_, fd, file.c_str(), flags, 0600), "open");
  }
  void duplicate(int from, int to) {
    check(posix_spawn_file_actions_adddup2(&actions_, from, to), "dup2");
  }
  void change_directory(const std::filesystem::path& path) {
    check(posix_spawn_file_actions_addchdir_np(&actions_, path.c_str()), "chdir");
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

FreshDirectory::FreshDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "page-sources-XXXXXX").native();
  if (mkdtemp(name.data()) == nullptr) check(errno, "mkdtemp");
  path_ = std::filesystem::canonical(name);
}

FreshDirectory::~FreshDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void FreshDirectory::write(const std::filesystem::path& relative, const std::string& text) const {
  const auto file = path_ / relative;
  std::filesystem::create_directories(file.parent_path());
  if (!(std::ofstream(file, std::ios::binary) << text)) throw std::runtime_error(file.native());
}

std::string read_file(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.native());
  return {std::istreambuf_iterator<char>(in), {}};
}

std::filesystem::path ProgramUnderTest::output(const char* stream, int number) const {
  return outputs_.path() / (stream + std::to_string(number));
}

pid_t ProgramUnderTest::start(int out, const std::vector<std::string>& arguments,
                              int number) const {
  std::vector<std::string> all{PAGE_SOURCES_PROGRAM};
  if (!before.empty()) all = {"/bin/sh", "-c", before + "; exec \"$@\"", "sh", all.front()};
  all.insert(all.end(), arguments.begin(), arguments.end());
  auto set = environment;
  set.try_emplace("HOME", outputs_.path());
  set.try_emplace("XDG_CACHE_HOME", outputs_.path() / "cache");
  std::vector<std::string> variables;
  variables.reserve(set.size());
  for (const auto& [name, value] : set) variables.emplace_back(name).append("=").append(value);
  FileActions actions;
  if (out >= 0) {
    actions.duplicate(out, STDOUT_FILENO);
  } else {
    actions.write_to(STDOUT_FILENO, output("out", number));
  }
  actions.write_to(STDERR_FILENO, output("err", number));
  actions.change_directory(path());
  pid_t process = 0;
  check(posix_spawn(&process, all.front().c_str(), actions.get(), nullptr, pointers(all).data(),
                    pointers(variables).data()),
        "posix_spawn");
  return process;
}

Ended ProgramUnderTest::finish(pid_t process, int number) const {
  int status = 0;
  rusage usage{};
  while (wait4(process, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  const int code = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  const auto out = output("out", number);
  return {code, std::filesystem::exists(out) ? read_file(out) : "",
          read_file(output("err", number)), usage.ru_maxrss};
}

Ended ProgramUnderTest::run(const std::vector<std::string>& arguments) const {
  return finish(start(-1, arguments));
}

Ended ProgramUnderTest::run_into(int out, const std::vector<std::string>& arguments) const {
  return finish(start(out, arguments));
}

std::vector<Ended> ProgramUnderTest::run_together(
    const std::vector<std::vector<std::string>>& runs) const {
  std::vector<pid_t> processes;
  processes.reserve(runs.size());
  for (const auto& arguments : runs) {
    processes.push_back(start(-1, arguments, static_cast<int>(processes.size())));
  }
  std::vector<Ended> all;
  all.reserve(runs.size());
  for (const pid_t process : processes) {
    all.push_back(finish(process, static_cast<int>(all.size())));
  }
  return all;
}

Ended ProgramUnderTest::run_and_signal(int signal, const std::vector<std::string>& arguments,
                                       std::chrono::milliseconds moment) const {
  const pid_t process = start(-1, arguments);
  std::this_thread::sleep_for(moment);
  kill(process, signal);
  return finish(process);
}

}  // namespace kestrix::program
