#include "kestrix/git/git_config.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "kestrix/files/file_reading.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxConfigBytes = std::size_t{1} << 20;
constexpr int kMaxDepth = 10;
constexpr int kMaxIncludes = 200;  // files that include each other are many at a small depth

std::string lowered(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), ascii::lower);
  return result;
}

bool is_key(char c) { return ascii::is_alpha(c) || ascii::is_digit(c) || c == '-'; }
bool is_blank(char c) { return ascii::is_space(c) && c != '\n'; }

fs::path with_home(std::string_view path) {
  if (!path.starts_with("~/")) return path;
  const std::string home = environment("HOME");
  return home.empty() ? fs::path() : fs::path(home) / path.substr(2);
}

}  // namespace

std::optional<std::string> path_below(const fs::path& top, const fs::path& path) {
  const std::string& whole = path.native();
  if (whole == top.native()) return "";
  const std::string base = top == top.root_path() ? top.native() : top.native() + "/";
  if (!whole.starts_with(base)) return std::nullopt;
  return whole.substr(base.size());
}

// NOLINTBEGIN(misc-no-recursion): a file that includes files, kMaxDepth of them at most

// Reads one file's text (git-config(1), "Syntax").
class GitConfig::Parser {
 public:
  Parser(std::string_view text, GitConfig& config, const fs::path& file)
      : text_(text), config_(config), file_(file) {}

  bool parse() {
    if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
    while (skip_to_item()) {
      const bool read = peek() == '[' ? read_section() : read_setting();
      if (!read) return false;
    }
    return true;
  }

 private:
  bool done() const { return at_ >= text_.size(); }
  char peek() const { return done() ? '\n' : text_[at_]; }

  template <class Predicate>
  std::string_view take_while(Predicate wanted) {
    const std::size_t begin = at_;
    while (!done() && wanted(text_[at_])) ++at_;
    return text_.substr(begin, at_ - begin);
  }

  bool skip_to_item() {
    for (;;) {
      take_while(ascii::is_space);
      if (peek() != '#' && peek() != ';') return !done();
      take_while([](char c) { return c != '\n'; });
    }
  }

  bool read_section() {
    ++at_;
    section_ = lowered(take_while([](char c) { return is_key(c) || c == '.'; }));
    take_while(is_blank);
    if (section_.empty() || (peek() == '"' && !read_subsection()) || peek() != ']') return false;
    ++at_;
    return true;
  }

  bool read_subsection() {
    section_ += '.';
    for (++at_; peek() != '"'; ++at_) {
      if (peek() == '\\') ++at_;
      if (peek() == '\n') return false;
      section_ += text_[at_];
    }
    ++at_;
    return true;
  }

  bool read_setting() {
    const std::string key = lowered(take_while(is_key));
    if (key.empty() || section_.empty()) return false;
    take_while(is_blank);
    std::string value = "true";
    if (peek() == '=') {
      ++at_;
      if (!read_value(value)) return false;
    } else if (peek() != '\n' && peek() != '#' && peek() != ';') {
      return false;
    }
    set(key, std::move(value));
    return true;
  }

  // Blanks at both ends go, those within quotes stay.
  bool read_value(std::string& value) {
    value.clear();
    take_while(is_blank);
    bool quoted = false;
    std::size_t kept = 0;
    for (; !done() && (quoted || (peek() != '#' && peek() != ';')); ++at_) {
      const char c = peek();
      if (c == '\n') break;
      if (c == '"')
        quoted = !quoted;
      else if (c == '\\' && !read_escape(value))
        return false;
      else if (c != '\\')
        value += c;
      if (quoted || !ascii::is_space(c)) kept = value.size();
    }
    value.resize(kept);
    return !quoted;
  }

  bool read_escape(std::string& value) {
    constexpr std::string_view kNames = "\\\"ntb";
    constexpr std::string_view kMeanings = "\\\"\n\t\b";
    ++at_;
    if (text_.substr(at_, 2) == "\r\n") ++at_;
    if (peek() == '\n') return !done();
    const auto name = kNames.find(peek());
    if (name != kNames.npos) value += kMeanings[name];
    return name != kNames.npos;
  }

