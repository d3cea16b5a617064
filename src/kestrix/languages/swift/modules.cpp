#include "kestrix/languages/swift/modules.h"

#include <algorithm>
#include <array>
#include <optional>

#include "kestrix/languages/swift/text.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::string_view kManifest = "Package.swift";
constexpr auto kKinds = std::to_array<std::string_view>(
    {"target", "executableTarget", "testTarget", "macro", "plugin", "systemLibrary"});
// Where a target's folder stands when the manifest does not say.
constexpr auto kSources =
    std::to_array<std::string_view>({"Sources", "Source", "src", "srcs", "Tests", "Plugins"});

// The string behind "label:" at `at`, if that is one.
std::optional<std::string_view> string_behind(std::string_view text, std::size_t at) {
  while (at < text.size() && (ascii::is_space(text[at]) || text[at] == ':')) ++at;
  if (at >= text.size() || text[at] != '"') return std::nullopt;
  const std::size_t end = text.find('"', at + 1);
  if (end == std::string_view::npos) return std::nullopt;
  return text.substr(at + 1, end - at - 1);
}

// Reads the calls that make targets; those within others only name one.
class Manifest {
 public:
  explicit Manifest(std::string_view text) : text_(text) {}

  std::vector<SwiftTarget> read() {
    for (at_ = 0; at_ < text_.size();) {
      const std::string_view rest = text_.substr(at_);
      if (const std::size_t skipped = skip(rest)) {
        at_ += skipped;
      } else if (rest.front() == '.' && !inside()) {
        open_target(rest);
      } else {
        step(rest);
      }
    }
    return std::move(targets_);
  }

 private:
  static std::size_t skip(std::string_view rest) {
    const std::size_t comment = comment_length(rest, swift::lexis());
    return comment > 0 ? comment : string_length(rest, swift::lexis());
  }

  bool inside() const { return depth_ > 0; }

  void open_target(std::string_view rest) {
    ++at_;
    for (const std::string_view kind : kKinds) {
      if (!rest.substr(1).starts_with(kind) || !rest.substr(1 + kind.size()).starts_with('('))
        continue;
      targets_.push_back({.name = {}, .path = {}, .test = kind == "testTarget"});
      depth_ = 1;
      at_ += kind.size() + 1;
      return;
    }
  }

  // Of the call's own arguments two count.
  void step(std::string_view rest) {
    ++at_;
    const char c = rest.front();
    if (!inside()) return;
    if (c == '(' || c == '[' || c == '{') ++depth_;
    if (c == ')' || c == ']' || c == '}') --depth_;
    if (depth_ != 1 || (c != 'n' && c != 'p')) return;
    for (const bool path : {false, true}) {
      const std::string_view label = path ? "path" : "name";
      if (!rest.starts_with(label) || !rest.substr(label.size()).starts_with(':')) continue;
      if (const auto value = string_behind(text_, at_ - 1 + label.size())) {
        SwiftTarget& target = targets_.back();
        (path ? target.path : target.name) = *value;
      }
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;  // of brackets in the call that makes a target
  std::vector<SwiftTarget> targets_;
};

std::string joined(std::string_view folder, std::string_view inner) {
  while (inner.starts_with("./")) inner.remove_prefix(2);
  while (inner.ends_with('/')) inner.remove_suffix(1);
  if (inner == ".") inner = {};
  if (folder.empty() || inner.empty()) return std::string(folder.empty() ? inner : folder);
  return std::string(folder).append("/").append(inner);
}

}  // namespace

std::vector<SwiftTarget> read_manifest(std::string_view text) { return Manifest(text).read(); }

SwiftModules::SwiftModules(const FileTable& files) {
  for (FileId id = 0; id < files.size(); ++id) {
    if (base_name(files.path(id)) == kManifest) add_package(files, id);
  }
}

void SwiftModules::add_package(const FileTable& files, FileId manifest) {
  const std::string_view folder = folder_of(files.path(manifest));
  for (const SwiftTarget& target : read_manifest(files.read(manifest))) {
    if (target.name.empty()) continue;
    names_.insert(target.name);
    if (!target.path.empty()) {
      folders_.try_emplace(joined(folder, target.path), target.name);
      continue;
    }
    for (const std::string_view sources : kSources)
      folders_.try_emplace(joined(joined(folder, sources), target.name), target.name);
  }
}

std::string_view SwiftModules::module_of(std::string_view path) const {
  for (std::string_view folder = folder_of(path);; folder = folder_of(folder)) {
    const auto found = folders_.find(folder);
    if (found != folders_.end()) return found->second;
    if (folder.empty()) return {};
  }
}

}  // namespace kestrix::index
