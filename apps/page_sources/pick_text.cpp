#include "apps/page_sources/pick_text.h"

#include <algorithm>

#include "capi/answers/escape.h"

namespace kestrix::program {
namespace {

constexpr std::size_t kWidestPathColumn = 60;
constexpr std::size_t kLeastReason = 12;  // columns below which a reason is left out

bool begins_character(char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80; }

std::size_t path_column(std::span<const Pick> picks) {
  std::size_t widest = 0;
  for (const Pick& pick : picks) {
    const std::size_t columns = columns_of(c_quoted(pick.path));
    if (columns <= kWidestPathColumn) widest = std::max(widest, columns);
  }
  return widest;
}

// The room that is left beside a path; 0 for any.
std::string reason_within(const Pick& pick, std::size_t used, const TextStyle& style) {
  if (pick.reasons.empty()) return {};
  const std::string text = one_line(pick.reasons.front().text);
  if (style.width == 0) return text;
  if (style.width < used + kLeastReason) return {};
  return cut_to(text, style.width - used);
}

}  // namespace

std::size_t columns_of(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, begins_character));
}

std::string cut_to(std::string_view text, std::size_t columns) {
  if (columns == 0 || columns_of(text) <= columns) return std::string(text);
  std::size_t end = 0;
  for (std::size_t seen = 0; end < text.size(); ++end) {
    if (begins_character(text[end]) && ++seen == columns) break;
  }
  return std::string(text.substr(0, end)) + "…";
}

std::string dimmed(std::string_view text, const TextStyle& style) {
  if (!style.styled || text.empty()) return std::string(text);
  return "\x1b[2m" + std::string(text) + "\x1b[0m";
}

void append_picks(std::string& out, std::string_view indent, std::span<const Pick> picks,
                  const TextStyle& style) {
  constexpr std::size_t kGap = 2;
  const std::size_t column = path_column(picks);
  for (const Pick& pick : picks) {
    const std::string path = c_quoted(pick.path);
    const std::size_t columns = columns_of(path);
    const std::size_t pad = std::max(column, columns) - columns + kGap;
    const std::string reason = reason_within(pick, indent.size() + columns + pad, style);
    out.append(indent).append(path);
    if (!reason.empty()) out.append(pad, ' ').append(dimmed(reason, style));
    out += '\n';
  }
}

}  // namespace kestrix::program
