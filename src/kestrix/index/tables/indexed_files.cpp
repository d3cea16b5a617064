#include "kestrix/index/tables/indexed_files.h"

#include <utility>

#include "kestrix/files/file_reading.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/facts_codec.h"
#include "kestrix/text/decoding.h"

namespace kestrix::index {
namespace {

// Project files that resolvers ask for; a compile_commands.json may be large.
constexpr std::size_t kMaxProjectFileBytes = std::size_t{16} << 20;

}  // namespace

IndexedFiles::IndexedFiles(std::span<FileRow> rows, Store& store, const RootDirectory& root,
                           FactsLoading loading, const StopFlag* stop)
    : store_(store), root_(root), loading_(loading), stop_(stop) {
  rows_.reserve(rows.size());
  for (FileRow& row : rows) {
    if (row.traits.is_text())
      rows_.push_back(&row);
    else if (row.traits.has(Trait::kBinary))
      binaries_.insert(row.path);
  }
  slots_ = std::make_unique<Slot[]>(rows_.size());
  ids_.reserve(rows_.size());
  for (FileId id = 0; id < rows_.size(); ++id) ids_.emplace(rows_[id]->path, id);
  if (loading_ == FactsLoading::kAll) load_all();
}

std::optional<FileId> IndexedFiles::find(std::string_view path) const {
  check_stop(stop_);
  const auto found = ids_.find(path);
  if (found == ids_.end()) return std::nullopt;
  return found->second;
}

const FileFacts& IndexedFiles::facts(FileId id) const {
  check_stop(stop_);
  Slot& slot = slots_[id];
  std::call_once(slot.decoded, [&] {
    if (!rows_[id]->traits.has(Trait::kParsed)) return;
    slot.facts = decode_facts(encoded_facts(id), {rows_[id]->path, rows_[id]->hash});
  });
  return slot.facts;
}

std::vector<Mention> IndexedFiles::mentions(FileId id) const {
  if (!rows_[id]->traits.has(Trait::kParsed)) return {};
  std::string encoded;
  {
    const std::lock_guard lock(store_mutex_);
    encoded = store_.mentions(rows_[id]->id);
  }
  return decode_mentions(encoded, {rows_[id]->path, rows_[id]->hash});
}

std::string IndexedFiles::read(FileId id) const {
  slots_[id].read = true;
  FileBytes content = read_file(root_, rows_[id]->path, kMaxProjectFileBytes);
  if (content.status == ReadStatus::kUnreadable) has_unread_ = true;
  if (content.status != ReadStatus::kRead || content.truncated) return {};
  return decode_text(std::move(content.bytes));
}

void IndexedFiles::load_all() {
  std::unordered_map<std::int64_t, FileId> by_row;
  by_row.reserve(rows_.size());
  for (FileId id = 0; id < rows_.size(); ++id) by_row.emplace(rows_[id]->id, id);
  store_.each_facts([&](std::int64_t file, std::string_view bytes) {
    const auto found = by_row.find(file);
    if (found == by_row.end()) throw CorruptIndex("facts without a file");
    slots_[found->second].encoded = bytes;
  });
}

std::string IndexedFiles::encoded_facts(FileId id) const {
  if (loading_ == FactsLoading::kAll) return std::exchange(slots_[id].encoded, {});
  const std::lock_guard lock(store_mutex_);
  return store_.facts(rows_[id]->id).value_or(std::string());
}

}  // namespace kestrix::index
