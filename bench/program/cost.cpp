// program_cost COMMAND ARGUMENT...
//
// Runs a command, drops its output, and prints what it cost: microseconds of wall time and of user
// and system time, and kilobytes of its peak memory. A small process does this because the system
// counts the memory of the process that starts a command as the command's own.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void become(char** command) {
  constexpr int kNoCommand = 127;
  dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
  execvp(command[0], command);
  std::perror(command[0]);
  _exit(kNoCommand);
}

long microseconds(const timeval& time) { return time.tv_sec * 1'000'000L + time.tv_usec; }

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) become(argv + 1);
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child) return EXIT_FAILURE;
  const std::chrono::duration<double, std::micro> wall = std::chrono::steady_clock::now() - start;
  std::printf("%.0f %ld %ld\n", wall.count(),
              microseconds(usage.ru_utime) + microseconds(usage.ru_stime), usage.ru_maxrss);
  return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}
