#include <fmt/format.h>

#include <iterator>

#include "apps/page_sources/output.h"
#include "apps/page_sources/pick_text.h"
#include "capi/answers/escape.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix::program {
namespace {

std::string head_of(const WhyAnswer& answer) {
  const std::string path = c_quoted(answer.path);
  if (answer.list.empty()) return fmt::format("{} is not on the page {}\n", path, answer.page);
  const std::string place = answer.entry_points.empty()
                                ? std::string()
                                : fmt::format(" of {}", c_quoted(answer.entry_points));
  return fmt::format("{} is number {} of the {}files{} on the page {}\n", path, answer.rank,
                     answer.list == "further" ? "further " : "", place, answer.page);
}

void append_place(std::string& out, const Place& place) {
  out += "    " + c_quoted(place.path);
  if (place.line > 0) out += fmt::format(":{}", place.line);
  if (!place.name.empty()) out += "  " + one_line(place.name);
  out += '\n';
}

void append_reason(std::string& out, const Reason& reason) {
  out += "  " + one_line(reason.text) + '\n';
  for (const Place& place : reason.at) append_place(out, place);
  if (reason.count > reason.at.size() && !reason.at.empty()) {
    fmt::format_to(std::back_inserter(out), "    and {} more\n", reason.count - reason.at.size());
  }
}

}  // namespace

std::string why_as_text(const WhyAnswer& answer, const TextStyle& style) {
  std::string out = head_of(answer);
  for (const Reason& reason : answer.reasons) append_reason(out, reason);
  for (const std::string& missing : answer.missing) out += "  " + one_line(missing) + '\n';
  if (answer.above.empty()) return out;
  out += answer.list.empty() ? "on the page are\n" : "above it are\n";
  append_picks(out, "  ", answer.above, style);
  return out;
}

}  // namespace kestrix::program
