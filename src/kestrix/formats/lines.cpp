#include "kestrix/text/lines.h"

#include <algorithm>
#include <string>
#include <vector>

#include "kestrix/formats/scalar_readers.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

std::string_view without_quotes(std::string_view text) {
  const bool quoted = text.size() > 1 && (text.front() == '"' || text.front() == '\'') &&
                      text.back() == text.front();
  return quoted ? text.substr(1, text.size() - 2) : text;
}

// "key = value", split at the first of `separators`; a line without one is a key alone.
class Entry {
 public:
  Entry(std::string_view line, std::string_view separators) {
    const std::size_t at = line.find_first_of(separators);
    key = ascii::trim(line.substr(0, at));
    if (at != std::string_view::npos) value = ascii::trim(line.substr(at + 1));
  }

  std::string_view key;
  std::string_view value;
};

// Whether a line of Java properties goes on in the next one.
bool goes_on(std::string_view line) {
  const std::size_t last = line.find_last_not_of('\\');
  return (line.size() - (last == std::string_view::npos ? 0 : last + 1)) % 2 != 0;
}

// A key ends at the first "=", ":" or white space that no backslash stands before.
std::size_t end_of_key(std::string_view line) {
  std::size_t at = 0;
  while (at < line.size() && line[at] != '=' && line[at] != ':' && !ascii::is_space(line[at])) {
    at += line[at] == '\\' ? 2 : 1;
  }
  return std::min(at, line.size());
}

}  // namespace

void read_ini_scalars(std::string_view text, const ScalarVisitor& visit) {
  std::vector<std::string> path(1);
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = ascii::trim(take_line(text));
    if (line.empty() || line.front() == '#' || line.front() == ';') continue;
    if (line.front() == '[' && line.back() == ']') {
      path = {std::string(ascii::trim(line.substr(1, line.size() - 2))), ""};
      continue;
    }
    const Entry entry(line, "=:");
    path.back() = entry.key;
    visit({path, without_quotes(entry.value), number});
  }
}

void read_properties_scalars(std::string_view text, const ScalarVisitor& visit) {
  std::vector<std::string> path(1);
  for (std::size_t number = 1, lines = 1; !text.empty(); number += lines, lines = 1) {
    std::string line(ascii::trim(take_line(text)));
    if (line.empty() || line.front() == '#' || line.front() == '!') continue;
    for (; goes_on(line) && !text.empty(); ++lines) {
      line.pop_back();
      line += ascii::trim(take_line(text));
    }
    const std::size_t end = end_of_key(line);
    path.back() = line.substr(0, end);
    std::string_view value = ascii::trim(std::string_view(line).substr(end));
    if (value.starts_with('=') || value.starts_with(':')) value.remove_prefix(1);
    visit({path, ascii::trim(value), number});
  }
}

void read_env_scalars(std::string_view text, const ScalarVisitor& visit) {
  constexpr std::string_view kExport = "export ";
  std::vector<std::string> path(1);
  for (std::size_t number = 1; !text.empty(); ++number) {
    std::string_view line = ascii::trim(take_line(text));
    if (line.empty() || line.front() == '#') continue;
    if (line.starts_with(kExport)) line.remove_prefix(kExport.size());
    const Entry entry(line, "=");
    path.back() = entry.key;
    visit({path, without_quotes(entry.value), number});
  }
}

}  // namespace kestrix::index
