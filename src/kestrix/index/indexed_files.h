#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/index/resolver.h"
#include "kestrix/index/root_directory.h"
#include "kestrix/index/store.h"

namespace kestrix::index {

/// The text files of the store as resolvers see them. Facts stay encoded until one asks for them.
class IndexedFiles : public FileTable {
 public:
  /// Reads the store within the caller's transaction. `root` must outlive the table.
  IndexedFiles(Store& store, const RootDirectory& root);

  std::size_t size() const override { return rows_.size(); }
  std::string_view path(FileId id) const override { return rows_[id].path; }
  std::optional<FileId> find(std::string_view path) const override;
  const FileFacts& facts(FileId id) const override;
  std::string_view language(FileId id) const override { return rows_[id].language; }
  std::string read(FileId id) const override;

  const FileRow& row(FileId id) const { return rows_[id]; }
  bool is_parsed(FileId id) const { return slots_[id].parsed; }

 private:
  struct Slot {
    bool parsed = false;
    mutable std::once_flag decoded;
    mutable std::string encoded;
    mutable FileFacts facts;
  };

  const RootDirectory& root_;
  std::vector<FileRow> rows_;  // ascending by path
  std::unordered_map<std::string_view, FileId> ids_;
  std::unique_ptr<Slot[]> slots_;
};

}  // namespace kestrix::index
