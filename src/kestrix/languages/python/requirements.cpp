#include <algorithm>
#include <initializer_list>
#include <optional>

#include "kestrix/formats/scalars.h"
#include "kestrix/languages/python/names.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/lines.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

using Names = std::unordered_set<std::string, SeededHash>;

bool is_name_byte(char c) { return ascii::is_word(c) || c == '-' || c == '.'; }

// The name that a requirement ("Name[extra]>=1; marker") starts with.
void add_requirement(std::string_view text, Names& names) {
  text = ascii::trim(text);
  const auto end = std::ranges::find_if_not(text, is_name_byte);
  std::string name(text.begin(), end);
  const std::string_view rest = ascii::trim(text.substr(name.size()));
  if (name.empty() || name.front() == '-') return;
  if (!rest.empty() &&
      std::string_view("[<>=!~;@(,#").find(rest.front()) == std::string_view::npos) {
    return;
  }
  for (char& c : name) {
    c = c == '-' || c == '.' ? '_' : ascii::lower(c);
  }
  names.insert(std::move(name));
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
  const std::string_view rest = ascii::trim(line.substr(key.size()));
  if (!rest.starts_with('=')) return std::nullopt;
  return ascii::trim(rest.substr(1));
}

// Lists of requirements, and Poetry's tables in which the key is the name.
void read_pyproject(std::string_view text, Names& names) {
  for_each_scalar(Format::kToml, text, [&](const Scalar& scalar) {
    const auto at = scalar.path;
    const auto begins = [at](std::initializer_list<std::string_view> tables) {
      return at.size() > tables.size() && std::equal(tables.begin(), tables.end(), at.begin());
    };
    if (begins({"tool", "poetry"})) {
      const auto table = std::find_if(at.begin() + 2, at.end(), [](const std::string& name) {
        return name.ends_with("dependencies");
      });
      if (at.end() - table > 1) add_requirement(*std::next(table), names);
    } else if (begins({"project", "dependencies"}) ||
               begins({"project", "optional-dependencies"}) || begins({"dependency-groups"})) {
      add_requirement(scalar.value, names);
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
    if (ascii::trim(line) == "[options.extras_require]") in_list = true;
  });
}

// Lists are written in any way here: what is quoted between "requires" and the closing bracket. No
// byte is looked at twice.
void read_setup_py(std::string_view text, Names& names) {
  constexpr std::string_view kKey = "requires";
  for (std::size_t at = text.find(kKey); at != std::string_view::npos; at = text.find(kKey)) {
    text.remove_prefix(at + kKey.size());
    const std::size_t end = std::min(text.find_first_of("])"), text.size());
    for_each_line(text.substr(0, end), [&](std::string_view line) { add_quoted(line, names); });
    text.remove_prefix(end);
  }
}

}  // namespace

std::unordered_set<std::string, SeededHash> required_distributions(const FileTable& files) {
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
