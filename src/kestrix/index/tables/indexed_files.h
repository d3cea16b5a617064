#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/files/root_directory.h"
#include "kestrix/languages/resolver.h"
#include "kestrix/store/store.h"
#include "kestrix/text/seeded_hash.h"
#include "kestrix/utils/stop.h"

namespace kestrix::index {

/// When the table takes encoded facts out of the store: all at once where most will be asked for,
/// else each by itself.
enum class FactsLoading { kAll, kSingly };

/// The text files of the store as resolvers see them. Facts are decoded when one first asks.
class IndexedFiles : public FileTable {
 public:
  /// Reads the store within the caller's transaction. `rows` ascend by path; they, the store and
  /// the root must outlive the table.
  /// What resolvers ask throws `StopRequest` once the flag is set.
  IndexedFiles(std::span<FileRow> rows, Store& store, const RootDirectory& root,
               FactsLoading loading, const StopFlag* stop);

  std::size_t size() const override { return rows_.size(); }
  std::string_view path(FileId id) const override {
    check_stop(stop_);
    return rows_[id]->path;
  }
  std::optional<FileId> find(std::string_view path) const override;
  bool has_binary(std::string_view path) const override { return binaries_.contains(path); }
  const FileFacts& facts(FileId id) const override;
  std::string_view language(FileId id) const override { return rows_[id]->language; }
  std::string read(FileId id) const override;

  /// What the file mentions; read from the store at each call.
  std::vector<Mention> mentions(FileId id) const;

  FileRow& row(FileId id) const { return *rows_[id]; }
  /// Whether a resolver has read the file's text.
  bool was_read(FileId id) const { return slots_[id].read; }
  /// Whether a text that a resolver asked for could not be read, for a reason that may pass.
  bool has_unread() const { return has_unread_; }

 private:
  struct Slot {
    std::once_flag decoded;
    FileFacts facts;
    std::string encoded;
    std::atomic<bool> read = false;
  };

  void load_all();
  std::string encoded_facts(FileId id) const;

  Store& store_;
  const RootDirectory& root_;
  FactsLoading loading_;
  const StopFlag* stop_;
  mutable std::atomic<bool> has_unread_ = false;
  std::vector<FileRow*> rows_;
  std::unordered_map<std::string_view, FileId, SeededHash> ids_;
  std::unordered_set<std::string_view, SeededHash> binaries_;
  std::unique_ptr<Slot[]> slots_;
  mutable std::mutex store_mutex_;
};

}  // namespace kestrix::index
