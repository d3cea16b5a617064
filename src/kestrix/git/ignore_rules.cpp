#include "kestrix/git/ignore_rules.h"

#include <algorithm>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// As long as a path may be. A pattern is tried on every file, so its length must not count.
constexpr std::size_t kLongestPattern = 4096;

bool same(std::string_view a, std::string_view b, bool ignore_case) {
  if (!ignore_case) return a == b;
  return std::ranges::equal(a, b, {}, ascii::lower, ascii::lower);
}

bool has_magic(std::string_view pattern) {
  return pattern.find_first_of("*?[\\") != std::string_view::npos;
}

std::string_view without_line_end(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Spaces at the end do not count, unless a backslash stands before them.
std::string_view without_trailing_spaces(std::string_view line) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (line[at] == '\\')
      ++at;
    else if (line[at] == ' ')
      continue;
    end = std::min(at + 1, line.size());
  }
  return line.substr(0, end);
}

}  // namespace

IgnoreRules::IgnoreRules(std::string_view text, bool ignore_case) : ignore_case_(ignore_case) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    add(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

Verdict IgnoreRules::judge(std::string_view path, bool is_directory) const {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  for (std::size_t at = rules_.size(); at > 0; --at) {
    const Rule& rule = rules_[at - 1];
    if (rule.directory_only && !is_directory) continue;
    if (matches(rule, path, name)) return rule.admits ? Verdict::kAdmitted : Verdict::kIgnored;
  }
  return Verdict::kNone;
}

void IgnoreRules::add(std::string_view line) {
  line = without_line_end(line);
  if (line.starts_with('#')) return;
  line = without_trailing_spaces(line);
  if (line.size() > kLongestPattern) return;
  const bool admits = line.starts_with('!');
  if (admits) line.remove_prefix(1);
  const bool directory_only = line.ends_with('/');
  if (directory_only) line.remove_suffix(1);
  if (line.empty()) return;

  const bool anchored = line.find('/') != line.npos;
  if (line.starts_with('/')) line.remove_prefix(1);
  Rule rule{anchored ? Form::kPath : Form::kName, admits, directory_only, std::string(line),
            nullptr};
  if (!anchored && line.starts_with('*') && !has_magic(line.substr(1))) {
    rule.form = Form::kNameSuffix;
    rule.text.erase(0, 1);
  } else if (has_magic(line)) {
    rule.form = anchored ? Form::kPathGlob : Form::kNameGlob;
    rule.glob = std::make_shared<const Wildmatch>(line, ignore_case_);
  }
  rules_.push_back(std::move(rule));
}

bool IgnoreRules::matches(const Rule& rule, std::string_view path, std::string_view name) const {
  switch (rule.form) {
    case Form::kName:
      return same(name, rule.text, ignore_case_);
    case Form::kNameSuffix:
      return name.size() >= rule.text.size() &&
             same(name.substr(name.size() - rule.text.size()), rule.text, ignore_case_);
    case Form::kNameGlob:
      return rule.glob->matches(name);
    case Form::kPath:
      return same(path, rule.text, ignore_case_);
    case Form::kPathGlob:
      return rule.glob->matches(path);
  }
  return false;
}

bool IgnoreScope::ignores(std::string_view path, bool is_directory) const {
  for (const IgnoreScope* scope = this; scope != nullptr; scope = scope->parent_.get()) {
    const auto inside = scope->base_.empty() ? path : path.substr(scope->base_.size() + 1);
    const Verdict verdict = scope->rules_.judge(inside, is_directory);
    if (verdict != Verdict::kNone) return verdict == Verdict::kIgnored;
  }
  return false;
}

}  // namespace kestrix::index
