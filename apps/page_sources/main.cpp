#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "apps/page_sources/console.h"
#include "apps/page_sources/program.h"

namespace {

// A file that is opened later must never get the number of a standard stream that the caller
// closed: answers would be written into it.
void occupy_standard_streams() {
  for (int fd = open("/dev/null", O_RDONLY | O_CLOEXEC); fd >= 0;
       fd = open("/dev/null", O_RDONLY | O_CLOEXEC)) {
    if (fd > STDERR_FILENO) {
      close(fd);
      return;
    }
  }
}

kestrix::StopFlag stop{false};             // NOLINT: a signal handler reaches nothing else
volatile std::sig_atomic_t stop_signal{};  // NOLINT: likewise

// What asks nobody for a whole second is ended all the same: the index stands whatever comes.
constexpr unsigned kGraceSeconds = 1;

void ask_to_stop(int signal) {
  stop_signal = signal;
  stop = true;
  alarm(kGraceSeconds);
}

void end_at_once(int /*signal*/) {
  std::signal(stop_signal, SIG_DFL);
  std::raise(stop_signal);
}

// The first signal asks; a second one finds its default action again.
void handle_signals() {
  struct sigaction action {};
  action.sa_handler = ask_to_stop;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction inherited {};
    sigaction(signal, nullptr, &inherited);
    if (inherited.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
  std::signal(SIGALRM, end_at_once);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a limit on the size of files is an error like any other
}

// The C library loads what it unwinds with when it first needs it, and aborts where it cannot. That
// must not be when memory has run out.
void load_unwinder() {
  void* frame = nullptr;
  backtrace(&frame, 1);
}

// Ends by the signal itself, so that a shell sees what stopped us.
[[noreturn]] void end_by(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  _exit(128 + signal);
}

}  // namespace

int main(int argc, char** argv) {
  occupy_standard_streams();
  handle_signals();
  load_unwinder();
  kestrix::program::ProcessConsole console;
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int code = kestrix::program::run(arguments, console, stop);
  if (code == kestrix::program::kStopped) end_by(stop_signal);
  return code;
}
