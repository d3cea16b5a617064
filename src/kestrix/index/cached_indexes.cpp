#include "kestrix/index/cached_indexes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <tuple>

#include "kestrix/index/settings.h"
#include "kestrix/store/cache_path.h"
#include "kestrix/store/store.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

// What SQLite leaves beside a database.
constexpr std::array<std::string_view, 3> kCompanions{"", "-wal", "-shm"};

// A busy index is listed without its root.
constexpr std::chrono::milliseconds kPatience{200};

std::string root_of(const fs::path& file) {
  try {
    const Patience patience{kPatience, nullptr};
    Store store = Store::open_existing(file, patience);
    store.begin_read();
    return store.setting(kRootSetting);
  } catch (const std::exception&) {
    return {};  // of another version, or damaged: still to be listed and removed
  }
}

CachedIndex describe(const fs::path& file) {
  CachedIndex found{file, root_of(file), false, 0, {}};
  std::error_code ignored;
  found.orphaned = !found.root.empty() && !fs::is_directory(found.root, ignored);
  auto written = fs::file_time_type::min();
  for (const auto companion : kCompanions) {
    const fs::path part = file.native() + std::string(companion);
    const auto size = fs::file_size(part, ignored);
    if (ignored) continue;
    found.size += size;
    written = std::max(written, fs::last_write_time(part, ignored));
  }
  const auto age = fs::file_time_type::clock::now() - written;
  found.age = std::max(std::chrono::hours(0), std::chrono::duration_cast<std::chrono::hours>(age));
  return found;
}

}  // namespace

std::vector<CachedIndex> list_cached_indexes() {
  const fs::path folder = default_index_folder();
  std::vector<CachedIndex> found;
  std::error_code failure;
  for (fs::directory_iterator each(folder, failure), end; !failure && each != end;
       each.increment(failure)) {
    std::error_code ignored;
    const bool regular = each->symlink_status(ignored).type() == fs::file_type::regular;
    if (regular && each->path().extension() == ".sqlite") found.push_back(describe(each->path()));
  }
  if (failure && failure != std::errc::no_such_file_or_directory) {
    throw Error(fmt::format("{}: {}", folder.native(), failure.message()));
  }
  std::ranges::sort(found, {}, [](const CachedIndex& index) {
    return std::tuple(!index.orphaned, index.file.native());
  });
  return found;
}

void remove_cached_index(const CachedIndex& index) {
  for (const auto companion : kCompanions) {
    std::error_code failure;
    fs::remove(index.file.native() + std::string(companion), failure);
    if (failure) {
      throw Error(fmt::format("{}{}: {}", index.file.native(), companion, failure.message()));
    }
  }
}

}  // namespace kestrix::index
