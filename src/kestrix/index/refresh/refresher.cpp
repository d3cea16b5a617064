#include "kestrix/index/refresh/refresher.h"

#include <fmt/format.h>
#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

#include <algorithm>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include "kestrix/index/edges/edge_builder.h"
#include "kestrix/index/file_roles.h"
#include "kestrix/index/settings.h"
#include "kestrix/index/sources_digest.h"
#include "kestrix/index/tables/indexed_files.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/facts_codec.h"
#include "kestrix/utils/workers.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kManyTasks = 200;

// Behind a stage that held much, which the allocator would keep for the threads that had it.
void return_free_memory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

namespace fs = std::filesystem;

const std::string kReaderSetting = "reader";
const std::string kDigestSetting = "digest";
// Set where a resolver could not read a text: the next refresh resolves all anew.
const std::string kUnreadSetting = "unread";

void leave_out_others(WalkResult& walked, const IndexOptions& options, bool named) {
  if (!options.takes) return;
  std::erase_if(walked.files, [&](const WalkedFile& file) {
    const bool other = !options.takes(file.path);
    if (other) walked.leave_out(file.path, skipped::kExcluded, named);
    return other;
  });
}

std::unique_ptr<RepositoryIndex> load_checked(Store& store, std::span<const FileRow> rows) {
  auto index = RepositoryIndex::load(store, rows);
  if (index->digest() != store.setting(kDigestSetting)) {
    throw CorruptIndex(fmt::format("{}: the index is damaged", store.path().native()));
  }
  return index;
}

// The index and its companions, where they lie in the repository.
std::vector<std::string> own_files_below(const fs::path& root, const fs::path& index) {
  std::error_code failure;
  const fs::path real = fs::weakly_canonical(index, failure);
  const std::string below = real.lexically_relative(root).native();
  if (failure || below.empty() || below == ".." || below.starts_with("../")) return {};
  return {below, below + "-wal", below + "-shm", below + "-journal"};
}

}  // namespace

RefreshResult Refresher::refresh() {
  run();
  return std::move(result_);
}

RefreshedIndex Refresher::refresh_and_open() {
  auto index = run();
  return {std::move(index), std::move(result_)};
}

std::unique_ptr<RepositoryIndex> Refresher::run() {
  result_.file = store_.path();
  const WalkResult walked = list_files(options_, root_, store_.path(), false);
  store_.begin_read();
  RefreshPlan plan = make_plan(walked);
  if (plan.is_done() || holds_what_differs(plan)) {
    result_.unchanged = plan.kept.size() + plan.tasks.size();
    return std::move(old_);
  }
  const int seen = store_.data_version();
  store_.end_read();
  store_.begin_write();
  if (store_.data_version() != seen) plan = make_plan(walked);
  carry_out(std::move(plan));
  auto index = RepositoryIndex::load(store_, rows_);
  give_roles(*index);
  store_.set_setting(kDigestSetting, index->digest());
  check_stop(options_.stop);
  store_.commit();
  return index;
}

RefreshPlan Refresher::make_plan(const WalkResult& walked) {
  std::string reason = reason_to_rebuild();
  const bool has_state = reason.empty();
  std::vector<FileRow> rows;
  if (has_state) {
    // What stays of it must be sound, too: its sum is renewed with the new one.
    rows = store_.files();
    old_ = load_checked(store_, rows);
  }
  RefreshPlan plan = plan_refresh(std::move(rows), walked.files);
  plan.rebuilt = std::move(reason);
  plan.skipped = walked.skipped;
  if (!has_state) return plan;
  plan.has_other_skips = store_.skip_counts() != walked.skipped;
  plan.all_resolve_anew = !store_.setting(kUnreadSetting).empty();
  return plan;
}

// A file's look is noted when it is read again. Where that cannot be written, content decides.
bool Refresher::holds_what_differs(const RefreshPlan& plan) {
  if (store_.writable() || !plan.rebuilt.empty() || !plan.gone.empty() || plan.has_other_skips ||
      plan.all_resolve_anew) {
    return false;
  }
  return std::ranges::all_of(plan.tasks, [&](const ScanTask& task) {
    check_stop(options_.stop);
    return task.known && scan_file(root_, task).outcome == ScanOutcome::kUnchanged;
  });
}

std::string Refresher::reason_to_rebuild() {
  const Store::Schema schema = store_.schema();
  // What others may have made is not cleared, let alone believed: a new file takes its place.
  if (schema == Store::Schema::kOther && store_.writable()) {
    throw CorruptIndex(fmt::format("{}: not the index's tables", store_.path().native()));
  }
  if (schema != Store::Schema::kOurs) return "no index of this version";
  if (store_.setting(kReaderSetting) != sources_digest) return "an index of other readers";
  // Stamps tell a file from what it was, not from its copy elsewhere.
  if (store_.setting(kRootSetting) != root_.path().native()) return "an index of another directory";
  return {};
}

void Refresher::carry_out(RefreshPlan plan) {
  old_.reset();
  if (!plan.rebuilt.empty()) recreate();
  result_.rebuilt = plan.rebuilt;
  result_.unchanged = plan.kept.size();
  skipped_ = plan.skipped;
  all_resolve_anew_ = plan.all_resolve_anew;
  rows_ = std::move(plan.kept);
  for (const FileRow& row : plan.gone) remove(row);
  scan(plan);
  if (plan.tasks.size() > kManyTasks) return_free_memory();
  std::ranges::sort(rows_, {}, &FileRow::path);
  resolve();
  if (plan.tasks.size() > kManyTasks) return_free_memory();
  store_.set_skip_counts(skipped_);
}

