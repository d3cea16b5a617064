#include <fmt/format.h>

#include <iterator>
#include <utility>

#include "apps/page_sources/output.h"
#include "apps/page_sources/pick_text.h"
#include "capi/answers/escape.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix::program {
namespace {

std::string share(std::size_t given, std::uint64_t total) {
  return given < total ? fmt::format("{} of {}", given, total) : fmt::format("{}", given);
}

void append_heading(std::string& out, std::string_view name, std::string_view count, bool styled) {
  if (!out.empty()) out += '\n';
  const std::string_view bold = styled ? "\x1b[1m" : "";
  const std::string_view plain = styled ? "\x1b[0m" : "";
  fmt::format_to(std::back_inserter(out), "{}{}{} ({})\n", bold, name, plain, count);
}

void append_nothing(std::string& out, std::string_view looked_for, const TextStyle& style) {
  if (looked_for.empty()) return;
  out += "  " + dimmed(one_line(looked_for), style) + '\n';
}

void append_lists(std::string& out, const std::string& indent, std::span<const Pick> files,
                  std::span<const Pick> further, const TextStyle& style) {
  append_picks(out, indent, files, style);
  if (further.empty()) return;
  out += indent + fmt::format("further ({})\n", further.size());
  append_picks(out, indent + "  ", further, style);
}

void append_answer(std::string& out, std::string_view name, const PageAnswer& answer,
                   const TextStyle& style) {
  append_heading(out, name, share(answer.files.size(), answer.total), style.styled);
  append_lists(out, "  ", answer.files, answer.further, style);
  append_nothing(out, answer.nothing_found, style);
}

void append_answer(std::string& out, std::string_view name, const FlowsAnswer& answer,
                   const TextStyle& style) {
  append_heading(out, name, share(answer.classes.size(), answer.total), style.styled);
  for (const FlowClass& flow : answer.classes) {
    const std::string head = fmt::format("  {} ({})", c_quoted(flow.entry_points),
                                         counted(flow.roots.size(), "entry point", "entry points"));
    const std::string sign = flow.sign.empty() ? "" : "  " + one_line(flow.sign);
    const std::size_t used = columns_of(head);
    const bool fits = style.width == 0 || style.width > used + 12;
    out += head;
    if (fits) out += dimmed(cut_to(sign, style.width == 0 ? 0 : style.width - used), style);
    out += '\n';
    append_lists(out, "    ", flow.files, flow.further, style);
  }
  append_nothing(out, answer.nothing_found, style);
}

void append_rows(std::string& out, std::string_view page, std::string_view list,
                 std::span<const Pick> picks, std::string_view prefix = {}) {
  for (const Pick& pick : picks) {
    const std::string reason = pick.reasons.empty() ? "" : pick.reasons.front().text;
    fmt::format_to(std::back_inserter(out), "{}\t{}\t{}\t{}\n", page, c_quoted(pick.path), list,
                   c_quoted(std::string(prefix) + reason));
  }
}

void append_rows(std::string& out, std::string_view page, const PageAnswer& answer) {
  append_rows(out, page, "files", answer.files);
  append_rows(out, page, "further", answer.further);
}

void append_rows(std::string& out, std::string_view page, const FlowsAnswer& answer) {
  for (const FlowClass& flow : answer.classes) {
    const std::string prefix = flow.entry_points + ": ";
    append_rows(out, page, "files", flow.files, prefix);
    append_rows(out, page, "further", flow.further, prefix);
  }
}

}  // namespace

std::string pages_as_text(std::span<const AnsweredPage> pages, const TextStyle& style) {
  std::string out;
  for (const AnsweredPage& page : pages) {
    std::visit([&](const auto& answer) { append_answer(out, page.page->name, answer, style); },
               page.answer);
  }
  return out;
}

std::string pages_as_tsv(std::span<const AnsweredPage> pages) {
  std::string out;
  for (const AnsweredPage& page : pages) {
    std::visit([&](const auto& answer) { append_rows(out, page.page->name, answer); }, page.answer);
  }
  return out;
}

std::string paths_as_lines(std::span<const std::string> paths, bool nul) {
  std::string out;
  for (const std::string& path : paths) {
    out += nul ? path : c_quoted(path);
    out += nul ? '\0' : '\n';
  }
  return out;
}

}  // namespace kestrix::program
