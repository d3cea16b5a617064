#include "kestrix/index/indexer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "kestrix/index/cache_path.h"
#include "kestrix/index/content_hash.h"
#include "kestrix/index/corrupt_index.h"
#include "kestrix/index/edge_builder.h"
#include "kestrix/index/file_scan.h"
#include "kestrix/index/indexed_files.h"
#include "kestrix/index/language.h"
#include "kestrix/index/refresh_plan.h"
#include "kestrix/index/store.h"
#include "kestrix/index/walker.h"
#include "kestrix/index/workers.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

// Raised whenever this library takes something else from unchanged files.
constexpr int kReaderVersion = 1;

const std::string kReaderSetting = "reader";
const std::string kRootSetting = "root";

// All that decides, besides the files, what the index holds.
const std::string& reader_version() {
  static const std::string version = [] {
    std::string parts = fmt::format("{}", kReaderVersion);
    for (const Language* language : languages()) {
      parts += fmt::format("\n{} {}\n{}", language->name, language->version, language->query);
    }
    return fmt::format("{:016x}", content_hash(parts));
  }();
  return version;
}

struct Place {
  fs::path file;
  bool is_default;
};

Place place_of(const IndexOptions& options, const fs::path& root) {
  if (options.file) return {fs::absolute(*options.file), false};
  return {default_index_path(root), true};
}

std::vector<std::string> own_files_below(const fs::path& root, const fs::path& index) {
  std::error_code failure;
  const fs::path real = fs::weakly_canonical(index, failure);
  const std::string below = real.lexically_relative(root).native();
  if (failure || below.empty() || below.starts_with("..")) return {};
  return {below, below + "-wal", below + "-shm", below + "-journal"};
}

class Refresh {
 public:
  Refresh(const IndexOptions& options, const RootDirectory& root, Store& store)
      : options_(options), root_(root), store_(store) {}

  RefreshResult run() {
    const WalkResult walked = walk(
        root_, {.excluded = own_files_below(root_.path(), store_.path()), .stop = options_.stop});
    result_.file = store_.path();
    if (is_up_to_date(walked)) return std::move(result_);
    store_.begin_write(options_.lock_timeout, options_.stop);
    bring_up_to_date(walked);
    store_.commit();
    return std::move(result_);
  }

 private:
  bool is_up_to_date(const WalkResult& walked) {
    if (!store_.has_current_schema()) return false;
    store_.begin_read();
    const bool same_reader = reads_alike();
    const auto known = same_reader ? store_.files() : std::vector<FileRow>();
    const RefreshPlan plan = plan_refresh(known, walked.files);
    result_.unchanged = plan.unchanged;
    const bool up_to_date = same_reader && plan.empty() && store_.skip_counts() == walked.skipped;
    store_.end_read();
    return up_to_date;
  }

  bool reads_alike() {
    return store_.setting(kReaderSetting) == reader_version() &&
           store_.setting(kRootSetting) == root_.path().native();
  }

  // Under the lock, so what an earlier writer left is looked at afresh.
  void bring_up_to_date(const WalkResult& walked) {
    prepare_tables();
    const std::vector<FileRow> known = store_.files();
    const RefreshPlan plan = plan_refresh(known, walked.files);
    result_.unchanged = plan.unchanged;
    for (const FileRow& row : known) next_id_ = std::max(next_id_, row.id + 1);
    skipped_ = walked.skipped;
    for (const FileRow* row : plan.gone) remove(*row);
    scan(plan);
    if (texts_changed_) {
      const IndexedFiles files(store_, root_);
      rebuild_edges(store_, files, {.threads = options_.threads, .stop = options_.stop});
    }
    store_.set_skip_counts(skipped_);
    check_stop(options_.stop);
  }

  void prepare_tables() {
    const bool current = store_.has_current_schema();
    if (current && reads_alike()) return;
    if (!current)
      result_.rebuilt = "no index of this version";
    else if (store_.setting(kReaderSetting) != reader_version())
      result_.rebuilt = "other readers";
    else
      result_.rebuilt = "index of another directory";
    store_.recreate_tables();
    store_.set_setting(kReaderSetting, reader_version());
    store_.set_setting(kRootSetting, root_.path().native());
    texts_changed_ = true;
  }

