#include "kestrix/index/refresher.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <span>
#include <system_error>
#include <unordered_set>

#include "kestrix/index/edge_builder.h"
#include "kestrix/index/indexed_files.h"
#include "kestrix/index/sources_digest.h"
#include "kestrix/index/workers.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/facts_codec.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;

const std::string kReaderSetting = "reader";
const std::string kRootSetting = "root";
const std::string kDigestSetting = "digest";

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
  run(false);
  return std::move(result_);
}

RefreshedIndex Refresher::refresh_and_open() {
  auto index = run(true);
  return {std::move(index), std::move(result_)};
}

std::unique_ptr<RepositoryIndex> Refresher::run(bool open) {
  result_.file = store_.path();
  const auto own_files = own_files_below(root_.path(), store_.path());
  const WalkResult walked = walk(root_, {.excluded = own_files, .stop = options_.stop});
  store_.begin_read();
  if (is_up_to_date(walked)) return open ? load_checked(store_, rows_) : nullptr;
  const int seen = store_.data_version();
  store_.end_read();
  store_.begin_write(options_.lock_timeout, options_.stop);
  if (store_.data_version() != seen) is_up_to_date(walked);
  bring_up_to_date(walked);
  auto index = RepositoryIndex::load(store_, rows_);
  store_.set_setting(kDigestSetting, index->digest());
  check_stop(options_.stop);
  store_.commit();
  return index;
}

bool Refresher::is_up_to_date(const WalkResult& walked) {
  result_.rebuilt = reason_to_rebuild();
  rows_.clear();
  if (!result_.rebuilt.empty()) return false;
  rows_ = store_.files();
  const RefreshPlan plan = plan_refresh(rows_, walked.files);
  result_.unchanged = plan.unchanged;
  if (!plan.gone.empty() || store_.skip_counts() != walked.skipped) return false;
  return plan.tasks.empty() || (!store_.writable() && holds_contents_of(plan));
}

// A file's look is noted when it is read again. Where that cannot be written, content decides.
bool Refresher::holds_contents_of(const RefreshPlan& plan) {
  for (const ScanTask& task : plan.tasks) {
    check_stop(options_.stop);
    if (task.known == nullptr || scan_file(root_, task).outcome != ScanOutcome::kUnchanged)
      return false;
  }
  result_.unchanged += plan.tasks.size();
  return true;
}

std::string Refresher::reason_to_rebuild() {
  if (!store_.has_current_schema()) return "no index of this version";
  if (store_.setting(kReaderSetting) != sources_digest) return "an index of other readers";
  // Stamps tell a file from what it was, not from its copy elsewhere.
  if (store_.setting(kRootSetting) != root_.path().native()) return "an index of another directory";
  return {};
}

void Refresher::bring_up_to_date(const WalkResult& walked) {
  // What stays of the old state must be sound; its sum is renewed with the new one.
  if (result_.rebuilt.empty())
    load_checked(store_, rows_);
  else
    recreate();
  skipped_ = walked.skipped;
  const RefreshPlan plan = plan_refresh(rows_, walked.files);
  result_.unchanged = plan.unchanged;
  for (const FileRow* row : plan.gone) remove(*row);
  scan(plan);
  merge_rows(plan);
  resolve();
  store_.set_skip_counts(skipped_);
}

void Refresher::recreate() {
  store_.recreate_tables();
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
  std::int64_t next_id = 1;
  for (const FileRow& row : rows_) next_id = std::max(next_id, row.id + 1);
  const std::size_t total = plan.tasks.size();
  std::size_t done = 0;
  Workers<Scanned> workers(thread_count(options_.threads), options_.stop);
  workers.run(
      total, [&](std::size_t i) { return Scanned(i, scan_file(root_, plan.tasks[i])); },
      [&](Scanned&& scanned) {
        auto& [place, file] = scanned;
        // The place in the plan makes ids independent of which thread was first.
        if (file.row.id == 0) file.row.id = next_id + static_cast<std::int64_t>(place);
        take(plan.tasks[place], std::move(file));
        if (options_.progress) options_.progress(++done, total);
      });
}

void Refresher::take(const ScanTask& task, ScannedFile file) {
  switch (file.outcome) {
    case ScanOutcome::kVanished:
      skipped_.add(skipped::kVanished);
      if (task.known != nullptr) remove(*task.known);
      return;
    case ScanOutcome::kUnchanged:
      ++result_.unchanged;
      store_.put_file(file.row);
      fresh_.push_back(std::move(file.row));
      return;
    case ScanOutcome::kRead:
      put(task, std::move(file));
  }
}

void Refresher::put(const ScanTask& task, ScannedFile file) {
  if (task.known == nullptr) {
    ++result_.added;
    all_resolve_anew_ = true;
  } else {
    ++result_.changed;
    note_change(*task.known, file);
    store_.remove_facts(task.known->id);
  }
  store_.put_file(file.row);
  if (file.row.traits.has(Trait::kParsed)) {
    store_.put_facts(file.row.id, file.facts, file.symbols);
  }
  fresh_.push_back(std::move(file.row));
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
  return facts &&
         look_alike_from_outside(decode_facts(*facts, {before.path, before.hash}),
                                 decode_facts(after.facts, {after.row.path, after.row.hash}));
}

void Refresher::merge_rows(const RefreshPlan& plan) {
  std::unordered_set<std::string_view> replaced;
  for (const FileRow* row : plan.gone) replaced.insert(row->path);
  for (const ScanTask& task : plan.tasks) replaced.insert(task.path);
  std::vector<FileRow> rows = std::move(fresh_);
  for (FileRow& row : rows_) {
    if (!replaced.contains(row.path)) rows.push_back(std::move(row));
  }
  std::ranges::sort(rows, {}, &FileRow::path);
  rows_ = std::move(rows);
}

void Refresher::resolve() {
  const EdgeBuildOptions options{thread_count(options_.threads), options_.stop};
  if (all_resolve_anew_) {
    const IndexedFiles files(rows_, store_, root_, FactsLoading::kAll);
    rebuild_edges(store_, files, options);
  } else if (!resolve_anew_.empty()) {
    const IndexedFiles files(rows_, store_, root_, FactsLoading::kSingly);
    std::vector<FileId> sources;
    for (const std::string& path : resolve_anew_) sources.push_back(files.find(path).value());
    rebuild_edges_of(sources, store_, files, options);
  }
}

std::unique_ptr<RepositoryIndex> open_stored(Store& store) {
  if (!store.has_current_schema() || store.setting(kReaderSetting) != sources_digest) {
    throw Error(fmt::format("{}: an index of another version", store.path().native()));
  }
  return load_checked(store, store.files());
}

}  // namespace kestrix::index
