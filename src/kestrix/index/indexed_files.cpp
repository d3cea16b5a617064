#include "kestrix/index/indexed_files.h"

#include "kestrix/index/corrupt_index.h"
#include "kestrix/index/facts_codec.h"
#include "kestrix/index/file_reading.h"
#include "kestrix/utils/text_decoding.h"

namespace kestrix::index {
namespace {

// Project files that resolvers ask for; a compile_commands.json may be large.
constexpr std::size_t kMaxProjectFileBytes = std::size_t{16} << 20;

}  // namespace

IndexedFiles::IndexedFiles(Store& store, const RootDirectory& root)
    : root_(root), rows_(store.files()) {
  std::erase_if(rows_, [](const FileRow& row) { return !row.traits.is_text(); });
  slots_ = std::make_unique<Slot[]>(rows_.size());
  std::unordered_map<std::int64_t, FileId> by_row;
  for (FileId id = 0; id < rows_.size(); ++id) {
    ids_.emplace(rows_[id].path, id);
    by_row.emplace(rows_[id].id, id);
  }
  store.each_facts([&](std::int64_t file, std::string_view bytes) {
    const auto found = by_row.find(file);
    if (found == by_row.end()) throw CorruptIndex("facts without a file");
    Slot& slot = slots_[found->second];
    slot.parsed = true;
    slot.encoded = bytes;
  });
}

std::optional<FileId> IndexedFiles::find(std::string_view path) const {
  const auto found = ids_.find(path);
  if (found == ids_.end()) return std::nullopt;
  return found->second;
}

const FileFacts& IndexedFiles::facts(FileId id) const {
  const Slot& slot = slots_[id];
  std::call_once(slot.decoded, [&] {
    if (!slot.parsed) return;
    slot.facts = decode_facts(slot.encoded);
    slot.encoded = std::string();
  });
  return slot.facts;
}

std::string IndexedFiles::read(FileId id) const {
  FileBytes content = read_file(root_, rows_[id].path, kMaxProjectFileBytes);
  if (content.status != ReadStatus::kRead || content.truncated) return {};
  return decode_text(std::move(content.bytes));
}

}  // namespace kestrix::index
