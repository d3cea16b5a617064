#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrix::index {

/// The folder of a repository-relative path; "" for what stands at the top.
std::string_view folder_of(std::string_view path);

/// The last part of a path.
std::string_view base_name(std::string_view path);

/// `name` below `folder`; `folder` may be "".
std::string join(std::string_view folder, std::string_view name);

/// `relative` as seen from `folder`, with "." and ".." taken out; none when it leaves the
/// repository.
std::optional<std::string> join_normal(std::string_view folder, std::string_view relative);

/// Whether `path` is `folder` or stands below it; everything stands below "".
bool is_below(std::string_view path, std::string_view folder);

/// Calls `visit(folder)` for the folder itself, each folder above it and at last the top "". Where
/// folders are nested deeper than any that people make, only the nearest are visited and the top:
/// each file would else cost its depth times its path's length.
template <class Visit>
void for_each_folder_up(std::string_view folder, Visit visit) {
  constexpr int kMostFolders = 128;
  for (int left = kMostFolders; left > 0; --left, folder = folder_of(folder)) {
    visit(folder);
    if (folder.empty()) return;
  }
  visit(std::string_view());
}

}  // namespace kestrix::index
