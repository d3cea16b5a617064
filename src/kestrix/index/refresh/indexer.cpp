#include "kestrix/index/refresh/indexer.h"

#include <fmt/format.h>

#include <algorithm>

#include "kestrix/files/root_directory.h"
#include "kestrix/index/left_out.h"
#include "kestrix/index/refresh/refresher.h"
#include "kestrix/store/cache_path.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/store.h"
#include "kestrix/store/store_file.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

struct Place {
  fs::path file;
  bool is_default;
};

Place place_of(const IndexOptions& options, const fs::path& root) {
  if (options.file) return {fs::absolute(*options.file), false};
  return {default_index_path(root, options.choice), true};
}

Store open_place(const Place& place, const Patience& patience) {
  if (!place.is_default) return Store::open_or_create(place.file, patience);
  prepare_default_place(place.file);
  // Nothing but indexes belongs there, so what cannot be recognised is a damaged one.
  const PlaceContent content = look_at(place.file);
  if (content != PlaceContent::kNothing && content != PlaceContent::kIndex) {
    throw CorruptIndex(fmt::format("{}: the index is damaged", place.file.native()));
  }
  return Store::open_or_create(place.file, patience);
}

// Runs `operation` on the store; a damaged index is removed, and it runs once more.
template <class Operation>
auto with_store(const IndexOptions& options, const fs::path& root, const Operation& operation) {
  const Place place = place_of(options, root);
  const Patience patience{options.lock_timeout, options.stop};
  const FileIdentity identity = identity_of(place.file);
  try {
    Store store = open_place(place, patience);
    return operation(store);
  } catch (const CorruptIndex&) {
    remove_database(place.file, identity, patience);
  }
  Store store = open_place(place, patience);
  return operation(store);
}

}  // namespace

RefreshResult refresh(const IndexOptions& options) {
  const RootDirectory root(options.root);
  return with_store(options, root.path(),
                    [&](Store& store) { return Refresher(options, root, store).refresh(); });
}

std::unique_ptr<RepositoryIndex> open(const IndexOptions& options) {
  const RootDirectory root(options.root);
  Store store = Store::open_existing(place_of(options, root.path()).file,
                                     {options.lock_timeout, options.stop});
  store.begin_read();
  return open_stored(store);
}

std::vector<LeftOut> find_left_out(const IndexOptions& options) {
  const RootDirectory root(options.root);
  const auto place = place_of(options, root.path()).file;
  std::vector<LeftOut> left_out = list_files(options, root, place, true).left_out;
  Store store = Store::open_existing(place, {options.lock_timeout, options.stop});
  store.begin_read();
  for (const FileRow& row : store.files()) {
    for (const auto reason : reasons_of(row.traits)) {
      left_out.push_back({row.path, std::string(reason)});
    }
  }
  std::ranges::sort(left_out);
  return left_out;
}

RefreshedIndex refresh_and_open(const IndexOptions& options) {
  const RootDirectory root(options.root);
  return with_store(options, root.path(), [&](Store& store) {
    return Refresher(options, root, store).refresh_and_open();
  });
}

}  // namespace kestrix::index