  void set(const std::string& key, std::string value) {
    constexpr std::string_view kCondition = "includeif.";
    if (key == "path" && section_ == "include") return config_.include(file_, value);
    if (key == "path" && section_.starts_with(kCondition)) {
      const auto condition = std::string_view(section_).substr(kCondition.size());
      if (config_.holds(file_, condition)) config_.include(file_, value);
      return;
    }
    if (section_ == "safe" && key == "directory") config_.add_safe_directory(value);
    config_.values_[section_ + "." + key] = std::move(value);
  }

  std::string_view text_;
  GitConfig& config_;
  const fs::path& file_;
  std::size_t at_ = 0;
  std::string section_;
};

bool GitConfig::read(const fs::path& file) {
  const FileBytes content = confines_.empty() ? read_users_file(file, kMaxConfigBytes)
                                              : read_admitted(file, kMaxConfigBytes);
  // The repository's settings decide what is ignored: without them there is no saying.
  if (!confines_.empty() && content.status == ReadStatus::kUnreadable) well_formed_ = false;
  const std::string text = whole_text(content);
  if (!Parser(text, *this, file).parse()) well_formed_ = false;
  return well_formed_;
}

void GitConfig::include(const fs::path& from, std::string_view path) {
  const fs::path file = from.parent_path() / with_home(path);
  if (depth_ == kMaxDepth || (!confines_.empty() && !admits(file))) return;
  if (++included_ > kMaxIncludes) {
    well_formed_ = false;
    return;
  }
  ++depth_;
  read(file);
  --depth_;
}

// NOLINTEND(misc-no-recursion)

bool GitConfig::read_user_files() {
  const std::string system = environment("GIT_CONFIG_SYSTEM");
  if (environment("GIT_CONFIG_NOSYSTEM").empty()) read(system.empty() ? "/etc/gitconfig" : system);
  if (const auto global = environment("GIT_CONFIG_GLOBAL"); !global.empty()) return read(global);
  const std::string xdg = environment("XDG_CONFIG_HOME");
  read(xdg.empty() ? with_home("~/.config/git/config") : fs::path(xdg) / "git/config");
  return read(with_home("~/.gitconfig"));
}

std::optional<std::string> GitConfig::value(std::string_view name) const {
  const auto found = values_.find(name);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

bool GitConfig::is_true(std::string_view name) const {
  const std::string text = lowered(value(name).value_or("false"));
  return text == "true" || text == "yes" || text == "on" || std::atoi(text.c_str()) != 0;
}

std::optional<fs::path> GitConfig::path(std::string_view name) const {
  const auto text = value(name);
  if (!text) return std::nullopt;
  return with_home(*text);
}

bool GitConfig::is_safe(const fs::path& top) const {
  return std::ranges::any_of(safe_directories_, [&](const std::string& safe) {
    if (safe == "*") return true;
    const fs::path named = with_home(safe);
    if (!safe.ends_with("/*")) return named.lexically_normal() == top;
    return path_below(named.parent_path(), top).has_value();
  });
}

// An empty value takes back those before it.
void GitConfig::add_safe_directory(const std::string& value) {
  if (value.empty())
    safe_directories_.clear();
  else if (confines_.empty())
    safe_directories_.push_back(value);
}

std::optional<GitConfig::Place> GitConfig::place_of(const fs::path& file) const {
  const fs::path normal = file.lexically_normal();
  for (const RootDirectory* directory : confines_) {
    auto relative = path_below(directory->path(), normal);
    if (relative && !relative->empty()) return Place{directory, *std::move(relative)};
  }
  return std::nullopt;
}

FileBytes GitConfig::read_admitted(const fs::path& file, std::size_t limit) const {
  const auto place = place_of(file);
  return place ? read_file(*place->directory, place->relative, limit)
               : FileBytes{.status = ReadStatus::kVanished};
}

bool GitConfig::holds(const fs::path& from, std::string_view condition) const {
  const auto colon = condition.find(':');
  const auto kind = condition.substr(0, colon);
  if (colon == condition.npos || (kind != "gitdir" && kind != "gitdir/i")) return false;
  std::string pattern = with_home(condition.substr(colon + 1)).native();
  if (pattern.starts_with("./")) pattern.replace(0, 1, from.parent_path().native());
  if (!pattern.starts_with('/')) pattern.insert(0, "**/");
  if (pattern.ends_with('/')) pattern += "**";
  return Wildmatch(pattern, kind == "gitdir/i").matches(git_directory_.native());
}

std::string environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here sets it
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace kestrix::index
