#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/facts/data_signals.h"
#include "kestrix/index/repository.h"
#include "kestrix/utils/error.h"

namespace kestrix {

/// One source file of the index, as far as the detectors read it.
struct SourceFileRecord {
  std::optional<std::string> path;
};

/// One document of the index. Every record has a path; asking one without it is an error.
struct DocumentRecord {
  std::optional<std::string> path;
};

/// The record's path, "" when it has none.
inline std::string path_or_empty(const SourceFileRecord& record) {
  return record.path.value_or("");
}

/// The record's path. Throws `MissingEntry` when it has none.
inline const std::string& required_path(const DocumentRecord& record) {
  if (!record.path) throw MissingEntry("a document record has no \"path\" entry");
  return *record.path;
}

/// A file's text. It may be read only when it is asked for, so that holding the texts of a whole
/// repository does not hold its bytes.
class Text {
 public:
  Text() = default;
  explicit Text(std::string text) : read_([text = std::move(text)] { return text; }) {}
  /// `definitions`: what the host knows of it without reading it.
  explicit Text(std::function<std::string()> read, std::optional<DataSignals> definitions = {})
      : read_(std::move(read)), definitions_(definitions) {}

  /// The text, UTF-8. A deferred text is read anew at each call.
  std::string str() const { return read_ ? read_() : std::string(); }
  /// What it defines, when that is known.
  const std::optional<DataSignals>& definitions() const { return definitions_; }

 private:
  std::function<std::string()> read_;
  std::optional<DataSignals> definitions_;
};

struct ReadTextOptions {
  std::size_t max_chars;  ///< characters (code points), not bytes
};

/// A path in the form that the planner uses: relative to the repository, "/" as its separator, no
/// "." and no empty pieces, so none at its ends either. ".." and "\" are left as they are: the
/// index holds no path with the one, and the other is part of a name. Idempotent.
std::string _norm(std::string_view path);

/// The root directory of a repository, and the way to the texts below it.
class RepoRoot {
 public:
  explicit RepoRoot(std::filesystem::path path) : path_(std::move(path)) {}
  RepoRoot(const RepoRoot&) = delete;
  RepoRoot& operator=(const RepoRoot&) = delete;
  virtual ~RepoRoot() = default;

  const std::filesystem::path& path() const { return path_; }

  /// What `_read_text` gives for a path below the root; "" unless the host reads files.
  virtual Text text(const std::string& /*below*/, ReadTextOptions /*options*/) const { return {}; }

 private:
  std::filesystem::path path_;
};

/// A file's place: a root, which must outlive it, joined with a path below it.
struct RepoPath {
  const RepoRoot* root;
  std::string below;

  std::filesystem::path path() const { return root->path() / below; }
};

/// The first `max_chars` characters of a file, read when the text is asked for. A file that is
/// missing, unreadable or not text has the text "". No piece of the path below the root is followed
/// as a link, and only regular files are read; nothing waits on a pipe or a device.
Text _read_text(const RepoPath& path, ReadTextOptions options);

/// What the wiki generator knows about its repository.
class RepoFactsMixin {
 public:
  virtual ~RepoFactsMixin() = default;

  /// The handle of the repository's index.
  virtual const Repository& repository() const = 0;
  /// The repository's root directory.
  virtual const RepoRoot& repo_root() const = 0;
  /// The source files of the index, in the index's order.
  virtual std::vector<SourceFileRecord> _source_files() const = 0;
};

}  // namespace kestrix
