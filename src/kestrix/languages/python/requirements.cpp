#include <algorithm>
#include <optional>

#include "kestrix/text/paths.h"
#include "kestrix/languages/python/names.h"

namespace kestrix::index {
namespace {

using Names = std::unordered_set<std::string>;

bool is_name_byte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '_' || c == '.';
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The name that a requirement ("Name[extra]>=1; marker") starts with.
void add_requirement(std::string_view text, Names& names) {
  text = trim(text);
  const auto end = std::ranges::find_if_not(text, is_name_byte);
  std::string name(text.begin(), end);
  const std::string_view rest = trim(text.substr(name.size()));
  if (name.empty() || name.front() == '-') return;
  if (!rest.empty() &&
      std::string_view("[<>=!~;@(,#").find(rest.front()) == std::string_view::npos) {
    return;
  }
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c == '-' || c == '.') c = '_';
  }
  names.insert(std::move(name));
}

template <class Visit>
void for_each_line(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    visit(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

void add_quoted(std::string_view line, Names& names) {
  for (;;) {
    const std::size_t open = line.find_first_of("\"'");
    if (open == std::string_view::npos) return;
    const std::size_t close = line.find(line[open], open + 1);
    if (close == std::string_view::npos) return;
    add_requirement(line.substr(open + 1, close - open - 1), names);
    line.remove_prefix(close + 1);
  }
}

void read_requirements_txt(std::string_view text, Names& names) {
  for_each_line(text, [&](std::string_view line) { add_requirement(line, names); });
}

// The value of `key = value`, when the line has that key.
std::optional<std::string_view> value_of(std::string_view line, std::string_view key) {
  if (!line.starts_with(key)) return std::nullopt;
  const std::string_view rest = trim(line.substr(key.size()));
  if (!rest.starts_with('=')) return std::nullopt;
  return trim(rest.substr(1));
}

void read_pyproject(std::string_view text, Names& names) {
  std::string_view table;
  bool in_list = false;
  for_each_line(text, [&](std::string_view raw) {
    const std::string_view line = trim(raw);
    if (line.starts_with('[') && line.ends_with(']') && !in_list) {
      table = trim(line.substr(1, line.size() - 2));
      return;
    }
    if (table.starts_with("tool.poetry.") && table.ends_with("dependencies")) {
      add_requirement(line, names);
    } else if (table == "project.optional-dependencies" || table == "dependency-groups") {
      add_quoted(line, names);
    } else if (table == "project") {
      in_list = in_list || value_of(line, "dependencies").has_value();
      if (in_list) add_quoted(line, names);
      if (line.ends_with(']')) in_list = false;
    }
  });
}

void read_setup_cfg(std::string_view text, Names& names) {
  bool in_list = false;
  for_each_line(text, [&](std::string_view line) {
    const bool indented = line.starts_with(' ') || line.starts_with('\t');
    if (!indented) in_list = false;
    if (indented && in_list) add_requirement(line, names);
    if (const auto value = value_of(line, "install_requires")) {
      in_list = true;
      add_requirement(*value, names);
    }
    if (trim(line) == "[options.extras_require]") in_list = true;
  });
}

// Lists are written in any way here: what is quoted between "requires" and the closing bracket.
void read_setup_py(std::string_view text, Names& names) {
  constexpr std::string_view kKey = "requires";
  for (std::size_t at = text.find(kKey); at != std::string_view::npos; at = text.find(kKey, at)) {
    at += kKey.size();
    const std::size_t end = std::min(text.find_first_of("])", at), text.size());
    for_each_line(text.substr(at, end - at),
                  [&](std::string_view line) { add_quoted(line, names); });
  }
}

}  // namespace

std::unordered_set<std::string> required_distributions(const FileTable& files) {
  Names names;
  for (FileId id = 0; id < files.size(); ++id) {
    const std::string_view path = files.path(id);
    const std::string_view name = base_name(path);
    if (name.ends_with(".txt") && (name.find("requirements") != std::string_view::npos ||
                                   base_name(folder_of(path)) == "requirements")) {
      read_requirements_txt(files.read(id), names);
    } else if (name == "pyproject.toml") {
      read_pyproject(files.read(id), names);
    } else if (name == "setup.cfg") {
      read_setup_cfg(files.read(id), names);
    } else if (name == "setup.py") {
      read_setup_py(files.read(id), names);
    }
  }
  return names;
}

}  // namespace kestrix::index
