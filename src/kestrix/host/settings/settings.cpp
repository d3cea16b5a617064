#include "kestrix/host/settings/settings.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include <algorithm>
#include <array>
#include <utility>

#include "kestrix/host/pages.h"
#include "kestrix/utils/error.h"

namespace kestrix {
namespace {

// A settings file has no more; a file full of dotted keys would nest too deep for its parser.
constexpr std::ptrdiff_t kMostDots = 64;
constexpr std::size_t kMostGlobs = 1000;
constexpr std::array kGivenRoles{GivenRole::kGenerated, GivenRole::kVendored, GivenRole::kSample,
                                 GivenRole::kTest};

class Reader {
 public:
  Reader(Settings& settings, const std::string& name) : settings_(settings), name_(name) {}

  void read(const toml::table& document) {
    for (const auto& [key, value] : in_order(document)) {
      if (key == "exclude" || key == "include") continue;  // by their kind, below
      if (key == "roles")
        read_roles(table(value, key));
      else if (key == "entry_points")
        read_entry_points(table(value, key));
      else if (key == "pages")
        read_pages(table(value, key));
      else if (key == "limits")
        read_limits(table(value, key));
      else
        fail(value, fmt::format("unknown key {}", key));
    }
    read_wishes(document, "exclude", false);
    read_wishes(document, "include", true);
  }

 private:
  using Entry = std::pair<std::string, const toml::node*>;

  // By line, so that the first fault is the one that is told.
  static std::vector<std::pair<std::string, const toml::node&>> in_order(const toml::table& table) {
    std::vector<Entry> entries;
    for (const auto& [key, value] : table) entries.emplace_back(std::string(key.str()), &value);
    std::ranges::stable_sort(entries, {}, [](const Entry& entry) {
      return std::pair(entry.second->source().begin.line, entry.second->source().begin.column);
    });
    std::vector<std::pair<std::string, const toml::node&>> out;
    for (const auto& [key, value] : entries) out.emplace_back(key, *value);
    return out;
  }

  std::string place_of(const toml::node& node) const {
    return fmt::format("{}:{}", name_, node.source().begin.line);
  }

  [[noreturn]] void fail(const toml::node& node, std::string_view what) const {
    throw Error(fmt::format("{}: {}", place_of(node), what));
  }

  const toml::table& table(const toml::node& node, std::string_view key) const {
    if (!node.is_table()) fail(node, fmt::format("{} is no table", key));
    return *node.as_table();
  }

  std::string text(const toml::node& node) const {
    if (!node.is_string()) fail(node, "a text is expected");
    return node.as_string()->get();
  }

  struct Text {
    std::string text;
    std::string from;
  };

  // One text, or a list of them.
  std::vector<Text> texts(const toml::node& node) {
    std::vector<Text> found;
    if (node.is_array()) {
      for (const toml::node& each : *node.as_array()) found.push_back({text(each), place_of(each)});
    } else {
      found.push_back({text(node), place_of(node)});
    }
    globs_ += found.size();
    if (globs_ > kMostGlobs) fail(node, fmt::format("more than {} patterns", kMostGlobs));
    return found;
  }

  std::vector<Text> globs(const toml::node& node) {
    auto found = texts(node);
    for (const Text& each : found) {
      try {
        const PathGlob checked(each.text);
      } catch (const BadGlob& error) {
        throw Error(fmt::format("{}: {}", each.from, error.what()));
      }
    }
    return found;
  }

  void read_wishes(const toml::table& document, std::string_view key, bool include) {
    const toml::node* node = document.get(key);
    if (node == nullptr) return;
    for (auto& glob : globs(*node)) settings_.paths.push_back({glob.text, include, glob.from});
  }

  void read_roles(const toml::table& roles) {
    for (const auto& [key, value] : in_order(roles)) {
      const auto* role =
          std::ranges::find(kGivenRoles, key, [](auto each) { return to_string(each); });
      if (role == kGivenRoles.end()) fail(value, fmt::format("unknown role {}", key));
      for (auto& glob : globs(value)) settings_.roles.push_back({*role, glob.text, glob.from});
    }
  }

  void read_entry_points(const toml::table& classes) {
    for (const auto& [key, value] : in_order(classes)) {
      EntryPointSetting named{key, {}, place_of(value)};
      for (auto& glob : globs(value)) named.globs.push_back(glob.text);
      settings_.entry_points.push_back(std::move(named));
    }
  }

  void read_pages(const toml::table& pages) {
    for (const auto& [key, value] : in_order(pages)) {
      const auto* page = std::ranges::find(kPages, key, &Page::name);
      if (page == kPages.end()) fail(value, fmt::format("unknown page {}", key));
      for (const auto& [what, paths] : in_order(table(value, key))) read_page(key, what, paths);
    }
  }

  void read_page(const std::string& page, std::string_view what, const toml::node& node) {
    if (what == "ban") {
      for (auto& glob : globs(node)) settings_.pages.push_back({page, glob.text, false, glob.from});
    } else if (what == "pin") {
      if (page == "flows") fail(node, "flows takes no pins; name its entry points instead");
      for (auto& path : texts(node)) {
        settings_.pages.push_back({page, _norm(path.text), true, path.from});
      }
    } else {
      fail(node, fmt::format("unknown key pages.{}.{}", page, what));
    }
  }

  void read_limits(const toml::table& limits) {
    for (const auto& [key, value] : in_order(limits)) {
      if (key != "further" && key != "classes") fail(value, fmt::format("unknown limit {}", key));
      const auto number = value.value_exact<std::int64_t>();
      if (!number || *number < 0 || *number > 100)
        fail(value, "a number from 0 to 100 is expected");
      settings_.limits.push_back({key, static_cast<std::size_t>(*number), place_of(value)});
    }
  }

  Settings& settings_;
  const std::string& name_;
  std::size_t globs_ = 0;
};

void check_dots(std::string_view text, const std::string& name) {
  std::size_t number = 1;
  for (std::size_t begin = 0; begin < text.size(); ++number) {
    const auto end = std::min(text.find('\n', begin), text.size());
    if (std::ranges::count(text.substr(begin, end - begin), '.') > kMostDots) {
      throw Error(fmt::format("{}:{}: more than {} dots in a line", name, number, kMostDots));
    }
    begin = end + 1;
  }
}

}  // namespace

std::string_view to_string(GivenRole role) {
  constexpr std::array<std::string_view, 4> kNames{"generated", "vendored", "sample", "test"};
  return kNames.at(static_cast<std::size_t>(role));
}

std::optional<std::size_t> Settings::limit(std::string_view name) const {
  const auto found = std::find_if(limits.rbegin(), limits.rend(),
                                  [name](const LimitSetting& limit) { return limit.name == name; });
  return found == limits.rend() ? std::nullopt : std::optional(found->value);
}

void add_settings(Settings& settings, std::string_view text, const std::string& name) {
  check_dots(text, name);
  try {
    Reader(settings, name).read(toml::parse(text, name));
  } catch (const toml::parse_error& error) {
    throw Error(fmt::format("{}:{}: {}", name, error.source().begin.line, error.description()));
  }
}

}  // namespace kestrix