  void remove(const FileRow& row) {
    store_.remove_file(row.id);
    ++result_.removed;
    texts_changed_ |= row.traits.is_text();
  }

  void scan(const RefreshPlan& plan) {
    Workers<std::pair<std::size_t, ScannedFile>> workers(thread_count(options_.threads),
                                                         options_.stop);
    const auto total = plan.tasks.size();
    std::size_t done = 0;
    workers.run(
        total, [&](std::size_t i) { return std::pair(i, scan_file(root_, plan.tasks[i])); },
        [&](std::pair<std::size_t, ScannedFile> scanned) {
          take(plan.tasks[scanned.first], scanned.first, std::move(scanned.second));
          if (options_.progress) options_.progress(++done, total);
        });
  }

  void take(const ScanTask& task, std::size_t position, ScannedFile file) {
    switch (file.outcome) {
      case ScanOutcome::kVanished:
        skipped_.add(skipped::kVanished);
        if (task.known != nullptr) remove(*task.known);
        return;
      case ScanOutcome::kUnchanged:
        store_.put_file(file.row);
        ++result_.unchanged;
        return;
      case ScanOutcome::kRead:
        put(task, position, std::move(file));
    }
  }

  void put(const ScanTask& task, std::size_t position, ScannedFile file) {
    if (task.known != nullptr) store_.remove_facts(task.known->id);
    // The place in the plan makes ids independent of which thread was first.
    else
      file.row.id = next_id_ + static_cast<std::int64_t>(position);
    store_.put_file(file.row);
    if (file.parsed) store_.put_facts(file.row.id, file.facts, file.symbols);
    ++(task.known != nullptr ? result_.changed : result_.added);
    texts_changed_ |=
        file.row.traits.is_text() || (task.known != nullptr && task.known->traits.is_text());
  }

  const IndexOptions& options_;
  const RootDirectory& root_;
  Store& store_;
  RefreshResult result_;
  SkipCounts skipped_;
  std::int64_t next_id_ = 1;
  bool texts_changed_ = false;
};

Store open_place(const Place& place) {
  if (!place.is_default) return Store::open_or_create(place.file);
  prepare_default_place(place.file);
  // Nothing but indexes belongs there, so what cannot be recognised is a damaged one.
  const PlaceContent content = look_at(place.file);
  if (content == PlaceContent::kForeignFile || content == PlaceContent::kForeignDatabase) {
    throw CorruptIndex(fmt::format("{}: the index is damaged", place.file.native()));
  }
  return Store::open_or_create(place.file);
}

// Runs `operation` on the store; a damaged index is removed, and it runs once more.
template <class Operation>
auto with_store(const Place& place, const Operation& operation) {
  const FileIdentity identity = identity_of(place.file);
  try {
    Store store = open_place(place);
    return operation(store);
  } catch (const CorruptIndex&) {
    remove_database(place.file, identity);
  }
  Store store = open_place(place);
  return operation(store);
}

}  // namespace

RefreshResult refresh(const IndexOptions& options) {
  const RootDirectory root(options.root);
  return with_store(place_of(options, root.path()),
                    [&](Store& store) { return Refresh(options, root, store).run(); });
}

std::unique_ptr<RepositoryIndex> open(const IndexOptions& options) {
  const RootDirectory root(options.root);
  Store store = Store::open_existing(place_of(options, root.path()).file);
  if (!store.has_current_schema() || store.setting(kReaderSetting) != reader_version()) {
    throw Error(fmt::format("{}: an index of another version", store.path().native()));
  }
  return RepositoryIndex::load(store, options.path_rules);
}

RefreshedIndex refresh_and_open(const IndexOptions& options) {
  const RootDirectory root(options.root);
  return with_store(place_of(options, root.path()), [&](Store& store) {
    RefreshResult result = Refresh(options, root, store).run();
    return RefreshedIndex{RepositoryIndex::load(store, options.path_rules), std::move(result)};
  });
}

}  // namespace kestrix::index
