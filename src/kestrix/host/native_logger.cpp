#include "kestrix/host/native_logger.h"

#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string>
#include <string_view>

#include "kestrix/utils/logger.h"

namespace kestrix {
namespace {

spdlog::logger& sink() {
  static const auto log = [] {
    auto made = std::make_shared<spdlog::logger>("kestrix",
                                                 std::make_shared<spdlog::sinks::stderr_sink_mt>());
    made->set_pattern("%l: %v");
    return made;
  }();
  return *log;
}

bool is_control(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// Texts of failures name paths, which may hold anything; a terminal must not act on them.
std::string printable(std::string_view text, std::string_view kept = "") {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (is_control(c) && kept.find(c) == std::string_view::npos) {
      fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(c));
    } else {
      out += c;
    }
  }
  return out;
}

std::string rendered(std::string_view name, std::string_view message, const Failure& failure) {
  auto text = fmt::format("{}: {}: {}: {}", name, printable(message), failure.type,
                          printable(failure.text));
  for (const auto& cause : failure.causes) text += "\n  caused by " + printable(cause);
  if (!failure.trace.empty()) text += "\n" + printable(failure.trace, "\n");
  return text;
}

}  // namespace

void Logger::warning(std::string_view message, const Failure& failure) const noexcept {
  try {
    if (sink().should_log(spdlog::level::warn)) {
      sink().log(spdlog::level::warn, "{}", rendered(name_, message, failure));
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): a line that cannot be written is no failure
  }
}

void set_log_quiet(bool quiet) noexcept {
  try {
    sink().set_level(quiet ? spdlog::level::off : spdlog::level::info);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without a log there is nothing to silence
  }
}

}  // namespace kestrix
