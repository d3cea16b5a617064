#include "kestrix/languages/rust/paths.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "kestrix/text/ascii.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 21> kNoModules = {
    "alloc", "bool", "char", "core", "f32",  "f64", "i128", "i16", "i32", "i64",  "i8",
    "isize", "std",  "str",  "test", "u128", "u16", "u32",  "u64", "u8",  "usize"};

// Words that touch each other by "::".
class PathScanner {
 public:
  PathScanner(std::string_view text, const Lexis& lexis) : text_(text), words_(text, lexis) {
    take();
  }

  bool next(std::string& path, std::size_t& offset) {
    while (more_) {
      path = word_.text;
      offset = start_;
      std::size_t parts = 1;
      while (step()) {
        path += "::";
        path += word_.text;
        ++parts;
      }
      if (parts > 1) return true;
    }
    return false;
  }

 private:
  // Moves to the next word; whether it continues the path.
  bool step() {
    const std::size_t end = word_.offset + word_.text.size();
    take();
    return more_ && start_ == end + 2 && text_.substr(end, 2) == "::";
  }

  // "r#type" is the word "type".
  void take() {
    more_ = words_.next(word_);
    start_ = word_.offset;
    if (!more_ || word_.text != "r" || text_.substr(start_ + 1, 1) != "#") return;
    more_ = words_.next(word_);
    if (more_ && word_.offset != start_ + 2) start_ = word_.offset;
  }

  std::string_view text_;
  WordScanner words_;
  Word word_;
  std::size_t start_ = 0;  // of the word, with its mark
  bool more_ = false;
};

bool may_lead_somewhere(std::string_view path) {
  const std::string_view first = path.substr(0, path.find("::"));
  const char c = first.front();
  return (ascii::is_lower(c) || c == '$') && !std::ranges::binary_search(kNoModules, first);
}

}  // namespace

std::vector<RustPath> paths_of(
    const SourceTree& tree, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& excluded) {
  std::vector<RustPath> paths;
  std::unordered_map<std::string, std::size_t, SeededHash> places;
  auto skip = excluded.begin();
  PathScanner scanner(tree.text(), tree.lexis());
  std::string path;
  for (std::size_t offset = 0; scanner.next(path, offset);) {
    while (skip != excluded.end() && skip->second <= offset) ++skip;
    if (skip != excluded.end() && skip->first <= offset) continue;
    if (!may_lead_somewhere(path)) continue;
    if (path.starts_with('$')) path.erase(0, 1);
    const auto [place, fresh] = places.try_emplace(path, paths.size());
    if (fresh) paths.push_back({path, offset, 0});
    ++paths[place->second].count;
  }
  return paths;
}

}  // namespace kestrix::index
