#include "capi/answers/warnings.h"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <system_error>

#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

namespace fs = std::filesystem;

struct Cause {
  std::string_view reason;
  std::string_view one;
  std::string_view many;
};

constexpr std::array kCauses{
    Cause{index::skipped::kSubmodule, "submodule is not looked at", "submodules are not looked at"},
    Cause{index::skipped::kMissing,
          "tracked file or folder is not in the work tree (a sparse checkout?)",
          "tracked files or folders are not in the work tree (a sparse checkout?)"},
    Cause{index::skipped::kUnreadable, "file cannot be read", "files cannot be read"},
    Cause{index::skipped::kUnreadableDirectory, "directory cannot be read",
          "directories cannot be read"},
    Cause{index::skipped::kGitUnreadable, "part of git's data cannot be read",
          "parts of git's data cannot be read"},
    Cause{index::skipped::kGitForeign,
          "folder above holds git data of another user, which is not obeyed",
          "folders above hold git data of another user, which is not obeyed"},
    Cause{index::skipped::kVanished, "file vanished while it was to be read",
          "files vanished while they were to be read"},
    Cause{index::skipped::kParseBudget, "file takes too much to parse",
          "files take too much to parse"},
};

bool is_bare(const fs::path& root) {
  std::error_code ignored;
  return !fs::exists(root / ".git", ignored) && fs::is_regular_file(root / "HEAD", ignored) &&
         fs::is_directory(root / "objects", ignored) && fs::is_directory(root / "refs", ignored);
}

}  // namespace

std::vector<std::string> warnings_of(const fs::path& root, const index::SkipCounts& left_out) {
  std::vector<std::string> warnings;
  if (is_bare(root)) warnings.emplace_back("a bare repository has no work tree to read");
  for (const Cause& cause : kCauses) {
    const auto count = left_out[cause.reason];
    if (count > 0) warnings.push_back(counted(count, cause.one, cause.many));
  }
  return warnings;
}

}  // namespace kestrix