void Refresher::recreate() {
  if (store_.schema() == Store::Schema::kNone)
    store_.create_tables();
  else
    store_.clear_tables();
  store_.set_setting(kReaderSetting, std::string(sources_digest));
  store_.set_setting(kRootSetting, root_.path().native());
}

void Refresher::remove(const FileRow& row) {
  store_.remove_file(row.id);
  ++result_.removed;
  all_resolve_anew_ = true;
}

void Refresher::scan(const RefreshPlan& plan) {
  using Scanned = std::pair<std::size_t, ScannedFile>;
  const std::size_t total = plan.tasks.size();
  std::size_t done = 0;
  Workers<Scanned> workers(thread_count(options_.threads), options_.stop);
  workers.run(
      total, [&](std::size_t i) { return Scanned(i, scan_file(root_, plan.tasks[i])); },
      [&](Scanned&& scanned) {
        auto& [place, file] = scanned;
        // The place in the plan makes ids independent of which thread was first.
        if (file.row.id == 0) file.row.id = plan.next_id + static_cast<std::int64_t>(place);
        take(plan.tasks[place], std::move(file));
        if (options_.progress) options_.progress(++done, total);
      });
}

void Refresher::take(const ScanTask& task, ScannedFile file) {
  switch (file.outcome) {
    case ScanOutcome::kVanished:
      skipped_.add(skipped::kVanished);
      if (task.known) remove(*task.known);
      return;
    case ScanOutcome::kUnchanged:
      ++result_.unchanged;
      store_.put_file(file.row);
      rows_.push_back(std::move(file.row));
      return;
    case ScanOutcome::kRead:
      put(task, std::move(file));
  }
}

void Refresher::put(const ScanTask& task, ScannedFile file) {
  if (!task.known) {
    ++result_.added;
    all_resolve_anew_ = true;
  } else {
    ++result_.changed;
    note_change(*task.known, file);
    store_.remove_facts(task.known->id);
  }
  store_.put_file(file.row);
  store_.put_notes(file.row.id, file.notes);
  if (file.row.traits.has(Trait::kParsed)) {
    store_.put_facts(file.row.id, file.facts);
  }
  rows_.push_back(std::move(file.row));
}

void Refresher::note_change(const FileRow& before, const ScannedFile& after) {
  if (all_resolve_anew_) return;
  if (!leaves_others_alone(before, after))
    all_resolve_anew_ = true;
  else if (after.row.traits.has(Trait::kParsed))
    resolve_anew_.push_back(after.row.path);
}

// Whether no other file's imports can resolve to something else than before.
bool Refresher::leaves_others_alone(const FileRow& before, const ScannedFile& after) {
  const bool parsed = after.row.traits.has(Trait::kParsed);
  if (before.traits.has(Trait::kConsulted) || before.traits.has(Trait::kParsed) != parsed ||
      before.traits.is_text() != after.row.traits.is_text()) {
    return false;
  }
  if (!parsed) return true;
  const auto facts = store_.facts(before.id);
  const FactsOrigin old{before.path, before.hash};
  const FactsOrigin fresh{after.row.path, after.row.hash};
  const std::string declarations = store_.declarations(before.id);
  return facts &&
         look_alike_from_outside(decode_facts(*facts, old),
                                 decode_facts(after.facts.facts, fresh)) &&
         declare_alike(decode_declarations(declarations),
                       decode_declarations(after.facts.declarations));
}

void Refresher::resolve() {
  const EdgeBuildOptions options{thread_count(options_.threads), options_.stop};
  if (all_resolve_anew_) {
    const IndexedFiles files(rows_, store_, root_, FactsLoading::kAll, options_.stop);
    rebuild_edges(store_, files, options);
    note_unread(files);
  } else if (!resolve_anew_.empty()) {
    const IndexedFiles files(rows_, store_, root_, FactsLoading::kSingly, options_.stop);
    std::vector<FileId> sources;
    for (const std::string& path : resolve_anew_) sources.push_back(files.find(path).value());
    rebuild_edges_of(sources, store_, files, options);
    note_unread(files);
  }
}

void Refresher::give_roles(RepositoryIndex& index) {
  const auto roles = roles_of_files(index);
  index.set_roles(roles);
  auto role = roles.begin();
  for (FileRow& row : rows_) {
    if (!row.traits.is_text()) continue;
    const auto bits = role++->bits();
    if (std::exchange(row.roles, bits) != bits) store_.put_file(row);
  }
}

void Refresher::note_unread(const IndexedFiles& files) {
  store_.set_setting(kUnreadSetting, files.has_unread() ? "yes" : "");
  if (files.has_unread()) skipped_.add(skipped::kUnreadable);
}

WalkResult list_files(const IndexOptions& options, const RootDirectory& root, const fs::path& index,
                      bool name_left_out) {
  WalkResult walked = walk(root, {.excluded = own_files_below(root.path(), index),
                                  .name_left_out = name_left_out,
                                  .stop = options.stop});
  leave_out_others(walked, options, name_left_out);
  return walked;
}

std::unique_ptr<RepositoryIndex> open_stored(Store& store) {
  if (store.schema() != Store::Schema::kOurs || store.setting(kReaderSetting) != sources_digest) {
    throw Error(fmt::format("{}: an index of another version", store.path().native()));
  }
  return load_checked(store, store.files());
}

}  // namespace kestrix::index
