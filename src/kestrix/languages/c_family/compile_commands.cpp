#include "kestrix/languages/c_family/compile_commands.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "kestrix/formats/json.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

// Tops are looked for behind each slash.
constexpr std::size_t kLongestFile = 1024;

constexpr std::array<std::string_view, 3> kFlags = {"-isystem", "-iquote", "-I"};

// Words of a shell command; quotes and backslashes only keep spaces together here.
std::vector<std::string> words_of(std::string_view command) {
  std::vector<std::string> words(1);
  char quote = 0;
  for (std::size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == '\\' && i + 1 < command.size()) {
      words.back() += command[++i];
    } else if (quote == 0 && c == ' ') {
      words.emplace_back();
    } else {
      words.back() += c;
    }
  }
  return words;
}

std::vector<std::string> arguments_of(const Json& entry) {
  const auto list = entry.find("arguments");
  if (list == entry.end() || !list->is_array()) return words_of(text_at(entry, "command"));
  std::vector<std::string> words;
  for (const Json& word : *list) words.push_back(word.is_string() ? word.get<std::string>() : "");
  return words;
}

std::string absolute(const std::string& directory, const std::string& path) {
  const std::string whole = path.starts_with('/') ? path : directory + "/" + path;
  return join_normal("", whole).value_or("");
}

class Commands {
 public:
  explicit Commands(const FileTable& files) : files_(files) {}

  void read(std::string_view text) {
    const Json entries = parse_json(text);
    if (!entries.is_array()) return;
    for (const Json& entry : entries) {
      if (entry.is_object()) read_entry(entry);
    }
  }

  std::vector<std::string> take() { return std::move(folders_); }

 private:
  // The folder of the build machine that the repository was in, by a file that is in it.
  void find_top(std::string_view file) {
    if (file.size() > kLongestFile) return;
    for (std::string_view path = file; !path.empty();) {
      if (files_.find(path)) {
        top_ = std::string(file.substr(0, file.size() - path.size()));
        return;
      }
      const std::size_t slash = path.find('/');
      path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    }
  }

  void read_entry(const Json& entry) {
    const std::string directory = text_at(entry, "directory");
    if (!top_) find_top(absolute(directory, text_at(entry, "file")));
    if (!top_) return;
    const std::vector<std::string> words = arguments_of(entry);
    for (std::size_t i = 0; i < words.size(); ++i) {
      for (const std::string_view flag : kFlags) {
        if (!words[i].starts_with(flag)) continue;
        if (words[i].size() > flag.size()) {
          add(absolute(directory, words[i].substr(flag.size())));
        } else if (i + 1 < words.size()) {
          add(absolute(directory, words[i + 1]));
        }
      }
    }
  }

  void add(std::string folder) {
    folder += '/';
    if (!folder.starts_with(*top_)) return;
    folder.erase(0, top_->size());
    if (!folder.empty()) folder.pop_back();
    if (folders_.size() < kMostCommandFolders && seen_.insert(folder).second)
      folders_.push_back(folder);
  }

  const FileTable& files_;
  std::optional<std::string> top_;
  std::vector<std::string> folders_;
  std::unordered_set<std::string, SeededHash> seen_;
};

}  // namespace

std::vector<std::string> include_folders_of_compile_commands(const FileTable& files) {
  Commands commands(files);
  for (FileId id = 0; id < files.size(); ++id) {
    if (base_name(files.path(id)) == "compile_commands.json") commands.read(files.read(id));
  }
  return commands.take();
}

}  // namespace kestrix::index
