#include "kestrix/text/paths.h"

namespace kestrix::index {

std::string_view folder_of(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

std::string_view base_name(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string join(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!folder.empty() && !name.empty()) path += '/';
  return path += name;
}

std::optional<std::string> join_normal(std::string_view folder, std::string_view relative) {
  std::string path(folder);
  while (!relative.empty()) {
    const std::size_t slash = relative.find('/');
    const std::string_view part = relative.substr(0, slash);
    relative = slash == std::string_view::npos ? std::string_view() : relative.substr(slash + 1);
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      if (!path.empty()) path += "/";
      path += part;
    } else if (path.empty()) {
      return std::nullopt;
    } else {
      path.resize(folder_of(path).size());
    }
  }
  return path;
}

bool is_below(std::string_view path, std::string_view folder) {
  if (folder.empty()) return true;
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace kestrix::index
