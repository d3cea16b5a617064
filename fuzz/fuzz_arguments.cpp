// Command lines: arguments between NULs. Those that would read a repository are run on a small one
// of their own, whatever they name.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "apps/page_sources/arguments.h"
#include "apps/page_sources/program.h"
#include "capi/answers/escape.h"
#include "fuzz/require.h"
#include "fuzz/scratch_directory.h"

namespace kestrix::program {
namespace {

using test::require;

class Recorder : public Console {
 public:
  void answer(std::string_view text) override { answers += text; }
  void message(std::string_view text) noexcept override { messages += text; }
  bool has_styled_answers() const override { return false; }
  bool has_live_messages() const override { return false; }

  std::string answers;
  std::string messages;
};

// Nothing outside of it is read or written: neither a named repository nor a named index.
class Sandbox {
 public:
  Sandbox() {
    scratch_.write("repo/app/main.py", "from app import errors\nclass A: pass\n");
    scratch_.write("repo/app/errors.py", "class AppError(Exception): pass\n");
    std::filesystem::current_path(scratch_ / "repo");
    ::setenv("HOME", (scratch_ / "home").c_str(), 1);
    ::setenv("XDG_CACHE_HOME", (scratch_ / "cache").c_str(), 1);
  }

  bool holds(const CommonOptions& common) const {
    return !common.index && (common.repository == "." || common.repository == "app");
  }
  bool holds(const Command& command) const {
    return std::visit(
        [&]<class Chosen>(const Chosen& chosen) {
          if constexpr (requires { chosen.common; }) return holds(chosen.common);
          return true;
        },
        command);
  }

 private:
  test::ScratchDirectory scratch_;
};

void check_command(const Command& command) {
  if (const auto* pages = std::get_if<PagesCommand>(&command)) {
    require(!pages->pages.empty() && std::ranges::is_sorted(pages->pages), "pages ascend");
  }
  if (const auto* wrong = std::get_if<WrongUsage>(&command)) {
    require(!wrong->message.empty() && one_line(wrong->message) == wrong->message,
            "a message is one line");
  }
}

void check_run(const std::vector<std::string>& arguments, const Command& command) {
  Recorder console;
  const StopFlag stop{false};
  const int code = run(arguments, console, stop);
  const bool wrong = std::holds_alternative<WrongUsage>(command);
  require(code == (wrong ? kWrongUsage : kDone), "the exit code tells wrong usage");
  require(!wrong || console.answers.empty(), "wrong usage has no answer");
  require(!wrong || std::ranges::count(console.messages, '\n') == 1, "it has one message");
}

std::vector<std::string> split(std::string_view input) {
  std::vector<std::string> arguments;
  while (!input.empty()) {
    const auto end = std::min(input.find('\0'), input.size());
    arguments.emplace_back(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
  }
  return arguments;
}

}  // namespace
}  // namespace kestrix::program

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix::program;  // NOLINT(google-build-using-namespace)
  static const Sandbox sandbox;
  const auto arguments = split({reinterpret_cast<const char*>(data), size});
  const Command command = parse(arguments);
  check_command(command);
  if (sandbox.holds(command)) check_run(arguments, command);
  return 0;
}
