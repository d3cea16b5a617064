#include "kestrix/store/cache_path.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>

#include "kestrix/store/content_hash.h"
#include "kestrix/text/ascii.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxNameBytes = 40;

fs::path absolute_from_environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here sets it
  const fs::path path = value == nullptr ? "" : value;
  return path.is_absolute() ? path : fs::path();
}

fs::path cache_home() {
  if (auto xdg = absolute_from_environment("XDG_CACHE_HOME"); !xdg.empty()) return xdg;
  const auto home = absolute_from_environment("HOME");
  if (home.empty()) {
    throw Error("no place for the index: set HOME or XDG_CACHE_HOME, or choose one with --index");
  }
  return home / ".cache";
}

// For people who look into the cache; the hash tells repositories apart.
std::string readable_name(const fs::path& root) {
  std::string name = root.filename().native().substr(0, kMaxNameBytes);
  std::ranges::replace_if(
      name, [](char c) { return !ascii::is_word(c) && c != '-'; }, '_');
  return name;
}

bool lies_in(const fs::path& directory, const fs::path& path) {
  const auto [end, ignored] = std::ranges::mismatch(directory, path);
  return end == directory.end();
}

}  // namespace

fs::path default_index_folder() { return cache_home() / "page-sources"; }

fs::path default_index_path(const fs::path& root, std::string_view choice) {
  std::error_code failure;
  const fs::path folder = default_index_folder();
  const fs::path real = fs::weakly_canonical(folder, failure);
  if (!failure && lies_in(root, real)) {
    throw Error(
        fmt::format("{}: the default place of the index lies inside the repository; choose "
                    "another one with --index",
                    folder.native()));
  }
  const std::string chosen =
      choice.empty() ? std::string() : fmt::format("-{:016x}", quick_hash(choice));
  return folder /
         fmt::format("{}-{:016x}{}.sqlite", readable_name(root), quick_hash(root.native()), chosen);
}

void prepare_default_place(const fs::path& index) {
  const fs::path folder = index.parent_path();
  const auto fail = [&](const std::string& why) {
    throw Error(fmt::format("{}: {}; choose another place for the index with --index",
                            folder.native(), why));
  };
  std::error_code failure;
  fs::create_directories(folder.parent_path(), failure);
  if (failure) fail(failure.message());
  struct stat status {};
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    fail(std::generic_category().message(errno));
  }
  if (::lstat(folder.c_str(), &status) != 0) fail(std::generic_category().message(errno));
  const bool is_ours = status.st_uid == ::geteuid() || status.st_uid == 0;
  if (S_ISDIR(status.st_mode) && !is_ours) fail("a folder of another user");
  // Where it is a link the user has made it, and sees to the folder that it leads to.
  if (S_ISDIR(status.st_mode) && status.st_uid == ::geteuid()) ::chmod(folder.c_str(), S_IRWXU);
}

}  // namespace kestrix::index
