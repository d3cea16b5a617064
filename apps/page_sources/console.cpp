#include "apps/page_sources/console.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "kestrix/utils/error.h"

namespace kestrix::program {
namespace {

constexpr auto kRewriteInterval = std::chrono::milliseconds(100);

bool is_set(const char* variable) {
  const char* value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): before any thread
  return value != nullptr && *value != '\0';
}

bool is_terminal(int fd) {
  const char* kind = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): before any thread
  return isatty(fd) == 1 && kind != nullptr && std::string_view(kind) != "dumb";
}

std::size_t width_of(int fd) {
  winsize size{};
  return isatty(fd) == 1 && ioctl(fd, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// Returns 0, or the error number of the write that failed.
int write_all(int fd, std::string_view text) noexcept {
  while (!text.empty()) {
    const ssize_t written = write(fd, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

ProcessConsole::ProcessConsole()
    : styled_answers_(is_terminal(STDOUT_FILENO) && !is_set("NO_COLOR")),
      answer_width_(width_of(STDOUT_FILENO)),
      live_messages_(is_terminal(STDERR_FILENO)) {}

void ProcessConsole::answer(std::string_view text) {
  const int failure = write_all(STDOUT_FILENO, text);
  if (failure == EPIPE) throw ClosedPipe();
  if (failure != 0) {
    throw Error("cannot write to standard output: " + std::generic_category().message(failure));
  }
}

void ProcessConsole::message(std::string_view text) noexcept { write_all(STDERR_FILENO, text); }

ProgressLine::ProgressLine(Console& console, bool wanted, Clock::duration delay)
    : console_(console),
      wanted_(wanted && console.has_live_messages()),
      next_(Clock::now() + delay) {}

ProgressLine::~ProgressLine() {
  if (shown_) console_.message("\r\x1b[K");
}

void ProgressLine::update(std::string_view stage, std::size_t done, std::size_t total) {
  if (!wanted_ || Clock::now() < next_) return;
  next_ = Clock::now() + kRewriteInterval;
  shown_ = true;
  std::array<char, 80> line{};  // what fits a narrow terminal
  const auto end =
      total > 0
          ? fmt::format_to_n(line.data(), line.size() - 1, "\r{} {}/{}\x1b[K", stage, done, total)
          : fmt::format_to_n(line.data(), line.size() - 1, "\r{} {}\x1b[K", stage, done);
  console_.message({line.data(), static_cast<std::size_t>(end.out - line.data())});
}

}  // namespace kestrix::program
